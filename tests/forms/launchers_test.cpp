// The programs the screens start: the mail program of the e-mail link and
// the system information tool, with the registry of the test's prefix, first
// through the recording platform, then on the real system.
#include <windows.h>

#include <string>

#include "com/raii.h"
#include "com/text.h"
#include "form_probe.h"
#include "forms/forms.h"
#include "forms/mail.h"
#include "screens_fixture.h"
#include "testkit/message_box_watcher.h"

using namespace brevantis;
using namespace brevantis::testing;

namespace {

const char kMsinfoKey[] = "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO";
const char kLocationKey[] = "SOFTWARE\\Microsoft\\Shared Tools Location";
const char kMailKey[] = "mailto\\shell\\open\\command";
const wchar_t kUnavailable[] = L"System Information Is Unavailable At This Time";

// Sets a string value with its NUL; nullptr removes the key.
void SetValue(HKEY root, const char* key, const char* name, const char* value) {
  if (!value) {
    RegDeleteTreeA(root, key);
    return;
  }
  RegKey k;
  ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExA(root, key, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, k.Out(), nullptr));
  RegSetValueExA(k.Get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value), static_cast<DWORD>(strlen(value) + 1));
}

class Launchers : public ScreensTest {
 protected:
  void SetUp() override {
    ScreensTest::SetUp();
    ForgetSysInfo();
  }

  // No tool registered and none in the root of the current drive, C:.
  static void ForgetSysInfo() {
    SetValue(HKEY_LOCAL_MACHINE, kMsinfoKey, nullptr, nullptr);
    SetValue(HKEY_LOCAL_MACHINE, kLocationKey, nullptr, nullptr);
    SetCurrentDirectoryW(L"C:\\");
    DeleteFileW(L"C:\\MSINFO32.EXE");
  }

  // The command line SendMail starts for the registered command; "" when it starts nothing.
  std::wstring MailCommandFor(const char* registered) {
    platform_.processes.clear();
    SetValue(HKEY_CLASSES_ROOT, kMailKey, "", registered);
    SendMail(L"mailto:info@example.com");
    EXPECT_LE(platform_.processes.size(), 1u);
    return platform_.processes.empty() ? L"" : platform_.processes[0].commandLine;
  }

  // What StartSysInfo did: the command line it started ("" for none) and
  // whether it showed the message.
  std::pair<std::wstring, bool> SysInfo(const char* path, const char* location) {
    platform_.processes.clear();
    platform_.messages.clear();
    if (path) SetValue(HKEY_LOCAL_MACHINE, kMsinfoKey, "PATH", path);
    if (location) SetValue(HKEY_LOCAL_MACHINE, kLocationKey, "MSINFO", location);
    StartSysInfo();
    ForgetSysInfo();
    for (const auto& message : platform_.messages) {
      EXPECT_EQ(kUnavailable, message.text);
      EXPECT_EQ(L"Brevantis", message.caption);
      EXPECT_EQ(0u, message.style);
    }
    EXPECT_LE(platform_.messages.size(), 1u);
    return {platform_.processes.empty() ? L"" : platform_.processes[0].commandLine, !platform_.messages.empty()};
  }
};

TEST_F(Launchers, TheMailCommandIsCutAfterItsFirstSlash) {
  ScopedPlatform scope(&platform_);
  EXPECT_EQ(L"\"C:\\Program Files\\Posta\\posta.exe\" /mailto:info@example.com",
            MailCommandFor("\"C:\\Program Files\\Posta\\posta.exe\" /mail:%1"));
  EXPECT_EQ(L"%ProgramFiles%\\posta.exe /mailto:info@example.com", MailCommandFor("%ProgramFiles%\\posta.exe /m %1"));
  EXPECT_EQ(L"", MailCommandFor("\"%ProgramFiles%\\posta.exe\" /m %1")) << "a % second does nothing";
  EXPECT_EQ(L"mailto:info@example.com", MailCommandFor("C:\\posta.exe %1")) << "no slash leaves the address";
  EXPECT_EQ(L"", MailCommandFor(nullptr));
  EXPECT_EQ(L"", MailCommandFor(""));
}

TEST_F(Launchers, TheMailCommandIsReadIntoItsOwn256Characters) {
  ScopedPlatform scope(&platform_);
  const std::string fits = "C:\\" + std::string(249, 'p') + " /m";  // 255 and the NUL
  EXPECT_EQ(L"C:\\" + std::wstring(249, L'p') + L" /mailto:info@example.com", MailCommandFor(fits.c_str()));
  EXPECT_EQ(L"", MailCommandFor((fits + "x").c_str())) << "too long to read";
}

TEST_F(Launchers, SysInfoStartsTheRegisteredToolOrSaysItIsUnavailable) {
  ScopedPlatform scope(&platform_);
  EXPECT_EQ(std::make_pair(std::wstring(L"\"C:\\Program Files\\msinfo32.exe\""), false),
            SysInfo("  C:\\Program Files\\msinfo32.exe ", "X"));
  EXPECT_EQ(SW_SHOWNORMAL, platform_.processes.empty() ? 0 : platform_.processes[0].showCommand);
  EXPECT_EQ(std::make_pair(std::wstring(L"\"C:\\Tools\\msinfo32.exe\" /x"), false),
            SysInfo("\"C:\\Tools\\msinfo32.exe\" /x", nullptr));
  // Only the folder is known: it is started as it stands, which fails on a real system.
  EXPECT_EQ(std::make_pair(std::wstring(L"\"C:\\Shared\\MSInfo\""), false), SysInfo("   ", " C:\\Shared\\MSInfo "));
  platform_.processStarts = false;
  EXPECT_EQ(std::make_pair(std::wstring(L"\"C:\\Shared\\MSInfo\""), true), SysInfo(nullptr, "C:\\Shared\\MSInfo"));
  platform_.processStarts = true;
  // Nothing registered: the system's own tool, never one planted in the
  // root of the current drive.
  WriteTextFile(L"C:\\MSINFO32.EXE", "MZ");
  wchar_t system[MAX_PATH] = {};
  GetSystemDirectoryW(system, MAX_PATH);
  EXPECT_EQ(std::make_pair(L"\"" + std::wstring(system) + L"\\msinfo32.exe\"", false), SysInfo(nullptr, nullptr));
  DeleteFileW(L"C:\\MSINFO32.EXE");
}

TEST_F(Launchers, SysInfoOnTheRealSystem) {
  // A registered path with spaces starts that program.
  ScratchFolder folder;
  const std::wstring program = folder.Path() + L"\\System Info\\msinfo32.exe";
  InstallFakeBrowser(program);
  SetValue(HKEY_LOCAL_MACHINE, kMsinfoKey, "PATH", ToAnsi(program).c_str());
  StartSysInfo();
  EXPECT_EQ(1u, BrowserCommandLines(program, 1).size());

  ForgetSysInfo();
  SetValue(HKEY_LOCAL_MACHINE, kLocationKey, "MSINFO", "C:\\windows");  // a folder does not start
  MessageBoxWatcher watcher(L"Brevantis");
  StartSysInfo();
  EXPECT_EQ(std::vector<std::wstring>{kUnavailable}, watcher.Texts());
}

}  // namespace
