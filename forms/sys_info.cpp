// StartSysInfo: the about box's "System Info..." button.
#include "com/text.h"
#include "forms/forms.h"
#include "platform/platform.h"
#include "platform/registry_access.h"
#include "web/vb_text.h"

namespace brevantis {
namespace {

std::wstring MachineValue(const wchar_t* key, const wchar_t* name) {
  return TrimSpaces(ReadRegistryString(key, name, false, false, true, false, false, false));
}

// An ordinary file (not a folder, hidden or system file) at exactly path.
bool NormalFileExists(const std::wstring& path) {
  const DWORD attributes = GetFileAttributesA(ToAnsi(path).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES &&
         !(attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM));
}

// The tool's command line, or "" when there is none to try.
std::wstring SysInfoCommand() {
  std::wstring command = MachineValue(L"SOFTWARE\\Microsoft\\Shared Tools\\MSINFO", L"PATH");
  if (!command.empty()) return command;
  // This value names a folder: starting it fails, and the user is told.
  command = MachineValue(L"SOFTWARE\\Microsoft\\Shared Tools Location", L"MSINFO");
  if (!command.empty()) return command;
  command += L"\\MSINFO32.EXE";  // in the root of the current drive
  return NormalFileExists(command) ? command : L"";
}

}  // namespace

void StartSysInfo() {
  try {
    const std::wstring command = SysInfoCommand();
    if (!command.empty() && CurrentPlatform().StartProcess(command, SW_SHOWNORMAL)) return;
  } catch (...) {
    // Whatever failed, the user hears the one message below.
  }
  try {
    // No title of its own: the control's name, as its other messages have.
    CurrentPlatform().ShowMessage(GetActiveWindow(), L"System Information Is Unavailable At This Time", L"Brevantis",
                                  MB_OK);
  } catch (...) {
    // Called from a button: nothing may escape the window procedure.
  }
}

}  // namespace brevantis
