#include "web/dial_up_chooser.h"

#include <memory>
#include <string>

#include "com/module.h"
#include "control/store.h"
#include "platform/platform.h"
#include "web/dial_up.h"
#include "web/web_resources.h"

namespace brevantis {
namespace {

class DialUpChooser {
 public:
  void ShowModal(HWND owner) {
    DialogBoxParamW(ThisModule(), MAKEINTRESOURCEW(IDD_RAS95), owner, Procedure, 0);
  }

 private:
  static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
    try {
      if (message == WM_INITDIALOG) {
        Load(dialog);
        return TRUE;
      }
      if (message == WM_COMMAND && LOWORD(wParam) == IDC_RAS95_COMMAND1) {
        DialSelected(dialog);
        EndDialog(dialog, IDOK);
        return TRUE;
      }
      if (message == WM_COMMAND && LOWORD(wParam) == IDC_RAS95_COMMAND2) {
        EndDialog(dialog, IDCANCEL);
        return TRUE;
      }
    } catch (...) {
      EndDialog(dialog, IDABORT);  // an exception must not cross the window procedure
      return TRUE;
    }
    return FALSE;
  }

  static void CentreOnScreen(HWND dialog) {
    RECT frame;
    GetWindowRect(dialog, &frame);
    const int width = frame.right - frame.left;
    const int height = frame.bottom - frame.top;
    SetWindowPos(dialog, nullptr, (GetSystemMetrics(SM_CXSCREEN) - width) / 2,
                 (GetSystemMetrics(SM_CYSCREEN) - height) / 2, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
  }

  // Fills Combo1 and selects the first entry; a missing library or an empty
  // list is the machine that cannot dial, and the form stays open.
  static void Load(HWND dialog) {
    CentreOnScreen(dialog);
    const HWND combo = GetDlgItem(dialog, IDC_RAS95_COMBO1);
    SendMessageW(combo, CB_RESETCONTENT, 0, 0);
    const DialUpEntries entries = EnumerateDialUpEntries();
    SendMessageW(combo, CB_RESETCONTENT, 0, 0);
    for (const std::wstring& name : entries.names)
      SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
    if (!entries.libraryLoaded || SendMessageW(combo, CB_SETCURSEL, 0, 0) == CB_ERR) WarnNotConfigured();
  }

  // Starts the shell's dial-up dialog for the selected entry, name unquoted.
  static void DialSelected(HWND dialog) {
    const HWND combo = GetDlgItem(dialog, IDC_RAS95_COMBO1);
    const LRESULT index = SendMessageW(combo, CB_GETCURSEL, 0, 0);
    const LRESULT length = index == CB_ERR ? CB_ERR : SendMessageW(combo, CB_GETLBTEXTLEN, index, 0);
    if (length == CB_ERR) return WarnNotConfigured();
    std::wstring name(static_cast<size_t>(length) + 1, L'\0');
    SendMessageW(combo, CB_GETLBTEXT, index, reinterpret_cast<LPARAM>(&name[0]));
    name.resize(static_cast<size_t>(length));
    if (!CurrentPlatform().StartProcess(RnaDialCommand(name), SW_SHOWNORMAL)) WarnNotConfigured();
  }
};

}  // namespace

std::wstring RnaDialCommand(const std::wstring& entry) {
  wchar_t windows[MAX_PATH] = {}, system[MAX_PATH] = {};
  const UINT windowsLength = GetWindowsDirectoryW(windows, MAX_PATH);
  const UINT systemLength = GetSystemDirectoryW(system, MAX_PATH);
  if (windowsLength == 0 || windowsLength >= MAX_PATH || systemLength == 0 || systemLength >= MAX_PATH) return L"";
  return L"\"" + std::wstring(windows, windowsLength) + L"\\rundll.exe\" " + std::wstring(system, systemLength) +
         L"\\rnaui.dll,RnaDial \"" + entry + L"\"";
}

void ShowDialUpChooser() {
  Store& store = CurrentStore();
  if (!store.dialUpChooser) store.dialUpChooser = std::make_shared<DialUpChooser>();
  static_cast<DialUpChooser*>(store.dialUpChooser.get())->ShowModal(GetActiveWindow());
}

}  // namespace brevantis
