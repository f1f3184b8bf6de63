// Late binding as a script host does it: names looked up through
// GetIDsOfNames, values passed as VARIANTs. Used by the demo host and tests.
#pragma once

#include <windows.h>
#include <oaidl.h>
#include <string>

#include "com/raii.h"

namespace brevantis {

class DispatchClient {
 public:
  explicit DispatchClient(IDispatch* object = nullptr) : object_(object) {}

  // Creates the object registered under progId.
  HRESULT Create(const wchar_t* progId) {
    CLSID clsid;
    HRESULT hr = CLSIDFromProgID(progId, &clsid);
    if (FAILED(hr)) return hr;
    return CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object_.OutVoid());
  }

  IDispatch* Get() const { return object_.Get(); }

  // Calls name with args (in natural order) and the given DISPATCH_ flags.
  HRESULT Call(const wchar_t* name, WORD flags, VARIANT* args, UINT count, VARIANT* result,
               EXCEPINFO* exception = nullptr) {
    DISPID id = 0;
    LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
    HRESULT hr = object_->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(hr)) return hr;
    // DISPPARAMS holds the arguments last first.
    VARIANT reversed[8];
    for (UINT i = 0; i < count && i < 8; ++i) reversed[i] = args[count - 1 - i];
    DISPID named = DISPID_PROPERTYPUT;
    DISPPARAMS params = {reversed, nullptr, count, 0};
    if (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) {
      params.rgdispidNamedArgs = &named;
      params.cNamedArgs = 1;
    }
    EXCEPINFO local = {};
    hr = object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &params, result,
                         exception ? exception : &local, nullptr);
    if (!exception) {
      SysFreeString(local.bstrSource);
      SysFreeString(local.bstrDescription);
      SysFreeString(local.bstrHelpFile);
    }
    return hr;
  }

  HRESULT Put(const wchar_t* name, const VARIANT& value, EXCEPINFO* exception = nullptr) {
    VARIANT arg = value;
    return Call(name, DISPATCH_PROPERTYPUT, &arg, 1, nullptr, exception);
  }
  HRESULT PutString(const wchar_t* name, const wchar_t* text, EXCEPINFO* exception = nullptr) {
    Bstr value(text);
    VARIANT arg;
    VariantInit(&arg);
    V_VT(&arg) = VT_BSTR;
    V_BSTR(&arg) = value.Get();
    return Put(name, arg, exception);
  }
  HRESULT GetValue(const wchar_t* name, Variant* result) {
    return Call(name, DISPATCH_PROPERTYGET, nullptr, 0, result->Out());
  }
  // The property as text; an empty string when the get fails.
  std::wstring GetString(const wchar_t* name) {
    Variant value;
    if (FAILED(GetValue(name, &value)) || FAILED(VariantChangeType(value.Get(), value.Get(), VARIANT_ALPHABOOL, VT_BSTR)))
      return std::wstring();
    BSTR text = V_BSTR(value.Get());
    return text ? std::wstring(text, SysStringLen(text)) : std::wstring();
  }

 private:
  ComPtr<IDispatch> object_;
};

}  // namespace brevantis
