// The environment the control reports under different Windows versions, set
// per program in the test's own prefix, with product names the test writes.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "com/raii.h"

using namespace brevantis;

namespace {

const wchar_t kProbe[] = L"environment_probe.exe";
const wchar_t kNtKey[] = L"Software\\Microsoft\\Windows NT\\CurrentVersion";
const wchar_t k9xKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion";

std::wstring HereDir() {
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  std::wstring dir(path);
  return dir.substr(0, dir.rfind(L'\\') + 1);
}

void SetProductName(const wchar_t* key, const wchar_t* name) {
  RegKey k;
  ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_LOCAL_MACHINE, key, 0, nullptr, 0, KEY_SET_VALUE, nullptr, k.Out(),
                                           nullptr));
  RegSetValueExW(k.Get(), L"ProductName", 0, REG_SZ, reinterpret_cast<const BYTE*>(name),
                 static_cast<DWORD>((wcslen(name) + 1) * sizeof(wchar_t)));
}

// Runs the probe as the given Windows version; its report.
std::string ReportUnder(const wchar_t* version) {
  const std::wstring appKey = std::wstring(L"Software\\Wine\\AppDefaults\\") + kProbe;
  RegSetKeyValueW(HKEY_CURRENT_USER, appKey.c_str(), L"Version", REG_SZ, version,
                  static_cast<DWORD>((wcslen(version) + 1) * sizeof(wchar_t)));
  const std::wstring report = HereDir() + L"environment_report.txt";
  DeleteFileW(report.c_str());
  std::wstring line = L"\"" + HereDir() + kProbe + L"\" \"" + report + L"\"";
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION process = {};
  if (!CreateProcessW(nullptr, &line[0], nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
    return "cannot start the probe";
  KernelHandle thread(process.hThread), handle(process.hProcess);
  WaitForSingleObject(handle.Get(), 60000);
  std::ifstream in(report.c_str(), std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  DeleteFileW(report.c_str());
  return text.str();
}

class EnvironmentTest : public ::testing::Test {
 protected:
  void SetUp() override {
    SetProductName(kNtKey, L"Microsoft Windows XP");
    SetProductName(k9xKey, L"Microsoft Windows 95");
  }
};

TEST_F(EnvironmentTest, Windows95IsNotNtAndNamesItselfFromTheOtherKey) {
  EXPECT_EQ("IsWindowsNT=False\nOSName=Microsoft Windows 95\n", ReportUnder(L"win95"));
}

TEST_F(EnvironmentTest, WindowsXpIsNtAndNamesItselfFromTheNtKey) {
  EXPECT_EQ("IsWindowsNT=True\nOSName=Microsoft Windows XP\n", ReportUnder(L"winxp"));
}

TEST_F(EnvironmentTest, AMissingProductNameGivesAnEmptyName) {
  RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kNtKey, L"ProductName");
  EXPECT_EQ("IsWindowsNT=True\nOSName=\n", ReportUnder(L"winxp"));
}

}  // namespace
