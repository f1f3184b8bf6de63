#include "web/file_error.h"

#include "model/control_errors.h"

namespace brevantis {
namespace {

bool IsMissingFolder(DWORD error) {
  switch (error) {
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
      return true;
    default:
      return false;
  }
}

}  // namespace

HRESULT RaiseFileError(DWORD win32Error) {
  if (IsMissingFolder(win32Error)) return RaiseControlError(76, L"Path not found");
  return RaiseControlError(75, L"Path/File access error");
}

}  // namespace brevantis
