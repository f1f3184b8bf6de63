// Keeps C++ exceptions inside the server: every interface method that can
// allocate runs its body through Guarded.
#pragma once

#include <windows.h>
#include <new>

namespace brevantis {

template <class Body>
HRESULT Guarded(Body&& body) noexcept {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

}  // namespace brevantis
