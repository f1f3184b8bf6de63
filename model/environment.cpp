#include "model/environment.h"

#include <windows.h>

#include "com/text.h"
#include "platform/registry.h"
#include "version.h"

namespace brevantis {
namespace {

constexpr DWORD kVersionRecordSize = 148;  // OSVERSIONINFOA
constexpr UINT kSystemDirectoryChars = 260;
constexpr DWORD kTempPathChars = 100;

bool IsNtPlatform() {
  OSVERSIONINFOA info = {};
  static_assert(sizeof(info) == kVersionRecordSize, "OSVERSIONINFOA is 148 bytes");
  info.dwOSVersionInfoSize = kVersionRecordSize;
  // A failed call leaves the platform id 0: not NT.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
  GetVersionExA(&info);
#pragma GCC diagnostic pop
  return info.dwPlatformId == VER_PLATFORM_WIN32_NT;
}

std::wstring SystemDirectory() {
  char buffer[kSystemDirectoryChars];
  memset(buffer, ' ', sizeof(buffer));
  const UINT n = GetSystemDirectoryA(buffer, kSystemDirectoryChars);
  // A directory that does not fit is not supported: the buffer holds nothing of it.
  if (n == 0 || n >= kSystemDirectoryChars) return std::wstring();
  return FromAnsi(buffer, n);
}

// The temporary folder without its trailing backslash. A path too long for
// the 100-character buffer is asked for again with the size the system
// names, so that a long temporary path still works.
std::wstring TempDirectory() {
  std::string buffer(kTempPathChars, ' ');
  DWORD n = GetTempPathA(kTempPathChars, &buffer[0]);
  if (n > kTempPathChars) {
    buffer.assign(n, ' ');
    const DWORD again = GetTempPathA(n, &buffer[0]);
    n = again < n ? again : 0;
  }
  if (n == 0) return std::wstring();
  return FromAnsi(buffer.data(), n - 1);
}

}  // namespace

EnvironmentSnapshot TakeEnvironmentSnapshot() {
  EnvironmentSnapshot snapshot;
  snapshot.isWindowsNT = IsNtPlatform();
  snapshot.osName = ReadRegistryText(HKEY_LOCAL_MACHINE,
                                     snapshot.isWindowsNT ? L"Software\\Microsoft\\Windows NT\\CurrentVersion"
                                                          : L"Software\\Microsoft\\Windows\\CurrentVersion",
                                     L"ProductName");
  snapshot.systemDirectory = SystemDirectory();
  snapshot.tempDirectory = TempDirectory();
  return snapshot;
}

std::wstring FormatVersion(long major, long minor, long revision) {
  return DecimalText(major) + L"." + DecimalText(minor, 2) + L"." + DecimalText(revision, 4);
}

std::wstring ControlVersionString() {
  return FormatVersion(BREVANTIS_VERSION_MAJOR, BREVANTIS_VERSION_MINOR, BREVANTIS_VERSION_REVISION);
}

}  // namespace brevantis
