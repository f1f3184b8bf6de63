// The control saved with its container's form: property bags, streams and
// storages all carry the same named values.
#include "control/brevantis_control.h"

#include "com/failure.h"
#include "model/persistence.h"
#include "model/store.h"

namespace brevantis {
namespace {

// The stream inside a storage that holds the control's values.
constexpr wchar_t kContentsStream[] = L"Contents";

}  // namespace

STDMETHODIMP BrevantisControl::GetClassID(CLSID* clsid) {
  if (!clsid) return E_POINTER;
  *clsid = CLSID_Brevantis;
  return S_OK;
}

STDMETHODIMP BrevantisControl::InitNew() {
  return Guarded([&] {
    CurrentStore().Initialise();
    dirty_ = false;
    return S_OK;
  });
}

STDMETHODIMP BrevantisControl::Load(IPropertyBag* bag, IErrorLog* log) {
  const HRESULT hr = LoadProperties(bag, log);
  if (SUCCEEDED(hr)) dirty_ = false;
  return hr;
}

STDMETHODIMP BrevantisControl::Save(IPropertyBag* bag, BOOL clearDirty, BOOL) {
  const HRESULT hr = SaveProperties(bag);
  if (SUCCEEDED(hr) && clearDirty) dirty_ = false;
  return hr;
}

STDMETHODIMP BrevantisControl::Load(IStream* stream) {
  const HRESULT hr = LoadPropertiesFromStream(stream);
  if (SUCCEEDED(hr)) dirty_ = false;
  return hr;
}

STDMETHODIMP BrevantisControl::Save(IStream* stream, BOOL clearDirty) {
  const HRESULT hr = SavePropertiesToStream(stream);
  if (SUCCEEDED(hr) && clearDirty) dirty_ = false;
  return hr;
}

STDMETHODIMP BrevantisControl::GetSizeMax(ULARGE_INTEGER* size) { return PropertiesSizeMax(size); }

STDMETHODIMP BrevantisControl::InitNew(IStorage* storage) {
  if (!storage) return E_POINTER;
  return InitNew();
}

STDMETHODIMP BrevantisControl::Load(IStorage* storage) {
  if (!storage) return E_POINTER;
  ComPtr<IStream> stream;
  const HRESULT hr = storage->OpenStream(kContentsStream, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, stream.Out());
  return FAILED(hr) ? hr : Load(stream.Get());
}

STDMETHODIMP BrevantisControl::Save(IStorage* storage, BOOL) {
  if (!storage) return E_POINTER;
  ComPtr<IStream> stream;
  const HRESULT hr = storage->CreateStream(kContentsStream, STGM_CREATE | STGM_WRITE | STGM_SHARE_EXCLUSIVE, 0, 0,
                                           stream.Out());
  return FAILED(hr) ? hr : Save(stream.Get(), TRUE);
}

}  // namespace brevantis
