#include "control/store.h"

#include <new>

namespace brevantis {
namespace {

// Taken when the module loads, before any thread can ask for its store.
const DWORD g_storeSlot = TlsAlloc();

DWORD StoreSlot() { return g_storeSlot; }

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
