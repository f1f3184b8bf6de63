// A container of the tests' own: the property bag, client site with ambient
// properties, and sinks a form would give the control, each recording what
// the control did to it.
#pragma once

#include <ocidl.h>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "com/object.h"
#include "com/raii.h"

namespace brevantis::testing {

// A property bag in memory, in the order of writing.
class TestPropertyBag : public ComClassBase, public IPropertyBag {
 public:
  static const InterfaceEntry* Interfaces();

  std::vector<std::wstring> reads;   // names asked for, in order
  std::vector<std::wstring> writes;  // names written, in order
  std::wstring failingRead;          // a read of this name fails with E_FAIL

  void Set(const std::wstring& name, const VARIANT& value);
  void SetText(const std::wstring& name, const wchar_t* text);
  bool Has(const std::wstring& name) const;
  // The stored value (VT_EMPTY when absent).
  const VARIANT& Value(const std::wstring& name) const;

  STDMETHODIMP Read(LPCOLESTR name, VARIANT* value, IErrorLog* log) override;
  STDMETHODIMP Write(LPCOLESTR name, VARIANT* value) override;

 private:
  std::vector<std::pair<std::wstring, Variant>> values_;
};

// A client site with no ambient properties.
class SiteWithoutAmbient : public ComClassBase, public IOleClientSite {
 public:
  static const InterfaceEntry* Interfaces();
  STDMETHODIMP SaveObject() override { return E_NOTIMPL; }
  STDMETHODIMP GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
  STDMETHODIMP GetContainer(IOleContainer**) override { return E_NOINTERFACE; }
  STDMETHODIMP ShowObject() override { return S_OK; }
  STDMETHODIMP OnShowWindow(BOOL) override { return S_OK; }
  STDMETHODIMP RequestNewObjectLayout() override { return E_NOTIMPL; }
};

// A client site whose ambient user mode the test sets; in place, it hosts the
// control in window at position, which follows OnPosRectChange.
class TestSite : public SiteWithoutAmbient, public IDispatch, public IOleInPlaceSite {
 public:
  static const InterfaceEntry* Interfaces();

  bool userMode = true;
  HWND window = nullptr;
  RECT position = {};
  std::function<void()> onPosRectChange;  // may answer the control, as a container does

  STDMETHODIMP GetTypeInfoCount(UINT* count) override { *count = 0; return S_OK; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*, UINT*) override;

  STDMETHODIMP GetWindow(HWND* hwnd) override { *hwnd = window; return S_OK; }
  STDMETHODIMP ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP CanInPlaceActivate() override { return S_OK; }
  STDMETHODIMP OnInPlaceActivate() override { return S_OK; }
  STDMETHODIMP OnUIActivate() override { return S_OK; }
  STDMETHODIMP GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document, LPRECT pos, LPRECT clip,
                                LPOLEINPLACEFRAMEINFO) override;
  STDMETHODIMP Scroll(SIZE) override { return E_NOTIMPL; }
  STDMETHODIMP OnUIDeactivate(BOOL) override { return S_OK; }
  STDMETHODIMP OnInPlaceDeactivate() override { return S_OK; }
  STDMETHODIMP DiscardUndoState() override { return S_OK; }
  STDMETHODIMP DeactivateAndUndo() override { return E_NOTIMPL; }
  STDMETHODIMP OnPosRectChange(LPCRECT rect) override {
    position = *rect;
    if (onPosRectChange) onPosRectChange();
    return S_OK;
  }
};

// Records IPropertyNotifySink::OnChanged calls.
class NotifySink : public ComClassBase, public IPropertyNotifySink {
 public:
  static const InterfaceEntry* Interfaces();
  std::vector<DISPID> changed;
  STDMETHODIMP OnChanged(DISPID id) override { changed.push_back(id); return S_OK; }
  STDMETHODIMP OnRequestEdit(DISPID) override { return S_OK; }
};

// A sink of the control's events: records each Error and runs onError, which
// may re-enter the control, write back the arguments or fail.
class ErrorEventSink : public ComClassBase, public IDispatch {
 public:
  static const InterfaceEntry* Interfaces();

  struct Event {
    short code;
    std::wstring text;
  };
  std::vector<Event> events;
  std::function<void()> onError;
  HRESULT result = S_OK;   // what Invoke answers
  bool writeBack = false;  // change both arguments before returning

  STDMETHODIMP GetTypeInfoCount(UINT* count) override { *count = 0; return S_OK; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT*, EXCEPINFO*, UINT*) override;
};

// Creates a test object and keeps both the class (to script it) and a reference.
template <class T>
class Owned {
 public:
  Owned() : object_(ComObject<T>::New()) {}
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;
  ~Owned() { if (object_) object_->Release(); }
  T* operator->() const { return object_; }
  T* Get() const { return object_; }
  template <class I>
  I* As() const { return static_cast<I*>(object_); }

 private:
  ComObject<T>* object_;
};

// Advises sink on the connection point iid of object; returns the cookie (0 on failure).
DWORD Connect(IUnknown* object, REFIID iid, IUnknown* sink);

}  // namespace brevantis::testing
