// The Win32 side of the platform interface on the test prefix's real win32.
#include <gtest/gtest.h>

#include "platform/platform.h"
#include "testkit/message_box_watcher.h"

namespace {

brevantis::Platform& win32 = brevantis::Win32Platform();

TEST(Win32Platform, AnswersAboutDrivesAndTheProgramsThatOpenFiles) {
  std::wstring drives(64, L' '), program(255, L' '), none(255, L' ');
  const DWORD n = win32.ListDriveRoots(&drives);
  ASSERT_LT(n, 64u);
  EXPECT_NE(std::wstring::npos, drives.substr(0, n).find(std::wstring(L"C:\\\0", 4)));  // roots, each ending in a NUL
  EXPECT_EQ(L'\0', drives.at(n - 1));
  EXPECT_EQ(static_cast<UINT>(DRIVE_FIXED), win32.DriveKind(L"C:\\"));
  EXPECT_EQ(static_cast<UINT>(DRIVE_NO_ROOT_DIR), win32.DriveKind(L"Q:\\"));
  EXPECT_GT(win32.LookUpExecutable(L"C:\\windows\\win.ini", &program), 32u);  // the prefix opens .ini with Notepad
  EXPECT_EQ(0, lstrcmpiW(L"C:\\windows\\system32\\notepad.exe", program.c_str())) << program.c_str();
  EXPECT_EQ(255u, program.size());
  EXPECT_EQ(L' ', program.back());  // the rest of the buffer comes back as it went in
  EXPECT_LE(win32.LookUpExecutable(L"C:\\windows\\no_such_file.ini", &none), 32u);
}

TEST(Win32Platform, ConnectionStateAndDialUpLibraryAnswer) {
  DWORD flags = 0, size = 264 * 4, entries = 99, result = 1;
  EXPECT_TRUE(win32.GetInternetConnectedState(&flags));
  EXPECT_NE(0u, flags);
  std::string records(size, '\0');
  *reinterpret_cast<DWORD*>(&records[0]) = 264;  // the record size the system expects
  ASSERT_TRUE(win32.EnumDialUpEntries(&records[0], &size, &entries, &result));
  EXPECT_EQ(0u, result);
  EXPECT_EQ(0u, entries);
}

TEST(Win32Platform, StartsACommandLineWithoutWaiting) {
  wchar_t dir[MAX_PATH] = {};
  const std::wstring marker = std::wstring(dir, GetTempPathW(MAX_PATH, dir)) + L"platform_started.txt";
  DeleteFileW(marker.c_str());
  ASSERT_TRUE(win32.StartProcess(L"cmd.exe /c echo started>" + marker, SW_SHOWNORMAL));
  // The command runs on its own: polled for up to 30 s on a busy machine.
  for (int i = 0; i < 600 && GetFileAttributesW(marker.c_str()) == INVALID_FILE_ATTRIBUTES; ++i) Sleep(50);
  EXPECT_TRUE(DeleteFileW(marker.c_str()));
  EXPECT_FALSE(win32.StartProcess(L"no_such_program_anywhere.exe x", SW_SHOWNORMAL));
}

TEST(Win32Platform, ShowsMessageBoxesInTheAnsiCodePage) {
  const std::wstring caption = L"Catalogo Citt\u00e0 su CD", text = L"Inserire il CD. \u00c8 pronto?";
  brevantis::testing::MessageBoxWatcher watcher(caption, GetCurrentProcessId(), IDYES);
  EXPECT_EQ(IDYES, win32.ShowMessage(nullptr, text, caption, MB_YESNO | MB_ICONEXCLAMATION));
  EXPECT_EQ(std::vector<std::wstring>{text}, watcher.Texts());
}

}  // namespace
