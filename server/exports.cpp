// The entry points of the in-process server.
#include <windows.h>
#include <olectl.h>

#include "com/module.h"
#include "server/server.h"

using namespace brevantis;

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) DisableThreadLibraryCalls(instance);
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  const ServerClass* serverClass = FindServerClass(clsid);
  if (!serverClass) return CLASS_E_CLASSNOTAVAILABLE;
  return CreateClassFactory(*serverClass, iid, out);
}

STDAPI DllCanUnloadNow() {
  if (!CanUnload()) return S_FALSE;
  ReleaseTypeLibCache();
  return S_OK;
}

STDAPI DllRegisterServer() { return RegisterServer(false); }

STDAPI DllUnregisterServer() { return UnregisterServer(false); }

// regsvr32 /n /i:user registers for the current user only (/u removes it);
// any other command line registers for the machine, like DllRegisterServer.
STDAPI DllInstall(BOOL install, PCWSTR commandLine) {
  const bool perUser = commandLine && lstrcmpiW(commandLine, L"user") == 0;
  return install ? RegisterServer(perUser) : UnregisterServer(perUser);
}
