// The server: its creatable classes and their registration.
#pragma once

#include <windows.h>
#include <string>
#include <vector>

#include "com/class_factory.h"

namespace brevantis {

// The classes, ending with an entry whose clsid is nullptr.
const ServerClass* ServerClasses();
const ServerClass* FindServerClass(REFCLSID clsid);

// A value registration writes under a classes root: key path, value name
// (nullptr for the key's default value) and text.
struct RegistryRow {
  std::wstring key;
  const wchar_t* name;
  std::wstring value;
};

// Registration under the machine's classes (HKLM\Software\Classes) or one
// user's (HKCU\Software\Classes); unregistration removes what it wrote.
HRESULT RegisterServer(bool perUser);
HRESULT UnregisterServer(bool perUser);

// Every value machine-wide registration writes for a server file at path,
// type library included: what an installer writes in its place.
HRESULT ListRegistrationRows(const std::wstring& path, std::vector<RegistryRow>* rows);

}  // namespace brevantis
