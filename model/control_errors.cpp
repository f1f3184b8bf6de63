#include "model/control_errors.h"

#include "BrevantisLib_h.h"
#include "com/error_info.h"

namespace brevantis {

HRESULT RaiseControlError(WORD number, const wchar_t* description) {
  return RaiseError(ControlError(number), __uuidof(_Brevantis), L"BrevantisLib.Brevantis", description);
}

}  // namespace brevantis
