#include "com/object.h"

namespace brevantis {

HRESULT QueryInterfaceFromTable(void* object, const InterfaceEntry* table, REFIID iid, void** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  for (const InterfaceEntry* entry = table; entry->iid; ++entry) {
    if (IsEqualIID(iid, *entry->iid) || (entry == table && IsEqualIID(iid, IID_IUnknown))) {
      IUnknown* itf = reinterpret_cast<IUnknown*>(static_cast<char*>(object) + entry->offset);
      itf->AddRef();
      *out = itf;
      return S_OK;
    }
  }
  return E_NOINTERFACE;
}

}  // namespace brevantis
