// The crypto filter box on the real CryptoAPI of a prefix of its own.
#include <gtest/gtest.h>
#include <process.h>

#include "com/text.h"
#include "crypto/filter_box.h"
#include "crypto/messages.h"
#include "crypto/steps.h"
#include "test_paths.h"
#include "testkit/message_box_watcher.h"
#include "testkit/process_counters.h"
#include "testkit/recording_platform.h"

namespace brevantis::testing {
namespace {

using Texts = std::vector<std::wstring>;
using Box = _clsCryptoFilterBox;
using Method = HRESULT (STDMETHODCALLTYPE Box::*)();
const char kProvider[] = "Microsoft Base Cryptographic Provider v1.0";

void Set(const ComPtr<Box>& box, HRESULT (STDMETHODCALLTYPE Box::*put)(BSTR), const std::wstring& text) {
  EXPECT_EQ(S_OK, (box.Get()->*put)(Bstr(text.data(), static_cast<UINT>(text.size())).Get()));
}
std::wstring Get(const ComPtr<Box>& box, HRESULT (STDMETHODCALLTYPE Box::*get)(BSTR*)) {
  Bstr value;
  EXPECT_EQ(S_OK, (box.Get()->*get)(value.Out()));
  return FromBstr(value.Get());
}
LONG Call(const ComPtr<Box>& box, Method method, const std::wstring& inBuffer) {  // the Status it leaves
  Set(box, &Box::put_InBuffer, inBuffer);
  EXPECT_EQ(S_OK, (box.Get()->*method)());
  LONG status = -1;
  box->get_Status(&status);
  return status;
}
std::wstring Through(const ComPtr<Box>& box, Method method, const std::wstring& text) {  // Encrypt, Decrypt
  EXPECT_EQ(1, Call(box, method, text));
  return Get(box, &Box::get_OutBuffer);
}

class CryptoBoxTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(S_OK, CryptoFilterBox::Create(IID__clsCryptoFilterBox, box_.OutVoid()));
    const Texts created = TakeTexts();  // the container's making first, if it was missing
    EXPECT_TRUE(!created.empty() && created.back() == L"InitUser OK");
  }
  void TearDown() override { EXPECT_EQ(Texts(), TakeTexts()); }  // a test takes the messages it expects
  Texts TakeTexts() {  // each a plain OK box with no owner under the library's title
    EXPECT_TRUE(platform_.unexpected.empty());
    Texts texts;
    for (const auto& box : platform_.messages) {
      EXPECT_TRUE(!box.owner && box.caption == L"Brevantis" && box.style == static_cast<UINT>(MB_OK));
      texts.push_back(box.text);
    }
    platform_.messages.clear();
    return texts;
  }
  RecordingPlatform platform_{RecordingPlatform::kMessage};
  ScopedPlatform scoped_{&platform_};
  ComPtr<Box> box_;
};

// The Base provider's RC4 of data, keyed by the MD5 of the pass phrase alone (40 bits: 5 bytes and 11 of zero salt).
std::string Rc4(const std::string& phrase, std::string data) {
  HCRYPTPROV context = 0;
  HCRYPTHASH hash = 0;
  HCRYPTKEY key = 0;
  DWORD size = static_cast<DWORD>(data.size());
  EXPECT_TRUE(CryptAcquireContextA(&context, nullptr, kProvider, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT) &&
              CryptCreateHash(context, CALG_MD5, 0, 0, &hash) &&
              CryptHashData(hash, reinterpret_cast<const BYTE*>(phrase.data()), static_cast<DWORD>(phrase.size()), 0) &&
              CryptDeriveKey(context, CALG_RC4, hash, 0, &key) &&
              CryptEncrypt(key, 0, TRUE, 0, reinterpret_cast<BYTE*>(&data[0]), &size, size));
  return data;
}

TEST_F(CryptoBoxTest, TheCipherIsRc4KeyedByTheMd5OfThePasswordAndDecryptUndoesIt) {
  // An empty text after one that left an OutBuffer; 16 MiB of cipher text: every byte through the code page and back.
  const std::string text = "Perch\xe9 la citt\xe0 \xe8 gi\xe0 cos\xec bella: \x80 1.250";
  const struct { std::string password, text; } rows[] = {
      {"segreto", text}, {"Segreto", text}, {std::string("segreto\0", 8), text},
      {"\xe8 \x80", std::string("\0\0a\0", 4)}, {"", ""}, {"se", std::string(16u << 20, 'x')}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.password + ", " + std::to_string(row.text.size()) + " bytes");
    Set(box_, &Box::put_Password, FromAnsi(row.password));
    const std::wstring secret = Through(box_, &Box::Encrypt, FromAnsi(row.text));
    EXPECT_TRUE(FromAnsi(Rc4(row.password, row.text)) == secret);
    EXPECT_TRUE(FromAnsi(row.text) == Through(box_, &Box::Decrypt, secret));
  }
}

// A mismatch is an answer, not a failure: it shows nothing (TearDown checks).
TEST_F(CryptoBoxTest, ASignatureConfirmsItsOwnTextOnly) {
  for (const std::wstring& text : {std::wstring(16u << 20, L'\u00e8'), std::wstring(L"a\0b", 3), std::wstring()}) {
    SCOPED_TRACE(text.size());
    EXPECT_EQ(1, Call(box_, &Box::Sign, text));
    EXPECT_EQ(64u, Get(box_, &Box::get_Signature).size());  // 512-bit RSA, a character a byte
    for (const std::wstring& changed : {text + L" ", text.substr(0, text.size() - 1) + L"c"})  // past a NUL too
      EXPECT_EQ(1, Call(box_, &Box::Validate, changed));
    EXPECT_EQ(2, Call(box_, &Box::Validate, text));
  }
  for (const std::wstring& other : {std::wstring(), Get(box_, &Box::get_Signature).substr(1) + L"x",
                                    std::wstring(64, L'\0'), std::wstring(999, L'e')}) {
    Set(box_, &Box::put_Signature, other);
    EXPECT_EQ(1, Call(box_, &Box::Validate, L"")) << other.size();
  }
}

TEST_F(CryptoBoxTest, TheKeyContainerIsMadeByTheFirstObjectAndMissedByTheMethodsWhenGone) {
  Set(box_, &Box::put_Password, L"segreto");
  const std::wstring secret = Through(box_, &Box::Encrypt, L"Atlante");
  EXPECT_EQ(1, Call(box_, &Box::Sign, L"Atlante"));
  HCRYPTPROV gone = 0;
  ASSERT_TRUE(CryptAcquireContextA(&gone, "", kProvider, PROV_RSA_FULL, CRYPT_DELETEKEYSET));
  EXPECT_EQ(secret, Through(box_, &Box::Encrypt, L"Altro"));  // Encrypt leaves its last result, the others not
  EXPECT_EQ(L"", Through(box_, &Box::Decrypt, secret));
  EXPECT_EQ(1, Call(box_, &Box::Sign, L"Atlante"));
  EXPECT_EQ(L"", Get(box_, &Box::get_Signature));
  EXPECT_EQ(1, Call(box_, &Box::Validate, L"Atlante"));
  EXPECT_EQ(Texts(4, L"Error " + std::to_wstring(NTE_BAD_KEYSET) + L" during CryptAcquireContext!"), TakeTexts());
  char user[256] = {};
  DWORD size = sizeof(user);
  ASSERT_TRUE(GetUserNameA(user, &size));
  ComPtr<Box> first;
  ASSERT_EQ(S_OK, CryptoFilterBox::Create(IID__clsCryptoFilterBox, first.OutVoid()));
  EXPECT_EQ(Texts({L"Create key container " + FromAnsi(user, strlen(user)), L"Create key exchange key pair",
                   L"Create key exchange key pair", L"InitUser OK"}), TakeTexts());  // one text for either kind
}

TEST_F(CryptoBoxTest, ManyCallsOfEachMethodLeaveNothingBehind) {
  Set(box_, &Box::put_Password, L"segreto");
  const std::pair<Method, LONG> methods[] = {
      {&Box::Sign, 1}, {&Box::Validate, 2}, {&Box::Encrypt, 1}, {&Box::Decrypt, 1}};
  for (const auto& method : methods) {
    EXPECT_EQ(method.second, Call(box_, method.first, L"Testo"));  // the first call's caches
    const size_t heapBytes = HeapBytesInUse();
    for (int i = 0; i < 200; ++i) ASSERT_EQ(method.second, Call(box_, method.first, L"Testo"));
    EXPECT_LE(HeapBytesInUse(), heapBytes + 4096);  // a context, hash or key left open: 40 B to 7 KiB a call
  }
}

TEST_F(CryptoBoxTest, UnexpectedFailuresShowTheProcedureTagAndADescription) {
  RunUnderHandler(L"Err ", [] { throw std::bad_alloc(); });
  RunUnderHandler(L"Err ", [] { (void)std::wstring().at(1); });
  RunUnderHandler(L"Err ", [] { throw 42; });
  RunUnderHandler(L"Err ", [] {});
  EXPECT_EQ(Texts({L"Err Out of memory", L"Err Internal error", L"Err Internal error"}), TakeTexts());
}

// The registered control through IDispatch, as a script sees it.
TEST_F(CryptoBoxTest, AScriptSignsValidatesEncryptsAndDecrypts) {
  MessageBoxWatcher watcher(L"Brevantis", 0);
  const intptr_t child = _wspawnlp(_P_NOWAIT, L"cscript.exe", L"cscript.exe", L"//nologo",
                                   L"\"" BREVANTIS_TESTS_DIR L"\\crypto\\scripts\\crypto_filter_box.vbs\"", nullptr);
  watcher.SetProcess(GetProcessId(reinterpret_cast<HANDLE>(child)));
  int exitCode = -1;
  EXPECT_EQ(child, _cwait(&exitCode, child, 0));
  EXPECT_EQ(0, exitCode);  // the script prints what went wrong
  EXPECT_EQ(Texts{L"InitUser OK"}, watcher.Texts());
}

}  // namespace
}  // namespace brevantis::testing
