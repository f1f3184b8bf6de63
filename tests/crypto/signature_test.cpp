// Sign and Validate on the real CryptoAPI, with the user's own signature key.
#include "crypto_box_fixture.h"

#include "crypto/messages.h"

using namespace brevantis;
using brevantis::testing::CryptoBoxTest;

namespace {

using Texts = std::vector<std::wstring>;

TEST_F(CryptoBoxTest, ASignatureOfTheSameTextIsConfirmed) {
  const std::wstring texts[] = {L"Fattura n. 42: \u20ac 1.250,00 \u00e8 pagata", L"", std::wstring(L"a\0b", 3),
                                brevantis::testing::EveryByteValue()};
  for (const std::wstring& text : texts) {
    SCOPED_TRACE(::testing::PrintToString(text.size()));
    box_.SetInBuffer(text);
    ASSERT_EQ(S_OK, box_->Sign());
    EXPECT_EQ(1, box_.Status());
    EXPECT_EQ(64u, box_.Signature().size());  // one character per byte of a 512-bit RSA signature
    ASSERT_EQ(S_OK, box_->Validate());
    EXPECT_EQ(2, box_.Status());
    EXPECT_EQ(Texts(), box_.Texts());
  }
}

TEST_F(CryptoBoxTest, AnyChangeOfTheTextIsNotConfirmedAndShowsNothing) {
  const std::wstring signedText(L"Bonifico a Giulia Rinaldi\0di 100 lire", 37);
  box_.SetInBuffer(signedText);
  ASSERT_EQ(S_OK, box_->Sign());
  const std::wstring signature = box_.Signature();
  std::wstring afterNul = signedText, firstLetter = signedText;
  afterNul.back() = L'E';     // beyond the NUL: every character is signed
  firstLetter[0] = L'b';
  for (const std::wstring& text : {afterNul, firstLetter, signedText + L" ", signedText.substr(1)}) {
    box_.SetInBuffer(text);
    ASSERT_EQ(S_OK, box_->Validate());
    EXPECT_EQ(1, box_.Status());
  }
  box_.SetInBuffer(signedText);
  ASSERT_EQ(S_OK, box_->Validate());
  EXPECT_EQ(2, box_.Status());
  EXPECT_EQ(signature, box_.Signature());
  EXPECT_EQ(Texts(), box_.Texts());
}

TEST_F(CryptoBoxTest, SignaturesThatAreNoSignaturesAreNotConfirmed) {
  box_.SetInBuffer(L"Testo firmato");
  ASSERT_EQ(S_OK, box_->Sign());
  std::wstring damaged = box_.Signature();
  damaged[10] = static_cast<wchar_t>(damaged[10] == L'x' ? L'y' : L'x');
  std::string noise(64, '\0');
  unsigned seed = 12345;
  for (char& c : noise) c = static_cast<char>((seed = seed * 1103515245u + 12345u) >> 16);
  // A signature that does not match is an answer, not a failure: no message.
  for (const std::wstring& signature : {std::wstring(), damaged}) {
    box_.SetSignature(signature);
    ASSERT_EQ(S_OK, box_->Validate());
    EXPECT_EQ(1, box_.Status());
    EXPECT_EQ(Texts(), box_.Texts());
  }
  // Bytes that are no RSA block at all the provider may refuse with another
  // code (Wine's says NTE_FAIL): that code is shown.
  for (const std::wstring& signature : {FromAnsi(noise), std::wstring(100000, L'\u00e8'), std::wstring(64, L'\0')}) {
    SCOPED_TRACE(::testing::PrintToString(signature.size()));
    box_.Forget();
    box_.SetSignature(signature);
    ASSERT_EQ(S_OK, box_->Validate());
    EXPECT_EQ(1, box_.Status());
    const Texts texts = box_.Texts();
    ASSERT_LE(texts.size(), 1u);
    if (texts.empty()) continue;
    const std::wstring tail = L" during CryptVerifySignature!";
    EXPECT_EQ(0u, texts[0].find(L"Error -"));
    ASSERT_GT(texts[0].size(), tail.size());
    EXPECT_EQ(tail, texts[0].substr(texts[0].size() - tail.size()));
    EXPECT_EQ(std::wstring::npos, texts[0].find(SignedErrorText(static_cast<DWORD>(NTE_BAD_SIGNATURE))));
  }
}

}  // namespace
