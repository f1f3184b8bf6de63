#include "web/file_error.h"

#include "BrevantisLib_h.h"
#include "com/error_info.h"

namespace brevantis {
namespace {

constexpr wchar_t kSource[] = L"BrevantisLib.Brevantis";

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
  if (IsMissingFolder(win32Error))
    return RaiseError(ControlError(76), __uuidof(_Brevantis), kSource, L"Path not found");
  return RaiseError(ControlError(75), __uuidof(_Brevantis), kSource, L"Path/File access error");
}

}  // namespace brevantis
