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

class ClassesRoot {
 public:
  explicit ClassesRoot(bool perUser) : perUser_(perUser) {}

  LONG Set(const std::wstring& path, const wchar_t* name, const std::wstring& value) const {
    RegKey key;
    LONG rc = RegCreateKeyExW(Root(), Full(path).c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr, key.Out(), nullptr);
    if (rc != ERROR_SUCCESS) return rc;
    return RegSetValueExW(key.Get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                          static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
  }

  LONG DeleteTree(const std::wstring& path) const {
    const LONG rc = SHDeleteKeyW(Root(), Full(path).c_str());
    return rc == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : rc;
  }

 private:
  HKEY Root() const { return perUser_ ? HKEY_CURRENT_USER : HKEY_CLASSES_ROOT; }
  std::wstring Full(const std::wstring& path) const { return perUser_ ? L"Software\\Classes\\" + path : path; }

  bool perUser_;
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

LONG RegisterClass(const ClassesRoot& root, const ServerClass& c, const TypeLibInfo& lib, const std::wstring& path) {
  const std::wstring clsidKey = L"CLSID\\" + GuidText(*c.clsid);
  const std::wstring progId = c.progId;
  const std::wstring versionedProgId = progId + L"." + DecimalText(lib.major);
  const std::wstring version = DecimalText(lib.major) + L"." + DecimalText(lib.minor);

  LONG rc = ERROR_SUCCESS;
  auto set = [&](const std::wstring& key, const wchar_t* name, const std::wstring& value) {
    if (rc == ERROR_SUCCESS) rc = root.Set(key, name, value);
  };
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
  return rc;
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

// The per-user type library calls exist from Windows Vista SP1 on; they are
// looked up at run time so that older systems can still load the control.
HRESULT RegisterTypeLibPerUser(ITypeLib* lib, wchar_t* path) {
  using Fn = HRESULT(WINAPI*)(ITypeLib*, OLECHAR*, OLECHAR*);
  auto fn = reinterpret_cast<Fn>(reinterpret_cast<void*>(
      GetProcAddress(GetModuleHandleW(L"oleaut32.dll"), "RegisterTypeLibForUser")));
  return fn ? fn(lib, path, nullptr) : E_NOTIMPL;
}

HRESULT UnregisterTypeLibPerUser(const TypeLibInfo& lib) {
  using Fn = HRESULT(WINAPI*)(REFGUID, WORD, WORD, LCID, SYSKIND);
  auto fn = reinterpret_cast<Fn>(reinterpret_cast<void*>(
      GetProcAddress(GetModuleHandleW(L"oleaut32.dll"), "UnRegisterTypeLibForUser")));
  return fn ? fn(lib.libid, lib.major, lib.minor, lib.lcid, lib.syskind) : E_NOTIMPL;
}

}  // namespace

HRESULT RegisterServer(bool perUser) {
  TypeLibInfo lib;
  HRESULT hr = ReadTypeLibInfo(&lib);
  if (FAILED(hr)) return hr;
  const std::wstring path = ThisModulePath();
  const ClassesRoot root(perUser);
  for (const ServerClass* c = ServerClasses(); c->clsid; ++c) {
    const LONG rc = RegisterClass(root, *c, lib, path);
    if (rc != ERROR_SUCCESS) return HRESULT_FROM_WIN32(rc);
  }
  std::wstring pathCopy = path;
  return perUser ? RegisterTypeLibPerUser(lib.lib.Get(), &pathCopy[0])
                 : RegisterTypeLib(lib.lib.Get(), &pathCopy[0], nullptr);
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
  if (SUCCEEDED(QueryPathOfRegTypeLib(lib.libid, lib.major, lib.minor, lib.lcid, registeredPath.Out()))) {
    hr = perUser ? UnregisterTypeLibPerUser(lib)
                 : UnRegisterTypeLib(lib.libid, lib.major, lib.minor, lib.lcid, lib.syskind);
  }
  return rc != ERROR_SUCCESS ? HRESULT_FROM_WIN32(rc) : hr;
}

}  // namespace brevantis
