#include "platform/crypto_filter_box.h"

#include "com/guard.h"
#include "com/text.h"

namespace brevantis {

namespace {

const InterfaceEntry kCryptoInterfaces[] = {
    BREVANTIS_INTERFACE(CryptoFilterBox, _clsCryptoFilterBox),
    BREVANTIS_INTERFACE_AS(CryptoFilterBox, IDispatch, _clsCryptoFilterBox),
    BREVANTIS_INTERFACE(CryptoFilterBox, ISupportErrorInfo),
    BREVANTIS_INTERFACE_END,
};

}  // namespace

const InterfaceEntry* CryptoFilterBox::Interfaces() { return kCryptoInterfaces; }

HRESULT CryptoFilterBox::Create(REFIID iid, void** out) {
  return Guarded([&] { return ComObject<CryptoFilterBox>::Create(iid, out); });
}

STDMETHODIMP CryptoFilterBox::get_InBuffer(BSTR* value) { return Guarded([&] { return ToBstr(inBuffer_, value); }); }
STDMETHODIMP CryptoFilterBox::put_InBuffer(BSTR value) { return Guarded([&] { inBuffer_ = FromBstr(value); return S_OK; }); }
STDMETHODIMP CryptoFilterBox::get_OutBuffer(BSTR* value) { return Guarded([&] { return ToBstr(outBuffer_, value); }); }
STDMETHODIMP CryptoFilterBox::get_Signature(BSTR* value) { return Guarded([&] { return ToBstr(signature_, value); }); }
STDMETHODIMP CryptoFilterBox::put_Signature(BSTR value) { return Guarded([&] { signature_ = FromBstr(value); return S_OK; }); }
STDMETHODIMP CryptoFilterBox::get_Password(BSTR* value) { return Guarded([&] { return ToBstr(password_, value); }); }
STDMETHODIMP CryptoFilterBox::put_Password(BSTR value) { return Guarded([&] { password_ = FromBstr(value); return S_OK; }); }

STDMETHODIMP CryptoFilterBox::get_Status(LONG* value) {
  if (!value) return E_POINTER;
  *value = status_;
  return S_OK;
}

STDMETHODIMP CryptoFilterBox::Sign() { return E_NOTIMPL; }
STDMETHODIMP CryptoFilterBox::Validate() { return E_NOTIMPL; }
STDMETHODIMP CryptoFilterBox::Encrypt() { return E_NOTIMPL; }
STDMETHODIMP CryptoFilterBox::Decrypt() { return E_NOTIMPL; }

}  // namespace brevantis
