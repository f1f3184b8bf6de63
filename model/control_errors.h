// The automation errors the control raises, numbered as the Basic runtime
// numbers them, with the control's own source and interface.
#pragma once

#include <windows.h>

namespace brevantis {

// Records the error for the calling thread (IErrorInfo) and returns its HRESULT.
HRESULT RaiseControlError(WORD number, const wchar_t* description);

}  // namespace brevantis
