#include "control/store.h"

#include <new>

namespace brevantis {
namespace {

// Taken when the module loads, before any thread can ask for its store, and
// given back when it unloads: a host that loads and unloads the control again
// and again would otherwise run out of slots. The stores themselves stay:
// their COM objects may not be released from inside the unload.
struct TlsSlot {
  const DWORD index = TlsAlloc();
  ~TlsSlot() {
    if (index != TLS_OUT_OF_INDEXES) TlsFree(index);
  }
} g_storeSlot;

DWORD StoreSlot() {
  // No slot left in the process: every call fails as out of memory.
  if (g_storeSlot.index == TLS_OUT_OF_INDEXES) throw std::bad_alloc();
  return g_storeSlot.index;
}

}  // namespace

void Store::Initialise() {
  for (int i = 0; i < kPropertyCount; ++i) {
    const PropertyDef& def = kProperties[i];
    PropertyValue& value = values_[i];
    value.text = def.defaultText ? def.defaultText : L"";
    value.number = def.defaultNumber;
    value.picture = def.type == PropType::Picture ? CreateEmptyPicture() : ComPtr<IPictureDisp>();
  }
}

Store& CurrentStore() {
  Store* store = static_cast<Store*>(TlsGetValue(StoreSlot()));
  if (!store) {
    store = new Store();
    TlsSetValue(StoreSlot(), store);
  }
  return *store;
}

ComPtr<IPictureDisp> CreateEmptyPicture() {
  PICTDESC desc = {};
  desc.cbSizeofstruct = sizeof(desc);
  desc.picType = PICTYPE_NONE;
  ComPtr<IPictureDisp> picture;
  OleCreatePictureIndirect(&desc, IID_IPictureDisp, TRUE, picture.OutVoid());
  return picture;
}

}  // namespace brevantis
