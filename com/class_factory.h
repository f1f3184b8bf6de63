// A creatable class of the server, as its class factory and registration
// see it.
#pragma once

#include <windows.h>

namespace brevantis {

struct ServerClass {
  const CLSID* clsid;
  const wchar_t* progId;       // version-independent, e.g. BrevantisLib.Brevantis
  const wchar_t* description;
  bool isControl;
  HRESULT (*create)(REFIID iid, void** out);
};

HRESULT CreateClassFactory(const ServerClass& serverClass, REFIID iid, void** out);

}  // namespace brevantis
