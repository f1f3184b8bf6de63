#include "com/error_info.h"

#include "com/raii.h"

namespace brevantis {

HRESULT RaiseError(HRESULT hr, REFIID iid, const wchar_t* source, const wchar_t* description) {
  ComPtr<ICreateErrorInfo> create;
  if (SUCCEEDED(CreateErrorInfo(create.Out()))) {
    create->SetGUID(iid);
    create->SetSource(const_cast<LPOLESTR>(source));
    create->SetDescription(const_cast<LPOLESTR>(description));
    ComPtr<IErrorInfo> info;
    if (SUCCEEDED(create.As(&info))) SetErrorInfo(0, info.Get());
  }
  return hr;
}

}  // namespace brevantis
