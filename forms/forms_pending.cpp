// The information screens are not there yet.
#include "forms/forms.h"

namespace brevantis {

HRESULT ShowControlAboutBox() { return E_NOTIMPL; }
HRESULT ShowProgramAboutBox() { return E_NOTIMPL; }
HRESULT ShowProgramSplashScreen() { return E_NOTIMPL; }
void StartSysInfo() {}

}  // namespace brevantis
