// The control's properties: gets and puts over the shared store.
#include "control/brevantis_control.h"

#include <olectl.h>

#include "com/failure.h"
#include "com/text.h"
#include "model/control_errors.h"
#include "model/store.h"

namespace brevantis {
HRESULT BrevantisControl::GetString(Prop p, BSTR* value) {
  if (!value) return E_POINTER;
  return Guarded([&] { return ToBstr(CurrentStore()[p].text, value); });
}

HRESULT BrevantisControl::PutString(Prop p, BSTR value) {
  return Guarded([&] {
    std::wstring text = FromBstr(value);
    const ULONG maxLength = kProperties[p].maxLength;
    if (maxLength && text.size() > maxLength) text.resize(maxLength);
    RETURN_IF_FAILED(CheckWritable(p, &text));
    CurrentStore()[p].text = std::move(text);
    Changed(p);
    return S_OK;
  });
}

HRESULT BrevantisControl::GetLong(Prop p, LONG* value) {
  if (!value) return E_POINTER;
  *value = CurrentStore()[p].number;
  return S_OK;
}

HRESULT BrevantisControl::PutLong(Prop p, LONG value) {
  return Guarded([&] {
    RETURN_IF_FAILED(CheckWritable(p, nullptr));
    CurrentStore()[p].number = value;
    Changed(p);
    return S_OK;
  });
}

HRESULT BrevantisControl::GetPicture(Prop p, IPictureDisp** value) {
  if (!value) return E_POINTER;
  return Guarded([&] {
    *value = ComPtr<IPictureDisp>(CurrentStore()[p].picture).Detach();
    return S_OK;
  });
}

HRESULT BrevantisControl::PutPicture(Prop p, IPictureDisp* value) {
  return Guarded([&] {
    // Through IDispatch any object can arrive here: only a picture is taken.
    ComPtr<IPicture> picture;
    if (value && FAILED(value->QueryInterface(IID_IPicture, picture.OutVoid())))
      return RaiseControlError(481, L"Invalid picture");
    CurrentStore()[p].picture = ComPtr<IPictureDisp>(value);
    Changed(p);
    return S_OK;
  });
}

STDMETHODIMP BrevantisControl::get_IsWindowsNT(VARIANT_BOOL* value) {
  if (!value) return E_POINTER;
  *value = static_cast<VARIANT_BOOL>(CurrentStore()[kIsWindowsNT].number);
  return S_OK;
}

STDMETHODIMP BrevantisControl::put_IsWindowsNT(VARIANT_BOOL) {
  return Guarded([&] { return CheckWritable(kIsWindowsNT, nullptr); });
}

HRESULT BrevantisControl::CheckWritable(Prop p, const std::wstring* newText) {
  switch (kProperties[p].access) {
    case Access::ReadWrite:
      return S_OK;
    case Access::Version:
      if (newText && *newText == CurrentStore()[p].text) return S_OK;
      return RaiseControlError(383, L"Set not supported (read-only property)");
    case Access::Environment:
      break;
  }
  if (IsDesignTime()) return RaiseControlError(387, L"Set not permitted");
  return RaiseControlError(382, L"Set not supported at runtime");
}

// Design time when the container's ambient user mode says false; no site,
// no ambient dispatch or no answer is run time.
bool BrevantisControl::IsDesignTime() {
  ComPtr<IDispatch> ambient;
  if (!site_ || FAILED(site_->QueryInterface(IID_IDispatch, ambient.OutVoid()))) return false;
  DISPPARAMS none = {};
  Variant userMode;
  if (FAILED(ambient->Invoke(DISPID_AMBIENT_USERMODE, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none,
                             userMode.Get(), nullptr, nullptr)) ||
      FAILED(VariantChangeType(userMode.Get(), userMode.Get(), 0, VT_BOOL)))
    return false;
  return V_BOOL(userMode.Get()) == VARIANT_FALSE;
}

void BrevantisControl::Changed(Prop p) {
  dirty_ = true;
  for (const auto& sink : connectionPoints_.Find(IID_IPropertyNotifySink)->Sinks<IPropertyNotifySink>(
           IID_IPropertyNotifySink))
    sink->OnChanged(kProperties[p].dispid);
}

}  // namespace brevantis
