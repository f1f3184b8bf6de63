// The server module: its instance handle, the counts that decide whether it
// may be unloaded, and the type library embedded in it.
#pragma once

#include <windows.h>
#include <oaidl.h>
#include <string>

namespace brevantis {

HMODULE ThisModule();
std::wstring ThisModulePath();

// Live objects and class-factory locks; the server may unload only when both are zero.
void ObjectCreated();
void ObjectDestroyed();
void LockServer(bool lock);
bool CanUnload();

// The type library in resource TYPELIB 1 of this module, loaded once and kept
// until the module may unload.
HRESULT LoadOwnTypeLib(ITypeLib** out);
// The type information that describes iid, for IDispatch over a dual interface.
HRESULT GetOwnTypeInfo(REFIID iid, ITypeInfo** out);
void ReleaseTypeLibCache();

}  // namespace brevantis
