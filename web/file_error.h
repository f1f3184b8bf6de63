// The file errors a host sees when a file of the control cannot be written or
// deleted, numbered as the Basic runtime numbers them.
#pragma once

#include <windows.h>

namespace brevantis {

// Records the error for the calling thread (IErrorInfo) and returns it: 76
// "Path not found" when the folder is missing, 75 "Path/File access error"
// for every other failure. win32Error is the GetLastError of the failure.
HRESULT RaiseFileError(DWORD win32Error);

}  // namespace brevantis
