// Self-registration: the keys containers and script hosts look for, and the
// type library. Registration is a table of rows written by one loop;
// unregistration walks the same rows backwards and removes each value, and
// each key it leaves empty.
#include <windows.h>
#include <olectl.h>

#include "com/failure.h"
#include "com/module.h"
#include "com/raii.h"
#include "com/text.h"
#include "platform/registry.h"
#include "server/server.h"

namespace brevantis {
namespace {

using Rows = std::vector<RegistryRow>;

// Containers read these: a control with no window at run time, activated in
// place, that wants its client site before loading.
constexpr DWORD kControlMiscStatus = OLEMISC_INVISIBLEATRUNTIME | OLEMISC_SETCLIENTSITEFIRST |
                                     OLEMISC_ACTIVATEWHENVISIBLE | OLEMISC_INSIDEOUT |
                                     OLEMISC_CANTLINKINSIDE | OLEMISC_RECOMPOSEONRESIZE;
constexpr wchar_t kCatidControl[] = L"{40FC6ED4-2438-11CF-A3DB-080036F12502}";
constexpr wchar_t kAutomationMarshaler[] = L"{00020424-0000-0000-C000-000000000046}";

std::wstring GuidText(REFGUID guid) {
  wchar_t text[40] = {};
  StringFromGUID2(guid, text, 40);
  return text;
}

struct TypeLibInfo {
  ComPtr<ITypeLib> lib;
  TLIBATTR attr;
  std::wstring Version() const { return DecimalText(attr.wMajorVerNum) + L"." + DecimalText(attr.wMinorVerNum); }
};

HRESULT ReadTypeLibInfo(TypeLibInfo* info) {
  RETURN_IF_FAILED(LoadOwnTypeLib(info->lib.Out()));
  TLIBATTR* attr = nullptr;
  RETURN_IF_FAILED(info->lib->GetLibAttr(&attr));
  info->attr = *attr;
  info->lib->ReleaseTLibAttr(attr);
  return S_OK;
}

// Appends a row; one call each keeps the table's code small.
struct RowAdder {
  Rows* rows;
  void operator()(std::wstring key, const wchar_t* name, std::wstring value) const {
    rows->push_back({std::move(key), name, std::move(value)});
  }
};

void AddClassRows(const ServerClass& c, const TypeLibInfo& lib, const std::wstring& path, Rows* rows) {
  const RowAdder add{rows};
  const std::wstring clsid = GuidText(*c.clsid);
  const std::wstring clsidKey = L"CLSID\\" + clsid;
  const std::wstring progId = c.progId;
  const std::wstring versionedProgId = progId + L"." + DecimalText(lib.attr.wMajorVerNum);
  add(clsidKey, nullptr, c.description);
  add(clsidKey + L"\\InprocServer32", nullptr, path);
  add(clsidKey + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
  add(clsidKey + L"\\ProgID", nullptr, versionedProgId);
  add(clsidKey + L"\\VersionIndependentProgID", nullptr, progId);
  add(clsidKey + L"\\TypeLib", nullptr, GuidText(lib.attr.guid));
  add(clsidKey + L"\\Version", nullptr, lib.Version());
  if (c.isControl) {
    add(clsidKey + L"\\Control", nullptr, L"");
    add(clsidKey + L"\\ToolboxBitmap32", nullptr, path + L", 1");
    add(clsidKey + L"\\MiscStatus", nullptr, L"0");
    add(clsidKey + L"\\MiscStatus\\1", nullptr, DecimalText(kControlMiscStatus));
    add(clsidKey + L"\\Implemented Categories\\" + kCatidControl, nullptr, L"");
  }
  add(progId, nullptr, c.description);
  add(progId + L"\\CLSID", nullptr, clsid);
  add(progId + L"\\CurVer", nullptr, versionedProgId);
  add(versionedProgId, nullptr, c.description);
  add(versionedProgId + L"\\CLSID", nullptr, clsid);
}

// The keys the system writes for a type library and its automation
// (dispatch and dual) interfaces: written here for one user (the system's
// per-user call is missing before Windows Vista SP1 and elsewhere writes
// under the machine's keys) and listed for installers.
void AddTypeLibRows(const TypeLibInfo& lib, const std::wstring& path, Rows* rows) {
  const RowAdder add{rows};
  Bstr doc;
  lib.lib->GetDocumentation(-1, nullptr, doc.Out(), nullptr, nullptr);
  const std::wstring libid = GuidText(lib.attr.guid);
  const std::wstring versionKey = L"TypeLib\\" + libid + L"\\" + lib.Version();
  wchar_t lcid[16];
  wsprintfW(lcid, L"%x", lib.attr.lcid);
  add(versionKey, nullptr, FromBstr(doc.Get()));
  add(versionKey + L"\\" + lcid + (lib.attr.syskind == SYS_WIN64 ? L"\\win64" : L"\\win32"), nullptr, path);
  add(versionKey + L"\\FLAGS", nullptr, DecimalText(lib.attr.wLibFlags | LIBFLAG_FHASDISKIMAGE));
  add(versionKey + L"\\HELPDIR", nullptr, path.substr(0, path.rfind(L'\\')));
  for (UINT i = 0; i < lib.lib->GetTypeInfoCount(); ++i) {
    ComPtr<ITypeInfo> info;
    TYPEATTR* attr = nullptr;
    if (FAILED(lib.lib->GetTypeInfo(i, info.Out())) || FAILED(info->GetTypeAttr(&attr))) continue;
    const bool automation = attr->typekind == TKIND_DISPATCH ||
                            (attr->typekind == TKIND_INTERFACE && (attr->wTypeFlags & TYPEFLAG_FOLEAUTOMATION));
    const std::wstring key = L"Interface\\" + GuidText(attr->guid);
    info->ReleaseTypeAttr(attr);
    if (!automation) continue;
    Bstr name;
    info->GetDocumentation(MEMBERID_NIL, name.Out(), nullptr, nullptr, nullptr);
    add(key, nullptr, FromBstr(name.Get()));
    add(key + L"\\ProxyStubClsid", nullptr, kAutomationMarshaler);
    add(key + L"\\ProxyStubClsid32", nullptr, kAutomationMarshaler);
    add(key + L"\\TypeLib", nullptr, libid);
    add(key + L"\\TypeLib", L"Version", lib.Version());
  }
}

Rows AllRows(const TypeLibInfo& lib, const std::wstring& path, bool withTypeLib) {
  Rows rows;
  for (const ServerClass* c = ServerClasses(); c->clsid; ++c) AddClassRows(*c, lib, path, &rows);
  if (withTypeLib) AddTypeLibRows(lib, path, &rows);
  return rows;
}

// The machine's classes (HKLM\Software\Classes, named: written through
// HKEY_CLASSES_ROOT they would land in an administrator's own classes where
// those hold the key already) or the user's (HKCU\Software\Classes).
class ClassesRoot {
 public:
  explicit ClassesRoot(bool perUser) : perUser_(perUser) {}

  std::wstring Read(const std::wstring& key, const wchar_t* name) const {
    return ReadRegistryText(Root(), Full(key), name);
  }

  LONG Write(const RegistryRow& row) const {
    RegKey key;
    const LONG rc = RegCreateKeyExW(Root(), Full(row.key).c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr, key.Out(),
                                    nullptr);
    if (rc != ERROR_SUCCESS) return rc;
    return RegSetValueExW(key.Get(), row.name, 0, REG_SZ, reinterpret_cast<const BYTE*>(row.value.c_str()),
                          static_cast<DWORD>((row.value.size() + 1) * sizeof(wchar_t)));
  }

  // Removes the row's value, then its key and the keys above it that this
  // leaves empty. What is already gone is no failure.
  LONG Erase(const RegistryRow& row) const {
    std::wstring path = Full(row.key);
    RegKey key;
    LONG rc = RegOpenKeyExW(Root(), path.c_str(), 0, KEY_SET_VALUE, key.Out());
    if (rc == ERROR_SUCCESS) rc = RegDeleteValueW(key.Get(), row.name);
    if (rc != ERROR_SUCCESS) return rc == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : rc;
    key.Reset();
    // Up to Software\Classes; for one user also that key itself, which
    // registration may have made on a system that had none.
    const std::wstring top = perUser_ ? L"Software" : L"Software\\Classes";
    while (path != top && IsEmpty(path) && RegDeleteKeyW(Root(), path.c_str()) == ERROR_SUCCESS)
      path.resize(path.rfind(L'\\'));
    return ERROR_SUCCESS;
  }

 private:
  bool IsEmpty(const std::wstring& path) const {
    RegKey key;
    DWORD subKeys = 0, values = 0;
    return RegOpenKeyExW(Root(), path.c_str(), 0, KEY_READ, key.Out()) == ERROR_SUCCESS &&
           RegQueryInfoKeyW(key.Get(), nullptr, nullptr, nullptr, &subKeys, nullptr, nullptr, &values, nullptr,
                            nullptr, nullptr, nullptr) == ERROR_SUCCESS &&
           subKeys == 0 && values == 0;
  }
  HKEY Root() const { return perUser_ ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE; }
  static std::wstring Full(const std::wstring& path) { return L"Software\\Classes\\" + path; }

  bool perUser_;
};

// An interface key that names another version of the type library belongs
// to that version now: its rows are left to it.
bool LeftToOtherVersion(const ClassesRoot& root, const TypeLibInfo& lib, const std::wstring& key) {
  if (key.compare(0, 10, L"Interface\\") != 0) return false;
  const std::wstring interfaceKey = key.substr(0, key.find(L'\\', 10));
  return root.Read(interfaceKey + L"\\TypeLib", L"Version") != lib.Version();
}

}  // namespace

HRESULT RegisterServer(bool perUser) {
  TypeLibInfo lib;
  RETURN_IF_FAILED(ReadTypeLibInfo(&lib));
  std::wstring path = ThisModulePath();
  const ClassesRoot root(perUser);
  for (const RegistryRow& row : AllRows(lib, path, perUser)) {
    const LONG rc = root.Write(row);
    RETURN_HR_IF(HRESULT_FROM_WIN32(rc), rc != ERROR_SUCCESS);
  }
  return perUser ? S_OK : RegisterTypeLib(lib.lib.Get(), &path[0], nullptr);
}

HRESULT UnregisterServer(bool perUser) {
  TypeLibInfo lib;
  RETURN_IF_FAILED(ReadTypeLibInfo(&lib));
  const ClassesRoot root(perUser);
  const Rows rows = AllRows(lib, ThisModulePath(), perUser);
  // Which interfaces are ours is settled before any of their values goes.
  std::vector<bool> ours(rows.size());
  for (size_t i = 0; i < rows.size(); ++i) ours[i] = !LeftToOtherVersion(root, lib, rows[i].key);
  LONG rc = ERROR_SUCCESS;
  for (size_t i = rows.size(); i-- > 0;) {
    const LONG erased = ours[i] ? root.Erase(rows[i]) : ERROR_SUCCESS;
    if (rc == ERROR_SUCCESS) rc = erased;
  }
  RETURN_HR_IF(HRESULT_FROM_WIN32(rc), rc != ERROR_SUCCESS);
  // Unregistering what is not registered is not a failure.
  const TLIBATTR& a = lib.attr;
  Bstr registeredPath;
  if (perUser || FAILED(QueryPathOfRegTypeLib(a.guid, a.wMajorVerNum, a.wMinorVerNum, a.lcid, registeredPath.Out())))
    return S_OK;
  return UnRegisterTypeLib(a.guid, a.wMajorVerNum, a.wMinorVerNum, a.lcid, a.syskind);
}

HRESULT ListRegistrationRows(const std::wstring& path, std::vector<RegistryRow>* rows) {
  TypeLibInfo lib;
  RETURN_IF_FAILED(ReadTypeLibInfo(&lib));
  *rows = AllRows(lib, path, true);
  return S_OK;
}

}  // namespace brevantis
