// RegistryAccess against the real registry of the test prefix, in scratch
// keys under HKEY_CURRENT_USER (and HKEY_CLASSES_ROOT / HKEY_LOCAL_MACHINE
// where the choice of root is the point).
#include <gtest/gtest.h>

#include <string>

#include "com/raii.h"
#include "platform/registry_access.h"

using namespace brevantis;

namespace {

// A scratch key of each test's own: the cases run in parallel in one prefix.
std::wstring ScratchKey() {
  const char* test = ::testing::UnitTest::GetInstance()->current_test_info()->name();
  return L"Software\\BrevantisTests\\RegistryAccess\\" + std::wstring(test, test + strlen(test));
}

std::wstring ClassesScratchKey() {
  const char* test = ::testing::UnitTest::GetInstance()->current_test_info()->name();
  return L"BrevantisTests" + std::wstring(test, test + strlen(test));
}

class RegistryAccessTest : public ::testing::Test {
 protected:
  void SetUp() override { Clean(); }
  void TearDown() override { Clean(); }

  static void Clean() {
    for (HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) RegDeleteTreeW(root, ScratchKey().c_str());
    RegDeleteTreeW(HKEY_CLASSES_ROOT, ClassesScratchKey().c_str());
  }

  // Stores raw bytes as the value "v" of the scratch key.
  static void SetRaw(DWORD type, const void* bytes, DWORD count, HKEY root = HKEY_CURRENT_USER) {
    RegKey key;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(root, ScratchKey().c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                             key.Out(), nullptr));
    ASSERT_EQ(ERROR_SUCCESS, RegSetValueExA(key.Get(), "v", 0, type, static_cast<const BYTE*>(bytes), count));
  }

  static std::wstring ReadUser(const std::wstring& name = L"v") {
    return ReadRegistryString(ScratchKey(), name, false, true, false, false, false, false);
  }

  static bool KeyExists(HKEY root, const std::wstring& path) {
    RegKey key;
    return RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, key.Out()) == ERROR_SUCCESS;
  }

  // The value "v" as the registry holds it, through the wide API.
  static std::wstring StoredWide(HKEY root = HKEY_CURRENT_USER) {
    wchar_t data[300] = {};
    DWORD bytes = sizeof(data) - sizeof(wchar_t);
    if (RegGetValueW(root, ScratchKey().c_str(), L"v", RRF_RT_ANY | RRF_NOEXPAND, nullptr, data, &bytes) != ERROR_SUCCESS)
      return L"<missing>";
    return std::wstring(data, bytes / sizeof(wchar_t));
  }
};

TEST_F(RegistryAccessTest, WithNoFlagSetNothingIsReadOrWritten) {
  SetRaw(REG_SZ, "abc", 4);
  EXPECT_EQ(L"", ReadRegistryString(ScratchKey(), L"v", false, false, false, false, false, false));

  WriteRegistryString(ScratchKey() + L"\\New", L"v", L"text", false, false, false, false, false, false);
  EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, ScratchKey() + L"\\New"));
  EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, ScratchKey() + L"\\New"));
}

TEST_F(RegistryAccessTest, TheEarliestFlagWins) {
  SetRaw(REG_SZ, "user", 5, HKEY_CURRENT_USER);
  SetRaw(REG_SZ, "machine", 8, HKEY_LOCAL_MACHINE);
  EXPECT_EQ(L"user", ReadRegistryString(ScratchKey(), L"v", false, true, true, true, true, true));
  EXPECT_EQ(L"machine", ReadRegistryString(ScratchKey(), L"v", false, false, true, true, true, true));

  // Classes root comes before the current user.
  WriteRegistryString(ClassesScratchKey(), L"v", L"classes", true, true, false, false, false, false);
  EXPECT_TRUE(KeyExists(HKEY_CLASSES_ROOT, ClassesScratchKey()));
  EXPECT_EQ(L"classe", ReadRegistryString(ClassesScratchKey(), L"v", true, true, false, false, false, false));
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
  WriteRegistryString(ScratchKey(), L"v", L"abc", false, true, false, false, false, false);
  EXPECT_EQ(L"abc", StoredWide());
  EXPECT_EQ(L"ab", ReadUser());
}

TEST_F(RegistryAccessTest, TextGoesThroughTheAnsiCodePage) {
  const std::wstring city = L"Citt\u00e0 di Castello";
  WriteRegistryString(ScratchKey(), L"v", city, false, true, false, false, false, false);
  EXPECT_EQ(city, StoredWide());
  EXPECT_EQ(city.substr(0, city.size() - 1), ReadUser());
}

TEST_F(RegistryAccessTest, WritingCreatesMissingKeysAlongThePath) {
  WriteRegistryString(ScratchKey() + L"\\A\\B\\C", L"v", L"deep", false, true, false, false, false, false);
  EXPECT_EQ(L"dee", ReadRegistryString(ScratchKey() + L"\\A\\B\\C", L"v", false, true, false, false, false, false));
}

TEST_F(RegistryAccessTest, MissingKeysAndValuesReadAsEmpty) {
  EXPECT_EQ(L"", ReadRegistryString(ScratchKey() + L"\\Missing", L"v", false, true, false, false, false, false));
  SetRaw(REG_SZ, "abc", 4);
  EXPECT_EQ(L"", ReadUser(L"missing"));
}

TEST_F(RegistryAccessTest, AnOverlongPathFailsSilently) {
  const std::wstring path = ScratchKey() + L"\\" + std::wstring(10000, L'k');
  WriteRegistryString(path, L"v", L"abc", false, true, false, false, false, false);
  EXPECT_EQ(L"", ReadRegistryString(path, L"v", false, true, false, false, false, false));
  DeleteRegistryKey(0x80000001, path);
}

TEST_F(RegistryAccessTest, DeleteRemovesAKeyWithoutSubKeysOnly) {
  WriteRegistryString(ScratchKey() + L"\\Leaf", L"v", L"abc", false, true, false, false, false, false);
  WriteRegistryString(ScratchKey() + L"\\Parent\\Child", L"v", L"abc", false, true, false, false, false, false);

  DeleteRegistryKey(0x80000001, ScratchKey() + L"\\Leaf");
  DeleteRegistryKey(0x80000001, ScratchKey() + L"\\Parent");
  DeleteRegistryKey(0x80000001, ScratchKey() + L"\\NeverThere");

  EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, ScratchKey() + L"\\Leaf"));
  EXPECT_TRUE(KeyExists(HKEY_CURRENT_USER, ScratchKey() + L"\\Parent\\Child"));
}

}  // namespace
