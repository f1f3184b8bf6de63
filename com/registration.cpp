// Self-registration: the keys containers and script hosts look for, and the
// type library. Unregistration removes exactly these keys.
#include <windows.h>
#include <olectl.h>
#include <shlwapi.h>
#include <string>

#include "com/module.h"
#include "com/raii.h"
#include "com/server.h"
#include "com/text.h"

namespace brevantis {
namespace {

// Containers read these: a control with no window at run time, activated in
// place, that wants its client site before loading.
constexpr DWORD kControlMiscStatus = OLEMISC_INVISIBLEATRUNTIME | OLEMISC_SETCLIENTSITEFIRST |
                                     OLEMISC_ACTIVATEWHENVISIBLE | OLEMISC_INSIDEOUT |
                                     OLEMISC_CANTLINKINSIDE | OLEMISC_RECOMPOSEONRESIZE;
constexpr wchar_t kCatidControl[] = L"{40FC6ED4-2438-11CF-A3DB-080036F12502}";

std::wstring GuidText(REFGUID guid) {
  wchar_t text[40] = {};
  StringFromGUID2(guid, text, 40);
  return text;
}

// The machine's classes (HKLM\Software\Classes, named: written through
// HKEY_CLASSES_ROOT they would land in an administrator's own classes where
// those hold the key already) or the user's (HKCU\Software\Classes).
class ClassesRoot {
 public:
  explicit ClassesRoot(bool perUser) : perUser_(perUser) {}

  // A string value; empty when there is none.
  std::wstring Get(const std::wstring& path, const wchar_t* name) const {
    wchar_t data[64] = {};
    DWORD bytes = sizeof(data) - sizeof(wchar_t);
    if (RegGetValueW(Root(), Full(path).c_str(), name, RRF_RT_REG_SZ, nullptr, data, &bytes) != ERROR_SUCCESS)
      return std::wstring();
    return data;
  }

  LONG Set(const std::wstring& path, const wchar_t* name, const std::wstring& value) const {
    RegKey key;
    LONG rc = RegCreateKeyExW(Root(), Full(path).c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr, key.Out(), nullptr);
    if (rc != ERROR_SUCCESS) return rc;
    return RegSetValueExW(key.Get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                          static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
  }

  LONG DeleteTree(const std::wstring& path) const {
    LONG rc = SHDeleteKeyW(Root(), Full(path).c_str());
    if (rc == ERROR_FILE_NOT_FOUND) rc = ERROR_SUCCESS;
    if (perUser_) DeleteEmptyParents(Full(path));
    return rc;
  }

 private:
  // The user's keys that registration created along the way (CLSID,
  // TypeLib ... and Software\Classes itself on a system that had none) go
  // when nothing is left in them.
  void DeleteEmptyParents(std::wstring path) const {
    for (size_t cut = path.rfind(L'\\'); cut != std::wstring::npos && cut > 0; cut = path.rfind(L'\\')) {
      path.resize(cut);
      if (path == L"Software") return;
      RegKey key;
      DWORD subKeys = 0, values = 0;
      if (RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, key.Out()) != ERROR_SUCCESS ||
          RegQueryInfoKeyW(key.Get(), nullptr, nullptr, nullptr, &subKeys, nullptr, nullptr, &values, nullptr,
                           nullptr, nullptr, nullptr) != ERROR_SUCCESS ||
          subKeys != 0 || values != 0)
        return;
      key.Reset();
      if (RegDeleteKeyW(HKEY_CURRENT_USER, path.c_str()) != ERROR_SUCCESS) return;
    }
  }

  HKEY Root() const { return perUser_ ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE; }
  static std::wstring Full(const std::wstring& path) { return L"Software\\Classes\\" + path; }

  bool perUser_;
};

// Writes rows under a classes root until the first failure.
class RegistryWriter : public RegistryRowSink {
 public:
  explicit RegistryWriter(const ClassesRoot& root) : root_(root) {}
  void Row(const std::wstring& key, const wchar_t* name, const std::wstring& value) const override {
    if (rc == ERROR_SUCCESS) rc = root_.Set(key, name, value);
  }
  mutable LONG rc = ERROR_SUCCESS;

 private:
  const ClassesRoot& root_;
};

struct TypeLibInfo {
  ComPtr<ITypeLib> lib;
  GUID libid;
  WORD major, minor;
  LCID lcid;
  SYSKIND syskind;
};

HRESULT ReadTypeLibInfo(TypeLibInfo* info) {
  HRESULT hr = LoadOwnTypeLib(info->lib.Out());
  if (FAILED(hr)) return hr;
  TLIBATTR* attr = nullptr;
  hr = info->lib->GetLibAttr(&attr);
  if (FAILED(hr)) return hr;
  info->libid = attr->guid;
  info->major = attr->wMajorVerNum;
  info->minor = attr->wMinorVerNum;
  info->lcid = attr->lcid;
  info->syskind = attr->syskind;
  info->lib->ReleaseTLibAttr(attr);
  return S_OK;
}

void ClassRows(const ServerClass& c, const TypeLibInfo& lib, const std::wstring& path, const RegistryRowSink& set) {
  const std::wstring clsidKey = L"CLSID\\" + GuidText(*c.clsid);
  const std::wstring progId = c.progId;
  const std::wstring versionedProgId = progId + L"." + DecimalText(lib.major);
  const std::wstring version = DecimalText(lib.major) + L"." + DecimalText(lib.minor);

  set(clsidKey, nullptr, c.description);
  set(clsidKey + L"\\InprocServer32", nullptr, path);
  set(clsidKey + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
  set(clsidKey + L"\\ProgID", nullptr, versionedProgId);
  set(clsidKey + L"\\VersionIndependentProgID", nullptr, progId);
  set(clsidKey + L"\\TypeLib", nullptr, GuidText(lib.libid));
  set(clsidKey + L"\\Version", nullptr, version);
  if (c.isControl) {
    set(clsidKey + L"\\Control", nullptr, L"");
    set(clsidKey + L"\\ToolboxBitmap32", nullptr, path + L", 1");
    set(clsidKey + L"\\MiscStatus", nullptr, L"0");
    set(clsidKey + L"\\MiscStatus\\1", nullptr, DecimalText(kControlMiscStatus));
    set(clsidKey + L"\\Implemented Categories\\" + kCatidControl, nullptr, L"");
  }
  set(progId, nullptr, c.description);
  set(progId + L"\\CLSID", nullptr, GuidText(*c.clsid));
  set(progId + L"\\CurVer", nullptr, versionedProgId);
  set(versionedProgId, nullptr, c.description);
  set(versionedProgId + L"\\CLSID", nullptr, GuidText(*c.clsid));
}

LONG UnregisterClass(const ClassesRoot& root, const ServerClass& c, const TypeLibInfo& lib) {
  const std::wstring progId = c.progId;
  LONG rc = root.DeleteTree(L"CLSID\\" + GuidText(*c.clsid));
  const LONG rc2 = root.DeleteTree(progId + L"." + DecimalText(lib.major));
  const LONG rc3 = root.DeleteTree(progId);
  if (rc == ERROR_SUCCESS) rc = rc2;
  if (rc == ERROR_SUCCESS) rc = rc3;
  return rc;
}

constexpr wchar_t kAutomationMarshaler[] = L"{00020424-0000-0000-C000-000000000046}";

// The keys the system writes for a type library and its automation
// interfaces, written here under the user's own classes (the system's
// per-user call is missing before Windows Vista SP1 and elsewhere writes
// under the machine's keys) and listed for installers.
class UserTypeLib {
 public:
  UserTypeLib(const ClassesRoot& root, const TypeLibInfo& lib) : root_(root), lib_(lib) {}

  std::wstring LibKey() const { return L"TypeLib\\" + GuidText(lib_.libid); }
  std::wstring VersionText() const { return DecimalText(lib_.major) + L"." + DecimalText(lib_.minor); }

  void Rows(const std::wstring& path, const RegistryRowSink& set) const {
    Bstr doc;
    lib_.lib->GetDocumentation(-1, nullptr, doc.Out(), nullptr, nullptr);
    TLIBATTR* attr = nullptr;
    WORD flags = 0;
    if (SUCCEEDED(lib_.lib->GetLibAttr(&attr))) {
      flags = attr->wLibFlags;
      lib_.lib->ReleaseTLibAttr(attr);
    }
    const std::wstring versionKey = LibKey() + L"\\" + VersionText();
    const std::wstring platform = lib_.syskind == SYS_WIN64 ? L"win64" : L"win32";
    wchar_t lcid[16];
    wsprintfW(lcid, L"%x", lib_.lcid);
    set(versionKey, nullptr, doc.Get() ? doc.Get() : L"");
    set(versionKey + L"\\" + lcid + L"\\" + platform, nullptr, path);
    set(versionKey + L"\\FLAGS", nullptr, DecimalText(flags | LIBFLAG_FHASDISKIMAGE));
    set(versionKey + L"\\HELPDIR", nullptr, path.substr(0, path.rfind(L'\\')));
    for (UINT i = 0; i < lib_.lib->GetTypeInfoCount(); ++i) {
      GUID iid;
      std::wstring name;
      if (!AutomationInterface(i, &iid, &name)) continue;
      const std::wstring key = L"Interface\\" + GuidText(iid);
      set(key, nullptr, name);
      set(key + L"\\ProxyStubClsid", nullptr, kAutomationMarshaler);
      set(key + L"\\ProxyStubClsid32", nullptr, kAutomationMarshaler);
      set(key + L"\\TypeLib", nullptr, GuidText(lib_.libid));
      set(key + L"\\TypeLib", L"Version", VersionText());
    }
  }

  // Only this version: another one registered for the user keeps its keys,
  // and so do the interfaces that name it.
  LONG Unregister() const {
    LONG rc = root_.DeleteTree(LibKey() + L"\\" + VersionText());
    for (UINT i = 0; i < lib_.lib->GetTypeInfoCount(); ++i) {
      GUID iid;
      std::wstring name;
      if (!AutomationInterface(i, &iid, &name)) continue;
      const std::wstring key = L"Interface\\" + GuidText(iid);
      if (root_.Get(key + L"\\TypeLib", L"Version") != VersionText()) continue;
      const LONG interfaceRc = root_.DeleteTree(key);
      if (rc == ERROR_SUCCESS) rc = interfaceRc;
    }
    return rc;
  }

 private:
  // Dispatch and dual interfaces: those the automation marshaler serves.
  bool AutomationInterface(UINT index, GUID* iid, std::wstring* name) const {
    ComPtr<ITypeInfo> info;
    TYPEATTR* attr = nullptr;
    if (FAILED(lib_.lib->GetTypeInfo(index, info.Out())) || FAILED(info->GetTypeAttr(&attr))) return false;
    const bool automation = attr->typekind == TKIND_DISPATCH ||
                            (attr->typekind == TKIND_INTERFACE && (attr->wTypeFlags & TYPEFLAG_FOLEAUTOMATION));
    *iid = attr->guid;
    info->ReleaseTypeAttr(attr);
    Bstr text;
    info->GetDocumentation(MEMBERID_NIL, text.Out(), nullptr, nullptr, nullptr);
    *name = text.Get() ? text.Get() : L"";
    return automation;
  }

  const ClassesRoot& root_;
  const TypeLibInfo& lib_;
};

}  // namespace

HRESULT RegisterServer(bool perUser) {
  TypeLibInfo lib;
  HRESULT hr = ReadTypeLibInfo(&lib);
  if (FAILED(hr)) return hr;
  const std::wstring path = ThisModulePath();
  const ClassesRoot root(perUser);
  const RegistryWriter write(root);
  for (const ServerClass* c = ServerClasses(); c->clsid; ++c) ClassRows(*c, lib, path, write);
  if (perUser) UserTypeLib(root, lib).Rows(path, write);
  if (write.rc != ERROR_SUCCESS || perUser) return HRESULT_FROM_WIN32(write.rc);
  std::wstring pathCopy = path;
  return RegisterTypeLib(lib.lib.Get(), &pathCopy[0], nullptr);
}

HRESULT ListRegistrationRows(const std::wstring& path, const RegistryRowSink& sink) {
  TypeLibInfo lib;
  const HRESULT hr = ReadTypeLibInfo(&lib);
  if (FAILED(hr)) return hr;
  for (const ServerClass* c = ServerClasses(); c->clsid; ++c) ClassRows(*c, lib, path, sink);
  UserTypeLib(ClassesRoot(false), lib).Rows(path, sink);
  return S_OK;
}

HRESULT UnregisterServer(bool perUser) {
  TypeLibInfo lib;
  HRESULT hr = ReadTypeLibInfo(&lib);
  if (FAILED(hr)) return hr;
  const ClassesRoot root(perUser);
  LONG rc = ERROR_SUCCESS;
  for (const ServerClass* c = ServerClasses(); c->clsid; ++c) {
    const LONG classRc = UnregisterClass(root, *c, lib);
    if (rc == ERROR_SUCCESS) rc = classRc;
  }
  // Unregistering what is not registered is not a failure.
  Bstr registeredPath;
  if (perUser) {
    const LONG libRc = UserTypeLib(root, lib).Unregister();
    if (rc == ERROR_SUCCESS) rc = libRc;
  } else if (SUCCEEDED(QueryPathOfRegTypeLib(lib.libid, lib.major, lib.minor, lib.lcid, registeredPath.Out()))) {
    hr = UnRegisterTypeLib(lib.libid, lib.major, lib.minor, lib.lcid, lib.syskind);
  }
  return rc != ERROR_SUCCESS ? HRESULT_FROM_WIN32(rc) : hr;
}

}  // namespace brevantis
