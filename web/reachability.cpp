// IsInternetReachable: the system's connection state first, then an HTTP
// probe whose answer must be the expected text. The probe runs on a worker
// thread so that the caller waits a bounded time whatever the network does; a
// worker that outlives its wait finishes on its own later.
// The project's headers come first: wininet.h renames InternetDial, which
// would rename the platform's member of that name too.
#include "com/raii.h"
#include "platform/platform.h"
#include "platform/registry_access.h"
#include "web/browser.h"
#include "web/reachability.h"
#include "web/vb_text.h"

#include <wininet.h>

#include <string>

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
// An answer longer than the expected text by more than this is not it.
constexpr size_t kBodySlack = 64;

constexpr DWORD kRequestFlags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_PRAGMA_NOCACHE |
                                INTERNET_FLAG_NO_AUTO_REDIRECT | INTERNET_FLAG_NO_COOKIES | INTERNET_FLAG_NO_UI |
                                INTERNET_FLAG_NO_AUTH;

std::wstring Setting(const wchar_t* name, const wchar_t* fallback) {
  const std::wstring value = ReadRegistryString(kProbeSettingsKey, name, false, true, false, false, false, false);
  return value.empty() ? fallback : value;
}

std::string Utf8(const std::wstring& text) {
  std::string bytes;
  const int length = static_cast<int>(text.size());
  const int needed = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  if (needed <= 0) return bytes;
  bytes.resize(needed);
  WideCharToMultiByte(CP_UTF8, 0, text.data(), length, &bytes[0], needed, nullptr, nullptr);
  return bytes;
}

// A server may end its text with a line break; that does not change it.
std::string WithoutLineEnd(std::string text) {
  while (!text.empty() && (text.back() == '\r' || text.back() == '\n' || text.back() == ' ' || text.back() == '\t'))
    text.pop_back();
  return text;
}

bool IsHttpUrl(const std::wstring& url) {
  const std::wstring lower = LowerCase(url);
  return lower.compare(0, 7, L"http://") == 0 || lower.compare(0, 8, L"https://") == 0;
}

// One request, not redirected (a captive portal redirects), answered with
// status 200 and a body that is the expected text.
bool AnswerMatches(const std::wstring& url, const std::string& expected) {
  InternetHandle session(InternetOpenW(L"Brevantis", INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
  if (!session) return false;
  DWORD timeout = kProbeWaitMs;
  for (DWORD option : {INTERNET_OPTION_CONNECT_TIMEOUT, INTERNET_OPTION_SEND_TIMEOUT, INTERNET_OPTION_RECEIVE_TIMEOUT})
    InternetSetOptionW(session.Get(), option, &timeout, sizeof(timeout));
  InternetHandle request(InternetOpenUrlW(session.Get(), url.c_str(), nullptr, 0, kRequestFlags, 0));
  if (!request) return false;
  DWORD status = 0;
  DWORD size = sizeof(status);
  if (!HttpQueryInfoW(request.Get(), HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status, &size, nullptr) ||
      status != HTTP_STATUS_OK)
    return false;
  const size_t limit = expected.size() + kBodySlack;
  std::string body;
  char chunk[512];
  DWORD read = 0;
  while (body.size() <= limit && InternetReadFile(request.Get(), chunk, sizeof(chunk), &read) && read > 0)
    body.append(chunk, read);
  return body.size() <= limit && WithoutLineEnd(body) == WithoutLineEnd(expected);
}

// Shared by the caller and the worker; the last one to let go deletes it.
struct ProbeJob {
  std::wstring url;
  std::string expected;
  HMODULE module = nullptr;  // a loader reference: the code stays while the worker runs
  LONG references = 2;
  LONG matched = 0;
};

void Release(ProbeJob* job) {
  if (InterlockedDecrement(&job->references) == 0) delete job;
}

bool RunProbe(ProbeJob* job) noexcept {
  try {
    return AnswerMatches(job->url, job->expected);
  } catch (...) {
    return false;
  }
}

DWORD WINAPI ProbeThread(void* parameter) {
  auto* job = static_cast<ProbeJob*>(parameter);
  InterlockedExchange(&job->matched, RunProbe(job) ? 1 : 0);
  const HMODULE module = job->module;
  Release(job);
  FreeLibraryAndExitThread(module, 0);
}

bool ProbeAnswers(const std::wstring& url, const std::wstring& expected) {
  if (!IsHttpUrl(url)) return false;
  auto* job = new ProbeJob{url, Utf8(expected)};
  if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(&ProbeThread),
                          &job->module)) {
    delete job;
    return false;
  }
  KernelHandle thread(CreateThread(nullptr, 0, ProbeThread, job, 0, nullptr));
  if (!thread) {
    FreeLibrary(job->module);
    delete job;
    return false;
  }
  const bool finished = WaitForSingleObject(thread.Get(), kProbeWaitMs) == WAIT_OBJECT_0;
  const bool matched = finished && InterlockedCompareExchange(&job->matched, 0, 0) != 0;
  Release(job);
  return matched;
}

}  // namespace

bool IsInternetReachable() {
  try {
    DWORD flags = 0;
    if (!CurrentPlatform().GetInternetConnectedState(&flags)) return false;
    return ProbeAnswers(Setting(kProbeUrlValue, kDefaultProbeUrl),
                        Setting(kProbeExpectedTextValue, kDefaultProbeExpectedText));
  } catch (...) {
    return false;
  }
}

}  // namespace brevantis
