// IsInternetReachable: the system's connection state first, then an HTTP
// probe that only has to be answered. Offline costs the user the page, so
// only a sure "no way out" counts. The probe runs on a worker thread so that
// the caller waits a bounded time whatever the network does; a worker that
// outlives its wait finishes on its own later.
#include "web/reachability.h"

#include <wininet.h>

#include <string>

#include "com/failure.h"
#include "com/raii.h"
#include "com/text.h"
#include "platform/platform.h"
#include "platform/registry.h"
#include "web/browser.h"

namespace brevantis {
namespace {

struct InternetHandleTraits {
  static HINTERNET Invalid() { return nullptr; }
  static void Close(HINTERNET h) { InternetCloseHandle(h); }
};
// Kept here rather than with the other owners: only this file includes wininet.h.
using InternetHandle = UniqueHandle<HINTERNET, InternetHandleTraits>;

// Leaves room within the bound for the state query and the thread start.
constexpr DWORD kProbeWaitMs = kReachabilityBoundMs - 200;

// Not followed, not authenticated, not shown: whatever answers is enough.
constexpr DWORD kRequestFlags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_PRAGMA_NOCACHE |
                                INTERNET_FLAG_NO_AUTO_REDIRECT | INTERNET_FLAG_NO_COOKIES | INTERNET_FLAG_NO_UI |
                                INTERNET_FLAG_NO_AUTH;

bool IsHttpUrl(const std::wstring& url) {
  const std::wstring lower = LowerCase(url);
  return lower.compare(0, 7, L"http://") == 0 || lower.compare(0, 8, L"https://") == 0;
}

std::wstring ProbeUrl() {
  const std::wstring value = ReadRegistryText(HKEY_CURRENT_USER, kProbeSettingsKey, kProbeUrlValue);
  return IsHttpUrl(value) ? value : kDefaultProbeUrl;
}

// Only these failures prove that there is no way out. Any answer (a portal's
// redirect, a proxy's 407, an error status) or a TLS failure means the
// network answered, and the browser can take it from there.
bool ProvesOffline(DWORD error) {
  return error == ERROR_INTERNET_NAME_NOT_RESOLVED || error == ERROR_INTERNET_CANNOT_CONNECT ||
         error == ERROR_INTERNET_TIMEOUT;
}

bool ProbeFindsNoWayOut(const std::wstring& url) {
  InternetHandle session(InternetOpenW(L"Brevantis", INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
  if (!session) return false;
  DWORD timeout = kProbeWaitMs;
  for (DWORD option : {INTERNET_OPTION_CONNECT_TIMEOUT, INTERNET_OPTION_SEND_TIMEOUT, INTERNET_OPTION_RECEIVE_TIMEOUT})
    InternetSetOptionW(session.Get(), option, &timeout, sizeof(timeout));
  InternetHandle request(InternetOpenUrlW(session.Get(), url.c_str(), nullptr, 0, kRequestFlags, 0));
  return !request && ProvesOffline(GetLastError());
}

// Shared by the caller and the worker; the last one to let go deletes it.
struct ProbeJob {
  std::wstring url;
  HMODULE module = nullptr;  // a loader reference: the code stays while the worker runs
  LONG references = 2;
  LONG offline = 0;
};

void Release(ProbeJob* job) {
  if (InterlockedDecrement(&job->references) == 0) delete job;
}

DWORD WINAPI ProbeThread(void* parameter) {
  auto* job = static_cast<ProbeJob*>(parameter);
  // A probe that fails on its own proves nothing.
  const HRESULT offline = Guarded([&] { return ProbeFindsNoWayOut(job->url) ? S_OK : S_FALSE; });
  InterlockedExchange(&job->offline, offline == S_OK ? 1 : 0);
  const HMODULE module = job->module;
  Release(job);
  FreeLibraryAndExitThread(module, 0);
}

// A probe that has not finished within the wait found no way out either; a
// probe that could not even start proves nothing.
bool ProbeFindsAWayOut(const std::wstring& url) {
  auto* job = new ProbeJob{url};
  if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(&ProbeThread),
                          &job->module)) {
    delete job;
    return true;
  }
  KernelHandle thread(CreateThread(nullptr, 0, ProbeThread, job, 0, nullptr));
  if (!thread) {
    FreeLibrary(job->module);
    delete job;
    return true;
  }
  const bool finished = WaitForSingleObject(thread.Get(), kProbeWaitMs) == WAIT_OBJECT_0;
  const bool answered = finished && InterlockedCompareExchange(&job->offline, 0, 0) == 0;
  Release(job);
  return answered;
}

}  // namespace

bool IsInternetReachable() {
  DWORD flags = 0;
  if (!CurrentPlatform().GetInternetConnectedState(&flags)) return false;
  return ProbeFindsAWayOut(ProbeUrl());
}

}  // namespace brevantis
