#include "com/module.h"
#include "com/failure.h"

#include "com/raii.h"

namespace brevantis {
namespace {

LONG g_objects = 0;
LONG g_locks = 0;
ITypeLib* g_typeLib = nullptr;

// An address inside this module, to find it whether it is the OCX or a test
// program that links the same code.
void Anchor() {}

}  // namespace

HMODULE ThisModule() {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<LPCWSTR>(&Anchor), &module);
  return module;
}

std::wstring ThisModulePath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD n = GetModuleFileNameW(ThisModule(), &path[0], static_cast<DWORD>(path.size()));
    if (n == 0) return std::wstring();
    if (n < path.size()) { path.resize(n); return path; }
    path.resize(path.size() * 2);
  }
}

void ObjectCreated() { InterlockedIncrement(&g_objects); }
void ObjectDestroyed() { InterlockedDecrement(&g_objects); }
void LockServer(bool lock) { lock ? InterlockedIncrement(&g_locks) : InterlockedDecrement(&g_locks); }
bool CanUnload() { return g_objects == 0 && g_locks == 0; }

HRESULT LoadOwnTypeLib(ITypeLib** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  if (!g_typeLib) {
    ITypeLib* lib = nullptr;
    RETURN_IF_FAILED(LoadTypeLibEx(ThisModulePath().c_str(), REGKIND_NONE, &lib));
    if (InterlockedCompareExchangePointer(reinterpret_cast<void**>(&g_typeLib), lib, nullptr) != nullptr)
      lib->Release();
  }
  g_typeLib->AddRef();
  *out = g_typeLib;
  return S_OK;
}

HRESULT GetOwnTypeInfo(REFIID iid, ITypeInfo** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  ComPtr<ITypeLib> lib;
  RETURN_IF_FAILED(LoadOwnTypeLib(lib.Out()));
  ComPtr<ITypeInfo> info;
  RETURN_IF_FAILED(lib->GetTypeInfoOfGuid(iid, info.Out()));
  // A dual interface is found as its dispatch description; Invoke needs the
  // vtable description it refers to (reference -1).
  HREFTYPE vtableRef = 0;
  ComPtr<ITypeInfo> vtableInfo;
  if (SUCCEEDED(info->GetRefTypeOfImplType(static_cast<UINT>(-1), &vtableRef)) &&
      SUCCEEDED(info->GetRefTypeInfo(vtableRef, vtableInfo.Out()))) {
    info = vtableInfo;
  }
  *out = info.Detach();
  return S_OK;
}

void ReleaseTypeLibCache() {
  if (ITypeLib* lib = static_cast<ITypeLib*>(InterlockedExchangePointer(reinterpret_cast<void**>(&g_typeLib), nullptr)))
    lib->Release();
}

}  // namespace brevantis
