#include "com/server.h"
#include "control/brevantis_control.h"
#include "platform/crypto_filter_box.h"

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

}  // namespace brevantis
