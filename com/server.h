// The creatable classes of the server, declared once for the class factory and
// for registration.
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

// The classes, ending with an entry whose clsid is nullptr.
const ServerClass* ServerClasses();
const ServerClass* FindServerClass(REFCLSID clsid);

// Registration under a classes root: HKEY_CLASSES_ROOT for the machine, or
// HKEY_CURRENT_USER\Software\Classes for one user.
HRESULT RegisterServer(bool perUser);
HRESULT UnregisterServer(bool perUser);

HRESULT CreateClassFactory(const ServerClass& serverClass, REFIID iid, void** out);

}  // namespace brevantis
