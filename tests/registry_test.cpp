// The registry reader against the real registry of the test prefix, in a
// scratch key under HKEY_CURRENT_USER.
#include <gtest/gtest.h>

#include <string>

#include "com/raii.h"
#include "platform/registry.h"

using namespace brevantis;

namespace {

const std::wstring kScratch = L"Software\\BrevantisTests\\Registry";

class RegistryTest : public ::testing::Test {
 protected:
  void SetUp() override { RegDeleteTreeW(HKEY_CURRENT_USER, kScratch.c_str()); }
  void TearDown() override { RegDeleteTreeW(HKEY_CURRENT_USER, kScratch.c_str()); }

  // Stores raw bytes as the value "v" of the scratch key.
  static void SetRaw(DWORD type, const void* bytes, DWORD count) {
    RegKey key;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_CURRENT_USER, kScratch.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                                             nullptr, key.Out(), nullptr));
    ASSERT_EQ(ERROR_SUCCESS, RegSetValueExA(key.Get(), "v", 0, type, static_cast<const BYTE*>(bytes), count));
  }
  static std::wstring Read(DWORD bufferBytes = 255, const std::wstring& name = L"v") {
    return ReadRegistryText(HKEY_CURRENT_USER, kScratch, name, bufferBytes);
  }
};

TEST_F(RegistryTest, TheLastCountedByteIsTakenForTheNul) {
  const DWORD abc = 0x00636261;  // the bytes a, b, c, NUL
  const struct {
    DWORD type;
    const void* bytes;
    DWORD count;
    const wchar_t* read;
  } cases[] = {
      {REG_SZ, "abc", 4, L"abc"},
      {REG_SZ, "abcX", 3, L"ab"},  // stored without its NUL
      {REG_SZ, "", 0, L""},
      {REG_DWORD, &abc, 4, L"abc"},  // the stored type is not looked at
      {REG_BINARY, "\xE0X", 2, L"\u00e0"},  // through the ANSI code page
  };
  for (const auto& c : cases) {
    SetRaw(c.type, c.bytes, c.count);
    EXPECT_EQ(c.read, Read()) << c.count;
  }
}

TEST_F(RegistryTest, ValuesLongerThanTheBufferReadAsEmpty) {
  const std::string text(255, 'x');
  SetRaw(REG_SZ, text.c_str() + 1, 255);  // 254 characters and the NUL
  EXPECT_EQ(std::wstring(254, L'x'), Read());
  SetRaw(REG_SZ, text.c_str(), 256);
  EXPECT_EQ(L"", Read());
  EXPECT_EQ(std::wstring(255, L'x'), Read(256));
}

TEST_F(RegistryTest, MissingKeysAndValuesReadAsEmpty) {
  EXPECT_EQ(L"", ReadRegistryText(HKEY_CURRENT_USER, kScratch + L"\\Missing", L"v"));
  SetRaw(REG_SZ, "abc", 4);
  EXPECT_EQ(L"", Read(255, L"missing"));
}

}  // namespace
