#include "control/brevantis_control.h"

#include "com/guard.h"
#include "com/text.h"
#include "control/store.h"

namespace brevantis {
namespace {

constexpr wchar_t kSource[] = L"BrevantisLib.Brevantis";

}  // namespace

const InterfaceEntry* BrevantisControl::Interfaces() {
  static const InterfaceEntry table[] = {
      BREVANTIS_INTERFACE(BrevantisControl, _Brevantis),
      BREVANTIS_INTERFACE_AS(BrevantisControl, IDispatch, _Brevantis),
      BREVANTIS_INTERFACE(BrevantisControl, ISupportErrorInfo),
      BREVANTIS_INTERFACE_END,
  };
  return table;
}

HRESULT BrevantisControl::Create(REFIID iid, void** out) {
  return Guarded([&] { return ComObject<BrevantisControl>::Create(iid, out); });
}

STDMETHODIMP BrevantisControl::About() { return E_NOTIMPL; }
STDMETHODIMP BrevantisControl::OpenCD() { return E_NOTIMPL; }
STDMETHODIMP BrevantisControl::ShowAbout() { return E_NOTIMPL; }
STDMETHODIMP BrevantisControl::ShowSplashScreen() { return E_NOTIMPL; }
STDMETHODIMP BrevantisControl::WebConnect(BSTR) { return E_NOTIMPL; }

HRESULT BrevantisControl::GetString(Prop p, BSTR* value) {
  if (!value) return E_POINTER;
  return Guarded([&] { return ToBstr(CurrentStore()[p].text, value); });
}

HRESULT BrevantisControl::PutString(Prop p, BSTR value) {
  return Guarded([&] {
    std::wstring text = FromBstr(value);
    const ULONG maxLength = kProperties[p].maxLength;
    if (maxLength && text.size() > maxLength) text.resize(maxLength);
    const HRESULT hr = CheckWritable(p, &text);
    if (FAILED(hr)) return hr;
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
    const HRESULT hr = CheckWritable(p, nullptr);
    if (FAILED(hr)) return hr;
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
      return RaiseError(ControlError(383), __uuidof(_Brevantis), kSource,
                        L"Set not supported (read-only property)");
    case Access::Environment:
      break;
  }
  if (IsDesignTime())
    return RaiseError(ControlError(387), __uuidof(_Brevantis), kSource, L"Set not permitted");
  return RaiseError(ControlError(382), __uuidof(_Brevantis), kSource, L"Set not supported at runtime");
}

// Without a client site there is no ambient user mode: that is run time.
bool BrevantisControl::IsDesignTime() { return false; }

void BrevantisControl::Changed(Prop) {}

}  // namespace brevantis
