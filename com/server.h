// The creatable classes of the server, declared once for the class factory and
// for registration.
#pragma once

#include <windows.h>

#include <string>

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

// Receives values under the classes root: key path, value name (nullptr for
// the key's default value) and text.
class RegistryRowSink {
 public:
  virtual void Row(const std::wstring& key, const wchar_t* name, const std::wstring& value) const = 0;
  void operator()(const std::wstring& key, const wchar_t* name, const std::wstring& value) const {
    Row(key, name, value);
  }

 protected:
  ~RegistryRowSink() = default;
};

// Every value machine-wide registration writes for a server file at path,
// type library included: what an installer writes in its place.
HRESULT ListRegistrationRows(const std::wstring& path, const RegistryRowSink& sink);

HRESULT CreateClassFactory(const ServerClass& serverClass, REFIID iid, void** out);

}  // namespace brevantis
