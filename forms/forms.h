// The information screens the control's methods show.
#pragma once

#include <windows.h>

namespace brevantis {

// The control's own about box, modal with no owner; a new form each time (About).
HRESULT ShowControlAboutBox();

// The host program's about box, modal (ShowAbout).
HRESULT ShowProgramAboutBox();

// The host program's splash screen, modeless; it closes itself when its
// interval has passed (ShowSplashScreen).
HRESULT ShowProgramSplashScreen();

// Starts the system information tool, or says it is unavailable.
void StartSysInfo();

}  // namespace brevantis
