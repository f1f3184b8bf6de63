// Window helpers the forms and the web services' dialogs share.
#pragma once

#include <windows.h>

namespace brevantis {

// Moves window to the middle of the screen, its size and z-order kept.
void CentreOnScreen(HWND window);

// Lets the window messages waiting now run once, as a DoEvents would: a
// splash screen paints, a host's pending work runs. A quit message is left
// for the host's own loop.
void RunPendingMessages();

}  // namespace brevantis
