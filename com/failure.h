// One way to fail. Code of the server returns HRESULTs and passes a failure
// up with the macros below, which note where it started. C++ exceptions (out
// of memory above all) are caught in one place, Guarded, which every COM
// entry point and, through GuardedMessage, every window procedure runs its
// body in: no exception crosses a COM or system boundary.
//
// The place a failure started (file and line) is kept for the thread; with
// the environment variable BREVANTIS_TRACE_FAILURES set to 1 it is also
// written to the debugger output: "Brevantis: web/browser.cpp(120): 0x80070003".
#pragma once

#include <windows.h>
#include <new>

namespace brevantis {

struct FailureSite {
  const char* file;
  int line;
};
struct FailureOrigin {
  HRESULT hr;
  const FailureSite* site;  // nullptr when no failure was noted
};

// Notes hr as failing at site, unless it is the failure noted last on this
// thread passing up through a caller; returns hr. Never allocates.
HRESULT NoteFailure(HRESULT hr, const FailureSite* site) noexcept;

// The failure noted last on this thread since it last entered the server.
FailureOrigin LastFailure() noexcept;
void ForgetFailure() noexcept;

#define BREVANTIS_RETURN_FAILURE(hr)                                          \
  do {                                                                        \
    static constexpr ::brevantis::FailureSite failureSite_{__FILE__, __LINE__}; \
    return ::brevantis::NoteFailure((hr), &failureSite_);                     \
  } while (0)
#define RETURN_IF_FAILED(expression)                          \
  do {                                                        \
    const HRESULT failure_ = (expression);                    \
    if (FAILED(failure_)) BREVANTIS_RETURN_FAILURE(failure_); \
  } while (0)
#define RETURN_HR_IF(hr, condition)               \
  do {                                            \
    if (condition) BREVANTIS_RETURN_FAILURE(hr);  \
  } while (0)

// Runs body (which returns an HRESULT); an exception ends it as
// E_OUTOFMEMORY (out of memory) or E_UNEXPECTED (anything else).
template <class Body>
HRESULT Guarded(Body&& body) noexcept {
  ForgetFailure();
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

// Runs a window procedure's body (which returns the message's result); an
// exception ends it with fallback, and its HRESULT goes to *failure when given.
template <class Result, class Body>
Result GuardedMessage(Result fallback, Body&& body, HRESULT* failure = nullptr) noexcept {
  Result result = fallback;
  const HRESULT hr = Guarded([&] {
    result = body();
    return S_OK;
  });
  if (FAILED(hr)) {
    result = fallback;
    if (failure) *failure = hr;
  }
  return result;
}

}  // namespace brevantis
