#include "testkit/test_container.h"

#include <olectl.h>

#include "BrevantisLib_h.h"

namespace brevantis::testing {
namespace {

const InterfaceEntry kBagInterfaces[] = {BREVANTIS_INTERFACE(TestPropertyBag, IPropertyBag), BREVANTIS_INTERFACE_END};
const InterfaceEntry kSiteInterfaces[] = {
    BREVANTIS_INTERFACE(TestSite, IOleClientSite),
    BREVANTIS_INTERFACE(TestSite, IDispatch),
    BREVANTIS_INTERFACE(TestSite, IOleInPlaceSite),
    BREVANTIS_INTERFACE_AS(TestSite, IOleWindow, IOleInPlaceSite),
    BREVANTIS_INTERFACE_END,
};
const InterfaceEntry kPlainSiteInterfaces[] = {BREVANTIS_INTERFACE(SiteWithoutAmbient, IOleClientSite),
                                               BREVANTIS_INTERFACE_END};
const InterfaceEntry kNotifyInterfaces[] = {BREVANTIS_INTERFACE(NotifySink, IPropertyNotifySink),
                                            BREVANTIS_INTERFACE_END};
const InterfaceEntry kEventInterfaces[] = {
    BREVANTIS_INTERFACE(ErrorEventSink, IDispatch),
    BREVANTIS_INTERFACE_AS(ErrorEventSink, __Brevantis, IDispatch),
    BREVANTIS_INTERFACE_END,
};

}  // namespace

const InterfaceEntry* TestPropertyBag::Interfaces() { return kBagInterfaces; }
const InterfaceEntry* NotifySink::Interfaces() { return kNotifyInterfaces; }
const InterfaceEntry* ErrorEventSink::Interfaces() { return kEventInterfaces; }
const InterfaceEntry* TestSite::Interfaces() { return kSiteInterfaces; }
const InterfaceEntry* SiteWithoutAmbient::Interfaces() { return kPlainSiteInterfaces; }

void TestPropertyBag::Set(const std::wstring& name, const VARIANT& value) {
  for (auto& entry : values_) {
    if (entry.first == name) {
      VariantCopy(entry.second.Get(), const_cast<VARIANT*>(&value));
      return;
    }
  }
  values_.emplace_back(name, Variant());
  VariantCopy(values_.back().second.Get(), const_cast<VARIANT*>(&value));
}

void TestPropertyBag::SetText(const std::wstring& name, const wchar_t* text) {
  Variant value;
  V_VT(value.Get()) = VT_BSTR;
  V_BSTR(value.Get()) = SysAllocString(text);
  Set(name, *value.Get());
}

bool TestPropertyBag::Has(const std::wstring& name) const {
  for (const auto& entry : values_)
    if (entry.first == name) return true;
  return false;
}

const VARIANT& TestPropertyBag::Value(const std::wstring& name) const {
  static const Variant empty;
  for (const auto& entry : values_)
    if (entry.first == name) return *entry.second.Get();
  return *empty.Get();
}

STDMETHODIMP TestPropertyBag::Read(LPCOLESTR name, VARIANT* value, IErrorLog*) {
  reads.push_back(name);
  if (failingRead == name) return E_FAIL;
  for (const auto& entry : values_)
    if (entry.first == name) return VariantCopy(value, const_cast<VARIANT*>(entry.second.Get()));
  return E_INVALIDARG;
}

STDMETHODIMP TestPropertyBag::Write(LPCOLESTR name, VARIANT* value) {
  writes.push_back(name);
  Set(name, *value);
  return S_OK;
}

STDMETHODIMP TestSite::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*, UINT*) {
  if (id != DISPID_AMBIENT_USERMODE || !result) return DISP_E_MEMBERNOTFOUND;
  V_VT(result) = VT_BOOL;
  V_BOOL(result) = userMode ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

STDMETHODIMP TestSite::GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document, LPRECT pos,
                                        LPRECT clip, LPOLEINPLACEFRAMEINFO) {
  *frame = nullptr;
  *document = nullptr;
  *pos = *clip = position;
  return S_OK;
}

STDMETHODIMP ErrorEventSink::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT*, EXCEPINFO*, UINT*) {
  if (id != 1 || !params || params->cArgs != 2) return DISP_E_MEMBERNOTFOUND;
  VARIANT& text = params->rgvarg[0];
  VARIANT& code = params->rgvarg[1];
  if (V_VT(&text) != (VT_BSTR | VT_BYREF) || V_VT(&code) != (VT_I2 | VT_BYREF)) return DISP_E_TYPEMISMATCH;
  BSTR value = *V_BSTRREF(&text);
  events.push_back({*V_I2REF(&code), value ? std::wstring(value, SysStringLen(value)) : std::wstring()});
  if (writeBack) {
    *V_I2REF(&code) = 999;
    SysFreeString(*V_BSTRREF(&text));
    *V_BSTRREF(&text) = SysAllocString(L"changed by the handler");
  }
  if (onError) onError();
  return result;
}

DWORD Connect(IUnknown* object, REFIID iid, IUnknown* sink) {
  ComPtr<IConnectionPointContainer> container;
  ComPtr<IConnectionPoint> point;
  DWORD cookie = 0;
  if (FAILED(object->QueryInterface(IID_IConnectionPointContainer, container.OutVoid())) ||
      FAILED(container->FindConnectionPoint(iid, point.Out())) || FAILED(point->Advise(sink, &cookie)))
    return 0;
  return cookie;
}

}  // namespace brevantis::testing
