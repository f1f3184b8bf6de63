// What the methods leave behind and how they take large and odd input.
#include "crypto_box_fixture.h"

#include <wincrypt.h>
#include <algorithm>
#include <functional>

#include "crypto/messages.h"
#include "crypto/steps.h"
#include "testkit/process_counters.h"

using namespace brevantis;
using brevantis::testing::CryptoBoxTest;
using brevantis::testing::EveryByteValue;
using brevantis::testing::HandleCount;
using brevantis::testing::HeapBytesInUse;

namespace {

using Texts = std::vector<std::wstring>;

// Handles the provider itself keeps per context acquired and released on the
// user's container (Wine's keeps one), over n rounds.
DWORD ProviderHandleGrowth(int rounds) {
  const DWORD before = HandleCount();
  for (int i = 0; i < rounds; ++i) {
    HCRYPTPROV context = 0;
    EXPECT_TRUE(CryptAcquireContextA(&context, "", "Microsoft Base Cryptographic Provider v1.0", PROV_RSA_FULL, 0));
    CryptReleaseContext(context, 0);
  }
  return HandleCount() - before;
}

constexpr size_t kHeapTolerance = 8 * 1024;

TEST_F(CryptoBoxTest, AThousandCallsOfEachMethodLeaveNothingBehind) {
  box_.SetPassword(L"segreto");
  box_.SetInBuffer(L"Testo di prova \u00e8");
  const std::pair<const char*, std::function<HRESULT()>> methods[] = {
      {"Sign", [&] { return box_->Sign(); }}, {"Validate", [&] { return box_->Validate(); }},
      {"Encrypt", [&] { return box_->Encrypt(); }}, {"Decrypt", [&] { return box_->Decrypt(); }}};
  for (const auto& method : methods) ASSERT_EQ(S_OK, method.second());  // warm-up: libraries, caches
  ASSERT_GT(HandleCount(), 0u);
  // Each call acquires one context, and with it whatever the provider keeps.
  const DWORD providerGrowth = 10 * ProviderHandleGrowth(100);
  for (const auto& method : methods) {
    SCOPED_TRACE(method.first);
    const DWORD handles = HandleCount();
    const size_t heapBytes = HeapBytesInUse();
    for (int i = 0; i < 1000; ++i) ASSERT_EQ(S_OK, method.second());
    EXPECT_EQ(handles + providerGrowth, HandleCount());
    // Wine's own lazily made caches may grow a little; a handle or buffer
    // left behind by each of 1,000 calls would take far more than this.
    EXPECT_LE(HeapBytesInUse(), heapBytes + kHeapTolerance);
  }
  ASSERT_EQ(S_OK, box_->Validate());
  EXPECT_EQ(2, box_.Status());
  EXPECT_EQ(Texts(), box_.Texts());
}

TEST_F(CryptoBoxTest, SixteenMebibytesGoThroughEveryMethod) {
  std::wstring text;
  const std::wstring every = EveryByteValue();
  while (text.size() < (16u << 20)) text += every;
  text.resize(16u << 20);
  box_.SetPassword(L"segreto");
  const std::wstring secret = box_.Encrypt(text);
  ASSERT_EQ(text.size(), secret.size());
  EXPECT_TRUE(box_.Decrypt(secret) == text);
  box_.SetInBuffer(text);
  ASSERT_EQ(S_OK, box_->Sign());
  ASSERT_EQ(S_OK, box_->Validate());
  EXPECT_EQ(2, box_.Status());
  EXPECT_EQ(Texts(), box_.Texts());
}

// An unexpected failure inside a method: its own tag and the description,
// then the method goes on to its end.
// A wiped text leaves zeros in its whole buffer, past its last length too,
// and keeps the buffer for reuse.
TEST(WipeTest, ZeroesTheWholeBuffer) {
  std::wstring text(40, L's');
  text.resize(3);
  const wchar_t* const buffer = text.data();
  const size_t capacity = text.capacity();
  Wipe(&text);
  EXPECT_TRUE(text.empty());
  ASSERT_EQ(buffer, text.data());
  ASSERT_EQ(capacity, text.capacity());
  EXPECT_TRUE(std::all_of(buffer, buffer + capacity, [](wchar_t c) { return c == 0; }));
}

TEST_F(CryptoBoxTest, UnexpectedFailuresShowTheProcedureTagAndADescription) {
  RunUnderHandler(L"ErrEncrypt ", [] { throw std::bad_alloc(); });
  RunUnderHandler(L"ErrValidate ", [] { std::wstring().at(1); });
  RunUnderHandler(L"ErrSign ", [] { throw 42; });
  bool ran = false;
  RunUnderHandler(L"ErrDecrypt ", [&] { ran = true; });
  EXPECT_TRUE(ran);
  EXPECT_EQ(Texts({L"ErrEncrypt Out of memory", L"ErrValidate Internal error", L"ErrSign Internal error"}),
            box_.Texts());
  for (const auto& message : platform_.messages) {
    EXPECT_EQ(nullptr, message.owner);
    EXPECT_EQ(L"Brevantis", message.caption);
    EXPECT_EQ(static_cast<UINT>(MB_OK), message.style);
  }
}

}  // namespace
