// Automation errors with IErrorInfo, as script hosts and VB show them.
#pragma once

#include <windows.h>
#include <oaidl.h>

namespace brevantis {

// An HRESULT of the control facility carrying a VB error number (382 and the like).
constexpr HRESULT ControlError(WORD number) {
  return static_cast<HRESULT>(0x800A0000u | number);
}

// Records the error for the calling thread and returns hr, so a method can
// write `return RaiseError(...)`.
HRESULT RaiseError(HRESULT hr, REFIID iid, const wchar_t* source, const wchar_t* description);

// ISupportErrorInfo for a class whose errors come through its interface Itf.
template <class Itf>
class SupportErrorInfoFor : public ISupportErrorInfo {
 public:
  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID iid) override {
    return IsEqualIID(iid, __uuidof(Itf)) ? S_OK : S_FALSE;
  }
};

}  // namespace brevantis
