#include "com/failure.h"

#include "com/thread_slot.h"

namespace brevantis {
namespace {

// The failure noted last on each thread: its HRESULT and where it started.
TlsIndex g_failedHr;
TlsIndex g_failedSite;

bool TraceAskedFor() {
  char value[4] = {};
  return GetEnvironmentVariableA("BREVANTIS_TRACE_FAILURES", value, sizeof(value)) == 1 && value[0] == '1';
}

}  // namespace

HRESULT NoteFailure(HRESULT hr, const FailureSite* site) noexcept {
  if (g_failedSite.Get() && LastFailure().hr == hr) return hr;
  g_failedHr.Set(reinterpret_cast<void*>(static_cast<ULONG_PTR>(static_cast<ULONG>(hr))));
  g_failedSite.Set(const_cast<FailureSite*>(site));
  if (TraceAskedFor()) {
    char text[300];
    wsprintfA(text, "Brevantis: %.200s(%d): 0x%08lX\n", site->file, site->line, static_cast<unsigned long>(hr));
    OutputDebugStringA(text);
  }
  return hr;
}

FailureOrigin LastFailure() noexcept {
  return {static_cast<HRESULT>(reinterpret_cast<ULONG_PTR>(g_failedHr.Get())),
          static_cast<const FailureSite*>(g_failedSite.Get())};
}

void ForgetFailure() noexcept { g_failedSite.Set(nullptr); }

}  // namespace brevantis
