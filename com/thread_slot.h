// Per-thread state, owned by the module it belongs to.
#pragma once

#include <windows.h>
#include <new>

namespace brevantis {

// A thread-local storage index, taken when the module loads and given back
// when it unloads, so that a host that loads the control again and again
// does not run out of them. Without one, Get gives nullptr and Set nothing.
class TlsIndex {
 public:
  TlsIndex() = default;
  TlsIndex(const TlsIndex&) = delete;
  TlsIndex& operator=(const TlsIndex&) = delete;
  ~TlsIndex() {
    if (Valid()) TlsFree(index_);
  }
  bool Valid() const { return index_ != TLS_OUT_OF_INDEXES; }
  void* Get() const { return Valid() ? TlsGetValue(index_) : nullptr; }
  void Set(void* value) const {
    if (Valid()) TlsSetValue(index_, value);
  }

 private:
  const DWORD index_ = TlsAlloc();
};

// A value of type T for each thread, made on first use and kept for the
// thread's life: values may hold COM objects, which must not be released
// from the loader's thread-exit notification.
template <class T>
class ThreadSlot {
 public:
  // The calling thread's value, made when missing; without an index or
  // memory for it, std::bad_alloc, which the entry points return as
  // E_OUTOFMEMORY.
  T& Get() {
    T* value = static_cast<T*>(index_.Get());
    if (!value) {
      if (!index_.Valid()) throw std::bad_alloc();
      value = new T();
      index_.Set(value);
    }
    return *value;
  }

 private:
  TlsIndex index_;
};

}  // namespace brevantis
