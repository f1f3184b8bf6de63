#include "control/brevantis_control.h"
#include "crypto/filter_box.h"
#include "server/server.h"

namespace brevantis {

const ServerClass* ServerClasses() {
  static const ServerClass classes[] = {
      {&CLSID_Brevantis, L"BrevantisLib.Brevantis", L"Brevantis Control", true, &BrevantisControl::Create},
      {&CLSID_clsCryptoFilterBox, L"BrevantisLib.clsCryptoFilterBox", L"Brevantis Crypto Filter Box", false,
       &CryptoFilterBox::Create},
      {nullptr, nullptr, nullptr, false, nullptr},
  };
  return classes;
}

const ServerClass* FindServerClass(REFCLSID clsid) {
  for (const ServerClass* c = ServerClasses(); c->clsid; ++c)
    if (IsEqualCLSID(clsid, *c->clsid)) return c;
  return nullptr;
}

}  // namespace brevantis
