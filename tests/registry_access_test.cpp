// RegistryAccess against the real registry of the test prefix, in scratch
// keys under HKEY_CURRENT_USER (and HKEY_CLASSES_ROOT / HKEY_LOCAL_MACHINE
// where the choice of root is the point).
#include <gtest/gtest.h>

#include <string>

#include "com/raii.h"
#include "platform/registry_access.h"

using namespace brevantis;

namespace {

const std::wstring kScratch = L"Software\\BrevantisTests\\RegistryAccess";

class RegistryAccessTest : public ::testing::Test {
 protected:
  void SetUp() override { Clean(); }
  void TearDown() override { Clean(); }

  static void Clean() {
    for (HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) RegDeleteTreeW(root, kScratch.c_str());
    RegDeleteTreeW(HKEY_CLASSES_ROOT, L"BrevantisTests");
  }

  // Stores raw bytes as the value "v" of the scratch key.
  static void SetRaw(DWORD type, const void* bytes, DWORD count, HKEY root = HKEY_CURRENT_USER) {
    RegKey key;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(root, kScratch.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                             key.Out(), nullptr));
    ASSERT_EQ(ERROR_SUCCESS, RegSetValueExA(key.Get(), "v", 0, type, static_cast<const BYTE*>(bytes), count));
  }

  static std::wstring ReadUser(const std::wstring& name = L"v") {
    return ReadRegistryString(kScratch, name, false, true, false, false, false, false);
  }

  static bool KeyExists(HKEY root, const std::wstring& path) {
    RegKey key;
    return RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, key.Out()) == ERROR_SUCCESS;
  }

  // The value "v" as the registry holds it, through the wide API.
  static std::wstring StoredWide(HKEY root = HKEY_CURRENT_USER) {
    wchar_t data[300] = {};
    DWORD bytes = sizeof(data) - sizeof(wchar_t);
    if (RegGetValueW(root, kScratch.c_str(), L"v", RRF_RT_ANY | RRF_NOEXPAND, nullptr, data, &bytes) != ERROR_SUCCESS)
      return L"<missing>";
    return std::wstring(data, bytes / sizeof(wchar_t));
  }
};

TEST_F(RegistryAccessTest, WithNoFlagSetNothingIsReadOrWritten) {
  SetRaw(REG_SZ, "abc", 4);
  EXPECT_EQ(L"", ReadRegistryString(kScratch, L"v", false, false, false, false, false, false));

  WriteRegistryString(kScratch + L"\\New", L"v", L"text", false, false, false, false, false, false);
  EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, kScratch + L"\\New"));
  EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, kScratch + L"\\New"));
}

TEST_F(RegistryAccessTest, TheEarliestFlagWins) {
  SetRaw(REG_SZ, "user", 5, HKEY_CURRENT_USER);
  SetRaw(REG_SZ, "machine", 8, HKEY_LOCAL_MACHINE);
  EXPECT_EQ(L"user", ReadRegistryString(kScratch, L"v", false, true, true, true, true, true));
  EXPECT_EQ(L"machine", ReadRegistryString(kScratch, L"v", false, false, true, true, true, true));

  // Classes root comes before the current user.
  WriteRegistryString(L"BrevantisTests", L"v", L"classes", true, true, false, false, false, false);
  EXPECT_TRUE(KeyExists(HKEY_CLASSES_ROOT, L"BrevantisTests"));
  EXPECT_EQ(L"classe", ReadRegistryString(L"BrevantisTests", L"v", true, true, false, false, false, false));
  EXPECT_EQ(L"user", ReadUser());  // the current user's value was not touched
}

TEST_F(RegistryAccessTest, ReadsValuesOfUpTo255BytesOnly) {
  const std::string fits(254, 'x');  // 254 characters and the NUL: 255 bytes
  SetRaw(REG_SZ, fits.c_str(), 255);
  EXPECT_EQ(std::wstring(254, L'x'), ReadUser());

  const std::string tooLong(255, 'y');  // 256 bytes with the NUL
  SetRaw(REG_SZ, tooLong.c_str(), 256);
  EXPECT_EQ(L"", ReadUser());
}

TEST_F(RegistryAccessTest, TheLastCountedByteIsDroppedUnseen) {
  SetRaw(REG_SZ, "abc", 4);  // with its NUL
  EXPECT_EQ(L"abc", ReadUser());
  SetRaw(REG_SZ, "abcX", 3);  // stored without a NUL (a NUL right after the data would be counted)
  EXPECT_EQ(L"ab", ReadUser());
  SetRaw(REG_SZ, "", 0);
  EXPECT_EQ(L"", ReadUser());
}

TEST_F(RegistryAccessTest, TheStoredTypeIsNotLookedAt) {
  const DWORD abc = 0x00636261;  // the bytes a, b, c, NUL
  SetRaw(REG_DWORD, &abc, sizeof(abc));
  EXPECT_EQ(L"abc", ReadUser());
  SetRaw(REG_BINARY, "xyzX", 3);
  EXPECT_EQ(L"xy", ReadUser());
}

TEST_F(RegistryAccessTest, WrittenTextHasNoNulAndReadsBackOneShorter) {
  WriteRegistryString(kScratch, L"v", L"abc", false, true, false, false, false, false);
  EXPECT_EQ(L"abc", StoredWide());
  EXPECT_EQ(L"ab", ReadUser());
}

TEST_F(RegistryAccessTest, TextGoesThroughTheAnsiCodePage) {
  const std::wstring city = L"Citt\u00e0 di Castello";
  WriteRegistryString(kScratch, L"v", city, false, true, false, false, false, false);
  EXPECT_EQ(city, StoredWide());
  EXPECT_EQ(city.substr(0, city.size() - 1), ReadUser());
}

TEST_F(RegistryAccessTest, WritingCreatesMissingKeysAlongThePath) {
  WriteRegistryString(kScratch + L"\\A\\B\\C", L"v", L"deep", false, true, false, false, false, false);
  EXPECT_EQ(L"dee", ReadRegistryString(kScratch + L"\\A\\B\\C", L"v", false, true, false, false, false, false));
}

TEST_F(RegistryAccessTest, MissingKeysAndValuesReadAsEmpty) {
  EXPECT_EQ(L"", ReadRegistryString(kScratch + L"\\Missing", L"v", false, true, false, false, false, false));
  SetRaw(REG_SZ, "abc", 4);
  EXPECT_EQ(L"", ReadUser(L"missing"));
}

TEST_F(RegistryAccessTest, AnOverlongPathFailsSilently) {
  const std::wstring path = kScratch + L"\\" + std::wstring(10000, L'k');
  WriteRegistryString(path, L"v", L"abc", false, true, false, false, false, false);
  EXPECT_EQ(L"", ReadRegistryString(path, L"v", false, true, false, false, false, false));
  DeleteRegistryKey(0x80000001, path);
}

TEST_F(RegistryAccessTest, DeleteRemovesAKeyWithoutSubKeysOnly) {
  WriteRegistryString(kScratch + L"\\Leaf", L"v", L"abc", false, true, false, false, false, false);
  WriteRegistryString(kScratch + L"\\Parent\\Child", L"v", L"abc", false, true, false, false, false, false);

  DeleteRegistryKey(0x80000001, kScratch + L"\\Leaf");
  DeleteRegistryKey(0x80000001, kScratch + L"\\Parent");
  DeleteRegistryKey(0x80000001, kScratch + L"\\NeverThere");

  EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, kScratch + L"\\Leaf"));
  EXPECT_TRUE(KeyExists(HKEY_CURRENT_USER, kScratch + L"\\Parent\\Child"));
}

}  // namespace
