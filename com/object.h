// QueryInterface, reference counting and IDispatch written once for every
// class of the server. A class lists its interfaces in a table; ComObject<T>
// adds the IUnknown that serves it.
#pragma once

#include <windows.h>
#include <oaidl.h>
#include <cstddef>
#include <new>

#include "com/failure.h"
#include "com/module.h"
#include "com/raii.h"

namespace brevantis {

struct InterfaceEntry {
  const IID* iid;
  std::ptrdiff_t offset;  // from the object to the interface's vtable pointer
};

// The first entry also answers IUnknown. The table ends with {nullptr, 0}.
HRESULT QueryInterfaceFromTable(void* object, const InterfaceEntry* table, REFIID iid, void** out);

template <class Itf, class Class>
std::ptrdiff_t InterfaceOffset() {
  alignas(Class) static char probe[sizeof(void*)];
  Class* object = reinterpret_cast<Class*>(probe);
  return reinterpret_cast<char*>(static_cast<Itf*>(object)) - reinterpret_cast<char*>(object);
}

#define BREVANTIS_INTERFACE(Class, Itf) \
  { &__uuidof(Itf), ::brevantis::InterfaceOffset<Itf, Class>() }
#define BREVANTIS_INTERFACE_AS(Class, Itf, Via) \
  { &__uuidof(Itf), ::brevantis::InterfaceOffset<Via, Class>() }
#define BREVANTIS_INTERFACE_END { nullptr, 0 }

// T declares: static const InterfaceEntry* Interfaces(); and may declare
// HRESULT FinalConstruct() run once the object is counted.
template <class T>
class ComObject final : public T {
 public:
  template <class... Args>
  explicit ComObject(Args&&... args) : T(static_cast<Args&&>(args)...) { ObjectCreated(); }
  ~ComObject() override { ObjectDestroyed(); }

  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    return QueryInterfaceFromTable(this, T::Interfaces(), iid, out);
  }
  STDMETHODIMP_(ULONG) AddRef() override { return InterlockedIncrement(&refs_); }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = InterlockedDecrement(&refs_);
    if (left == 0) delete this;
    return left;
  }

  // A new object holding one reference, or nullptr; for code of the server
  // that prepares the object before handing out an interface.
  static ComObject* New() { return new (std::nothrow) ComObject(); }

  // Creates an object and hands out the interface iid, or fails cleanly.
  static HRESULT Create(REFIID iid, void** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    ComObject* object = New();
    if (!object) return E_OUTOFMEMORY;
    HRESULT hr = object->FinalConstruct();
    if (SUCCEEDED(hr)) hr = object->QueryInterface(iid, out);
    object->Release();
    return hr;
  }

 private:
  LONG refs_ = 1;
};

// Base class members every COM class shares.
class ComClassBase {
 public:
  virtual ~ComClassBase() = default;
  HRESULT FinalConstruct() { return S_OK; }
};

// IDispatch for the dual interface Itf, through the embedded type library.
template <class Itf>
class DispatchImpl : public Itf {
 public:
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    if (!count) return E_POINTER;
    *count = 1;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT index, LCID, ITypeInfo** out) override {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (index != 0) return DISP_E_BADINDEX;
    return GetOwnTypeInfo(__uuidof(Itf), out);
  }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    ComPtr<ITypeInfo> info;
    const HRESULT hr = GetOwnTypeInfo(__uuidof(Itf), info.Out());
    return FAILED(hr) ? hr : info->GetIDsOfNames(names, count, ids);
  }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params, VARIANT* result,
                      EXCEPINFO* exception, UINT* argError) override {
    ComPtr<ITypeInfo> info;
    RETURN_IF_FAILED(GetOwnTypeInfo(__uuidof(Itf), info.Out()));
    return info->Invoke(static_cast<Itf*>(this), id, flags, params, result, exception, argError);
  }
};

}  // namespace brevantis
