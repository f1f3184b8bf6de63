#include "web/dial_up_chooser.h"

#include "com/failure.h"
#include "com/module.h"
#include "platform/platform.h"
#include "platform/ui.h"
#include "web/dial_up.h"
#include "web/web_resources.h"

namespace brevantis {
namespace {

const std::wstring& ProgramName(HWND dialog) {
  return *reinterpret_cast<const std::wstring*>(GetWindowLongPtrW(dialog, DWLP_USER));
}

// Fills Combo1 and selects the first entry; a missing library or an empty
// list is the machine that cannot dial, and the form stays open.
void Load(HWND dialog) {
  CentreOnScreen(dialog);
  const HWND combo = GetDlgItem(dialog, IDC_RAS95_COMBO1);
  SendMessageW(combo, CB_RESETCONTENT, 0, 0);
  const DialUpEntries entries = EnumerateDialUpEntries();
  for (const std::wstring& name : entries.names)
    SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
  if (!entries.libraryLoaded || SendMessageW(combo, CB_SETCURSEL, 0, 0) == CB_ERR)
    WarnNotConfigured(ProgramName(dialog));
}

// Starts the shell's dial-up dialog for the selected entry.
void DialSelected(HWND dialog) {
  const HWND combo = GetDlgItem(dialog, IDC_RAS95_COMBO1);
  const LRESULT index = SendMessageW(combo, CB_GETCURSEL, 0, 0);
  const LRESULT length = index == CB_ERR ? CB_ERR : SendMessageW(combo, CB_GETLBTEXTLEN, index, 0);
  if (length == CB_ERR) return WarnNotConfigured(ProgramName(dialog));
  std::wstring name(static_cast<size_t>(length) + 1, L'\0');
  SendMessageW(combo, CB_GETLBTEXT, index, reinterpret_cast<LPARAM>(&name[0]));
  name.resize(static_cast<size_t>(length));
  if (!CurrentPlatform().StartProcess(RnaDialCommand(name), SW_SHOWNORMAL)) WarnNotConfigured(ProgramName(dialog));
}

INT_PTR Answer(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrW(dialog, DWLP_USER, lParam);
    Load(dialog);
    return TRUE;
  }
  if (message != WM_COMMAND) return FALSE;
  switch (LOWORD(wParam)) {
    case IDC_RAS95_COMMAND1:
      DialSelected(dialog);
      EndDialog(dialog, IDOK);
      return TRUE;
    case IDC_RAS95_COMMAND2:
      EndDialog(dialog, IDCANCEL);
      return TRUE;
  }
  return FALSE;
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  HRESULT failure = S_OK;
  const INT_PTR result = GuardedMessage<INT_PTR>(TRUE, [&] { return Answer(dialog, message, wParam, lParam); }, &failure);
  if (FAILED(failure)) EndDialog(dialog, IDABORT);
  return result;
}

}  // namespace

std::wstring RnaDialCommand(const std::wstring& entry) {
  wchar_t windows[MAX_PATH] = {}, system[MAX_PATH] = {};
  const UINT windowsLength = GetWindowsDirectoryW(windows, MAX_PATH);
  const UINT systemLength = GetSystemDirectoryW(system, MAX_PATH);
  if (windowsLength == 0 || windowsLength >= MAX_PATH || systemLength == 0 || systemLength >= MAX_PATH) return L"";
  return L"\"" + std::wstring(windows, windowsLength) + L"\\rundll.exe\" " + std::wstring(system, systemLength) +
         L"\\rnaui.dll,RnaDial \"" + entry + L"\"";
}

void ShowDialUpChooser(const std::wstring& programName) {
  DialogBoxParamW(ThisModule(), MAKEINTRESOURCEW(IDD_RAS95), GetActiveWindow(), Procedure,
                  reinterpret_cast<LPARAM>(&programName));
}

}  // namespace brevantis
