// Encrypt and Decrypt on the real CryptoAPI: RC4 keyed by the MD5 of the
// password, cipher bytes carried in the strings through the ANSI code page.
#include "crypto_box_fixture.h"

#include <wincrypt.h>

using namespace brevantis;
using brevantis::testing::CryptoBoxTest;
using brevantis::testing::EveryByteValue;

namespace {

using Texts = std::vector<std::wstring>;

const std::wstring kItalian = L"Perch\u00e9 la citt\u00e0 \u00e8 gi\u00e0 cos\u00ec pi\u00f9 bella: \u00c0\u00c8\u00c9\u00cc\u00d2\u00d9";

// MD5 of bytes, from a provider context of its own.
std::string Md5(const std::string& bytes) {
  HCRYPTPROV context = 0;
  HCRYPTHASH hash = 0;
  std::string digest(16, '\0');
  DWORD size = 16;
  EXPECT_TRUE(CryptAcquireContextA(&context, nullptr, nullptr, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT));
  EXPECT_TRUE(CryptCreateHash(context, CALG_MD5, 0, 0, &hash));
  EXPECT_TRUE(CryptHashData(hash, reinterpret_cast<const BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size()), 0));
  EXPECT_TRUE(CryptGetHashParam(hash, HP_HASHVAL, reinterpret_cast<BYTE*>(&digest[0]), &size, 0));
  CryptDestroyHash(hash);
  CryptReleaseContext(context, 0);
  return digest;
}

// RC4 written out, to check the provider's cipher against.
std::string Rc4(const std::string& key, std::string data) {
  unsigned char s[256];
  for (int i = 0; i < 256; ++i) s[i] = static_cast<unsigned char>(i);
  for (int i = 0, j = 0; i < 256; ++i) {
    j = (j + s[i] + static_cast<unsigned char>(key[i % key.size()])) & 255;
    std::swap(s[i], s[j]);
  }
  int i = 0, j = 0;
  for (char& c : data) {
    i = (i + 1) & 255;
    j = (j + s[i]) & 255;
    std::swap(s[i], s[j]);
    c = static_cast<char>(c ^ s[(s[i] + s[j]) & 255]);
  }
  return data;
}

// Cipher text is any bytes. In code page 1252 the five bytes without a
// character (0x81, 0x8D, 0x8F, 0x90, 0x9D) become the control characters of
// the same number and come back as themselves, so every byte survives.
TEST(CipherText, EveryByteValueSurvivesTheAnsiCodePage) {
  std::string bytes;
  for (int b = 0; b <= 255; ++b) bytes.push_back(static_cast<char>(b));
  const std::wstring text = FromAnsi(bytes);
  ASSERT_EQ(256u, text.size());
  EXPECT_EQ(bytes, ToAnsi(text));
  ASSERT_EQ(1252u, GetACP());  // the test prefix's
  for (int b : {0x81, 0x8D, 0x8F, 0x90, 0x9D}) EXPECT_EQ(static_cast<wchar_t>(b), text[b]) << b;
  EXPECT_EQ(L'\u20ac', text[0x80]);
}

TEST_F(CryptoBoxTest, DecryptGivesBackWhatEncryptWasGiven) {
  const std::wstring texts[] = {L"Testo da cifrare", kItalian, EveryByteValue(), EveryByteValue() + EveryByteValue(),
                                std::wstring(L"\0\0a\0b\0", 6), L"x"};
  const std::wstring passwords[] = {L"segreto", std::wstring(L"se\0greto", 8), L"", kItalian};
  for (const std::wstring& password : passwords) {
    box_.SetPassword(password);
    for (const std::wstring& text : texts) {
      SCOPED_TRACE(::testing::PrintToString(text.size()) + " characters, password of " +
                   ::testing::PrintToString(password.size()));
      const std::wstring secret = box_.Encrypt(text);
      EXPECT_EQ(1, box_.Status());
      EXPECT_EQ(text.size(), secret.size());
      EXPECT_NE(text, secret);
      EXPECT_EQ(text, box_.Decrypt(secret));
      EXPECT_EQ(1, box_.Status());
    }
  }
  EXPECT_EQ(Texts(), box_.Texts());
}

TEST_F(CryptoBoxTest, TheCipherIsRc4KeyedByTheFirstFiveBytesOfTheMd5OfThePassword) {
  // The Base provider's RC4 key is 40 bits, followed by 11 zero bytes of salt.
  const std::wstring password = L"Pellandra \u00e8 \u20ac";
  box_.SetPassword(password);
  const std::wstring text = kItalian + EveryByteValue();
  const std::string key = Md5(ToAnsi(password)).substr(0, 5) + std::string(11, '\0');
  EXPECT_EQ(Rc4(key, ToAnsi(text)), ToAnsi(box_.Encrypt(text)));
}

TEST_F(CryptoBoxTest, OtherPasswordsGiveOtherTextOfTheSameLength) {
  box_.SetPassword(L"segreto");
  const std::wstring secret = box_.Encrypt(kItalian);
  for (const std::wstring& other : {std::wstring(L"Segreto"), std::wstring(L"segreto\0", 8), std::wstring(L"se")}) {
    box_.SetPassword(other);
    const std::wstring plain = box_.Decrypt(secret);
    EXPECT_EQ(kItalian.size(), plain.size());
    EXPECT_NE(kItalian, plain);
    EXPECT_NE(secret, box_.Encrypt(kItalian));
  }
  EXPECT_EQ(Texts(), box_.Texts());
}

TEST_F(CryptoBoxTest, AnEmptyInBufferGivesAnEmptyOutBuffer) {
  box_.SetPassword(L"segreto");
  ASSERT_FALSE(box_.Encrypt(L"qualcosa").empty());
  EXPECT_EQ(L"", box_.Encrypt(L""));
  EXPECT_EQ(1, box_.Status());
  ASSERT_FALSE(box_.Encrypt(L"qualcosa").empty());
  EXPECT_EQ(L"", box_.Decrypt(L""));
  EXPECT_EQ(1, box_.Status());
  EXPECT_EQ(Texts(), box_.Texts());
}

}  // namespace
