#include "com/object.h"
#include "com/server.h"

namespace brevantis {
namespace {

class ClassFactory : public ComClassBase, public IClassFactory {
 public:
  static const InterfaceEntry* Interfaces();

  void Bind(const ServerClass* serverClass) { class_ = serverClass; }

  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (outer) return CLASS_E_NOAGGREGATION;
    return class_->create(iid, out);
  }
  STDMETHODIMP LockServer(BOOL lock) override {
    brevantis::LockServer(lock != FALSE);
    return S_OK;
  }

 private:
  const ServerClass* class_ = nullptr;
};

const InterfaceEntry kClassFactoryInterfaces[] = {
    BREVANTIS_INTERFACE(ClassFactory, IClassFactory),
    BREVANTIS_INTERFACE_END,
};

const InterfaceEntry* ClassFactory::Interfaces() { return kClassFactoryInterfaces; }

}  // namespace

HRESULT CreateClassFactory(const ServerClass& serverClass, REFIID iid, void** out) {
  ComPtr<IClassFactory> factory;
  HRESULT hr = ComObject<ClassFactory>::Create(IID_IClassFactory, factory.OutVoid());
  if (FAILED(hr)) return hr;
  static_cast<ClassFactory*>(factory.Get())->Bind(&serverClass);
  return factory->QueryInterface(iid, out);
}

const ServerClass* FindServerClass(REFCLSID clsid) {
  for (const ServerClass* c = ServerClasses(); c->clsid; ++c)
    if (IsEqualCLSID(clsid, *c->clsid)) return c;
  return nullptr;
}

}  // namespace brevantis
