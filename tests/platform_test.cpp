// The Win32 side of the platform interface, on the real system of the test
// prefix: what the adapters pass to Windows and bring back.
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "com/raii.h"
#include "com/text.h"
#include "platform/platform.h"

using namespace brevantis;

namespace {

std::wstring TempFile(const wchar_t* name) {
  wchar_t dir[MAX_PATH] = {};
  GetTempPathW(MAX_PATH, dir);
  return std::wstring(dir) + name;
}

void WriteFile(const std::wstring& path, const char* text) {
  FileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  ASSERT_TRUE(file);
  DWORD written = 0;
  ::WriteFile(file.Get(), text, static_cast<DWORD>(strlen(text)), &written, nullptr);
}

bool WaitForFile(const std::wstring& path) {
  for (int i = 0; i < 600; ++i) {  // up to 30 s on a busy machine
    if (GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) return true;
    Sleep(50);
  }
  return false;
}

TEST(Win32Platform, DriveListHoldsRootsSeparatedByNuls) {
  std::wstring buffer(64, L' ');
  const DWORD n = Win32Platform().ListDriveRoots(&buffer);
  ASSERT_GT(n, 0u);
  ASSERT_LT(n, 64u);
  const std::wstring list = buffer.substr(0, n);
  EXPECT_NE(std::wstring::npos, list.find(std::wstring(L"C:\\\0", 4)));
  EXPECT_EQ(L'\0', list.back());
  EXPECT_EQ(static_cast<UINT>(DRIVE_FIXED), Win32Platform().DriveKind(L"C:\\"));
  EXPECT_EQ(static_cast<UINT>(DRIVE_NO_ROOT_DIR), Win32Platform().DriveKind(L"Q:\\"));
}

TEST(Win32Platform, FindsTheProgramThatOpensAFile) {
  // A file type of the test's own, opened by Notepad.
  RegSetValueW(HKEY_CLASSES_ROOT, L".brvtest", REG_SZ, L"BrevantisTestFile", 0);
  RegSetValueW(HKEY_CLASSES_ROOT, L"BrevantisTestFile\\shell\\open\\command", REG_SZ,
               L"C:\\windows\\notepad.exe \"%1\"", 0);
  const std::wstring probe = TempFile(L"platform_probe.brvtest");
  WriteFile(probe, "probe");
  std::wstring buffer(255, L' ');
  const UINT_PTR code = Win32Platform().LookUpExecutable(probe, &buffer);
  DeleteFileW(probe.c_str());
  RegDeleteTreeW(HKEY_CLASSES_ROOT, L"BrevantisTestFile");
  RegDeleteTreeW(HKEY_CLASSES_ROOT, L".brvtest");

  EXPECT_GT(code, 32u);
  ASSERT_EQ(255u, buffer.size());
  const size_t nul = buffer.find(L'\0');
  ASSERT_NE(std::wstring::npos, nul);
  std::wstring path = buffer.substr(0, nul);
  CharLowerBuffW(&path[0], static_cast<DWORD>(path.size()));
  EXPECT_EQ(L"c:\\windows\\notepad.exe", path);
  EXPECT_EQ(L' ', buffer.back());  // the rest of the buffer comes back as it went in
}

TEST(Win32Platform, AMissingFileHasNoProgram) {
  std::wstring buffer(255, L' ');
  EXPECT_LE(Win32Platform().LookUpExecutable(TempFile(L"no_such_file.htm"), &buffer), 32u);
}

TEST(Win32Platform, ConnectionStateAndDialUpLibraryAnswer) {
  DWORD flags = 0;
  EXPECT_TRUE(Win32Platform().GetInternetConnectedState(&flags));
  EXPECT_NE(0u, flags);

  std::string records(264 * 256, '\0');
  DWORD size = 264 * 256, entries = 99, result = 1;
  *reinterpret_cast<DWORD*>(&records[0]) = 264;
  ASSERT_TRUE(Win32Platform().EnumDialUpEntries(&records[0], &size, &entries, &result));
  EXPECT_EQ(0u, result);
  EXPECT_EQ(0u, entries);
}

TEST(Win32Platform, StartsACommandLineWithoutWaiting) {
  const std::wstring marker = TempFile(L"platform_started.txt");
  DeleteFileW(marker.c_str());
  ASSERT_TRUE(Win32Platform().StartProcess(L"cmd.exe /c echo started>" + marker, SW_SHOWNORMAL));
  EXPECT_TRUE(WaitForFile(marker));
  DeleteFileW(marker.c_str());
  EXPECT_FALSE(Win32Platform().StartProcess(L"no_such_program_anywhere.exe x", SW_SHOWNORMAL));
}

// Answers the first message box with the given caption, after reading its text.
class MessageBoxAnswerer {
 public:
  MessageBoxAnswerer(const char* caption, int button) {
    thread_ = std::thread([=] {
      for (int i = 0; i < 1200 && !window_; ++i) {  // up to 30 s on a busy machine
        window_ = FindWindowA("#32770", caption);
        if (!window_) Sleep(25);
      }
      if (!window_) return;
      char text[256] = {};
      GetDlgItemTextA(window_, 0xFFFF, text, sizeof(text));
      text_ = text;
      PostMessageA(window_, WM_COMMAND, button, 0);
    });
  }
  ~MessageBoxAnswerer() { Join(); }
  void Join() { if (thread_.joinable()) thread_.join(); }
  const std::string& Text() const { return text_; }

 private:
  std::thread thread_;
  HWND window_ = nullptr;
  std::string text_;
};

TEST(Win32Platform, ShowsMessageBoxesInTheAnsiCodePage) {
  MessageBoxAnswerer answerer("Catalogo Citt\xe0 su CD", IDYES);
  const int answer = Win32Platform().ShowMessage(nullptr, L"Inserire il CD di Atlante nel lettore. \u00c8 pronto?",
                                                 L"Catalogo Citt\u00e0 su CD", MB_YESNO | MB_ICONEXCLAMATION);
  answerer.Join();
  EXPECT_EQ(IDYES, answer);
  EXPECT_EQ("Inserire il CD di Atlante nel lettore. \xc8 pronto?", answerer.Text());
}

}  // namespace
