// The Internet connection assistant: offers to connect an offline machine,
// through WinINet or, on Windows 95, through the dial-up chooser.
#pragma once

#include <windows.h>

namespace brevantis {

// owner is the window that owns the WinINet dial dialog.
void ShowConnectionAssistant(HWND owner);
short CountDialUpEntries();
bool IsRasInstalled();

}  // namespace brevantis
