// frmRAS95, the Windows 95 dial-up chooser: lists the phone-book entries in
// Combo1 and starts the shell's dial-up dialog for the one chosen.
#pragma once

#include <windows.h>

namespace brevantis {

// The command that dials an entry; the space before the name is part of it.
constexpr wchar_t kRnaDialCommand[] = L"rundll rnaui.dll,RnaDial ";

// Shows the chooser modally (made on first need and kept in the store for the
// thread) and returns when it is unloaded.
void ShowDialUpChooser();

}  // namespace brevantis
