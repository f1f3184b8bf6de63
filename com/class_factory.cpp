#include "com/class_factory.h"
#include "com/failure.h"

#include "com/object.h"

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
  RETURN_IF_FAILED(ComObject<ClassFactory>::Create(IID_IClassFactory, factory.OutVoid()));
  static_cast<ClassFactory*>(factory.Get())->Bind(&serverClass);
  return factory->QueryInterface(iid, out);
}

}  // namespace brevantis
