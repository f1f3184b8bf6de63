#include "model/store.h"

#include <olectl.h>

#include "com/thread_slot.h"

namespace brevantis {
namespace {

ThreadSlot<Store> g_stores;

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

Store& CurrentStore() { return g_stores.Get(); }

ComPtr<IPictureDisp> CreateEmptyPicture() {
  PICTDESC desc = {};
  desc.cbSizeofstruct = sizeof(desc);
  desc.picType = PICTYPE_NONE;
  ComPtr<IPictureDisp> picture;
  OleCreatePictureIndirect(&desc, IID_IPictureDisp, TRUE, picture.OutVoid());
  return picture;
}

}  // namespace brevantis
