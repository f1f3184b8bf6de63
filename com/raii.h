// Owners for the handles, strings and references the control touches, so that
// every exit path releases them.
#pragma once

#include <windows.h>
#include <oleauto.h>
#include <utility>

namespace brevantis {

// An automation string; a NULL BSTR is the empty string.
class Bstr {
 public:
  Bstr() = default;
  explicit Bstr(const wchar_t* text) : value_(SysAllocString(text)) {}
  Bstr(const wchar_t* text, UINT length) : value_(SysAllocStringLen(text, length)) {}
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  Bstr(Bstr&& other) noexcept : value_(other.Detach()) {}
  Bstr& operator=(Bstr&& other) noexcept { Reset(other.Detach()); return *this; }
  ~Bstr() { SysFreeString(value_); }

  BSTR Get() const { return value_; }
  UINT Length() const { return SysStringLen(value_); }
  BSTR* Out() { Reset(); return &value_; }
  // The string as a by-reference argument, which the callee may replace.
  BSTR* Address() { return &value_; }
  BSTR Detach() { return std::exchange(value_, nullptr); }
  void Reset(BSTR value = nullptr) { SysFreeString(std::exchange(value_, value)); }

 private:
  BSTR value_ = nullptr;
};

class Variant {
 public:
  Variant() { VariantInit(&value_); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  Variant(Variant&& other) noexcept : value_(other.value_) { VariantInit(&other.value_); }
  Variant& operator=(Variant&& other) noexcept {
    if (this != &other) {
      VariantClear(&value_);
      value_ = other.value_;
      VariantInit(&other.value_);
    }
    return *this;
  }
  ~Variant() { VariantClear(&value_); }

  VARIANT* Get() { return &value_; }
  const VARIANT* Get() const { return &value_; }
  VARIANT* Out() { VariantClear(&value_); return &value_; }

 private:
  VARIANT value_;
};

// A counted COM reference.
template <class T>
class ComPtr {
 public:
  ComPtr() = default;
  explicit ComPtr(T* p) : p_(p) { if (p_) p_->AddRef(); }
  ComPtr(const ComPtr& other) : ComPtr(other.p_) {}
  ComPtr(ComPtr&& other) noexcept : p_(std::exchange(other.p_, nullptr)) {}
  ComPtr& operator=(ComPtr other) noexcept { std::swap(p_, other.p_); return *this; }
  ~ComPtr() { if (p_) p_->Release(); }

  T* Get() const { return p_; }
  T* operator->() const { return p_; }
  explicit operator bool() const { return p_ != nullptr; }
  T** Out() { Reset(); return &p_; }
  void** OutVoid() { return reinterpret_cast<void**>(Out()); }
  void Reset() { if (T* old = std::exchange(p_, nullptr)) old->Release(); }
  T* Detach() { return std::exchange(p_, nullptr); }
  // Takes over a reference the caller already owns.
  static ComPtr Adopt(T* p) { ComPtr r; r.p_ = p; return r; }

  template <class U>
  HRESULT As(ComPtr<U>* out) const {
    return p_ ? p_->QueryInterface(__uuidof(U), out->OutVoid()) : E_NOINTERFACE;
  }

 private:
  T* p_ = nullptr;
};

// A handle with its own close function; Invalid is the value that owns nothing.
template <class H, class Traits>
class UniqueHandle {
 public:
  UniqueHandle() = default;
  explicit UniqueHandle(H h) : h_(h) {}
  UniqueHandle(const UniqueHandle&) = delete;
  UniqueHandle& operator=(const UniqueHandle&) = delete;
  UniqueHandle(UniqueHandle&& other) noexcept : h_(other.Release()) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept { Reset(other.Release()); return *this; }
  ~UniqueHandle() { Reset(); }

  H Get() const { return h_; }
  H* Out() { Reset(); return &h_; }
  explicit operator bool() const { return h_ != Traits::Invalid(); }
  H Release() { return std::exchange(h_, Traits::Invalid()); }
  void Reset(H h = Traits::Invalid()) {
    H old = std::exchange(h_, h);
    if (old != Traits::Invalid()) Traits::Close(old);
  }

 private:
  H h_ = Traits::Invalid();
};

struct RegKeyTraits {
  static HKEY Invalid() { return nullptr; }
  static void Close(HKEY h) { RegCloseKey(h); }
};
struct KernelHandleTraits {
  static HANDLE Invalid() { return nullptr; }
  static void Close(HANDLE h) { CloseHandle(h); }
};
struct FileHandleTraits {
  static HANDLE Invalid() { return INVALID_HANDLE_VALUE; }
  static void Close(HANDLE h) { CloseHandle(h); }
};
struct GdiObjectTraits {
  static HGDIOBJ Invalid() { return nullptr; }
  static void Close(HGDIOBJ h) { DeleteObject(h); }
};
struct MemoryDcTraits {
  static HDC Invalid() { return nullptr; }
  static void Close(HDC h) { DeleteDC(h); }
};
struct ScreenDcTraits {
  static HDC Invalid() { return nullptr; }
  static void Close(HDC h) { ReleaseDC(nullptr, h); }
};
struct ModuleTraits {
  static HMODULE Invalid() { return nullptr; }
  static void Close(HMODULE h) { FreeLibrary(h); }
};

using RegKey = UniqueHandle<HKEY, RegKeyTraits>;
using KernelHandle = UniqueHandle<HANDLE, KernelHandleTraits>;
using FileHandle = UniqueHandle<HANDLE, FileHandleTraits>;
using GdiObject = UniqueHandle<HGDIOBJ, GdiObjectTraits>;
using LoadedLibrary = UniqueHandle<HMODULE, ModuleTraits>;
using MemoryDc = UniqueHandle<HDC, MemoryDcTraits>;  // CreateCompatibleDC
using ScreenDc = UniqueHandle<HDC, ScreenDcTraits>;  // GetDC(nullptr)

}  // namespace brevantis
