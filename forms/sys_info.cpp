// StartSysInfo: the about box's "System Info..." button.
#include "com/text.h"
#include "forms/forms.h"
#include "platform/platform.h"
#include "platform/registry.h"

namespace brevantis {
namespace {

std::wstring MachineValue(const wchar_t* key, const wchar_t* name) {
  return TrimSpaces(ReadRegistryText(HKEY_LOCAL_MACHINE, key, name));
}

// An ordinary file (not a folder, hidden or system file) at exactly path.
bool NormalFileExists(const std::wstring& path) {
  const DWORD attributes = GetFileAttributesA(ToAnsi(path).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES &&
         !(attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM));
}

// The tool's command line, or "" when there is none to try: the registered
// path, quoted so that a path with spaces starts that program and no other,
// else the system's own msinfo32.exe. Never a program in the root of the
// current drive, which may be anyone's share.
std::wstring SysInfoCommand() {
  std::wstring path = MachineValue(L"SOFTWARE\\Microsoft\\Shared Tools\\MSINFO", L"PATH");
  // This value names a folder: starting it fails, and the user is told.
  if (path.empty()) path = MachineValue(L"SOFTWARE\\Microsoft\\Shared Tools Location", L"MSINFO");
  if (path.empty()) {
    wchar_t system[MAX_PATH] = {};
    const UINT length = GetSystemDirectoryW(system, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return L"";
    path = std::wstring(system, length) + L"\\msinfo32.exe";
    if (!NormalFileExists(path)) return L"";
  }
  return path.front() == L'"' ? path : L"\"" + path + L"\"";
}

}  // namespace

void StartSysInfo() {
  const std::wstring command = SysInfoCommand();
  if (!command.empty() && CurrentPlatform().StartProcess(command, SW_SHOWNORMAL)) return;
  // No title of its own: the control's name, as its other messages have.
  CurrentPlatform().ShowMessage(GetActiveWindow(), L"System Information Is Unavailable At This Time", L"Brevantis",
                                MB_OK);
}

}  // namespace brevantis
