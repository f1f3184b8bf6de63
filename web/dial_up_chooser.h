// frmRAS95, the Windows 95 dial-up chooser: lists the phone-book entries in
// Combo1 and starts the shell's dial-up dialog for the one chosen.
#pragma once

#include <windows.h>
#include <string>

namespace brevantis {

// The command that dials entry through the shell's dial-up dialog: rundll
// from the Windows folder and rnaui.dll from the system folder by their full
// paths (never a planted copy in the host's folder or the current one), the
// entry's name quoted.
std::wstring RnaDialCommand(const std::wstring& entry);

// Shows the chooser modally and returns when it is unloaded; its warnings
// carry programName.
void ShowDialUpChooser(const std::wstring& programName);

}  // namespace brevantis
