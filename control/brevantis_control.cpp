// The control's identity: its interfaces, methods, events and class information.
#include "control/brevantis_control.h"

#include "com/failure.h"
#include "com/module.h"
#include "com/text.h"
#include "com/thread_slot.h"
#include "control/facts.h"
#include "forms/forms.h"
#include "model/store.h"
#include "web/browser.h"
#include "web/cd_catalogue.h"

namespace brevantis {
namespace {

constexpr short kNoBrowserCode = 200;
constexpr wchar_t kNoBrowserText[] = L"No default internet browser installed./Browser internet non installato.";

// Whether an Error event is being raised on this thread: one raised from a
// handler of another is dropped.
struct ErrorEventState {
  bool raising = false;
};
ThreadSlot<ErrorEventState> g_errorEvents;

}  // namespace

BrevantisControl::BrevantisControl()
    : connectionPoints_(static_cast<IConnectionPointContainer*>(this), {&DIID___Brevantis, &IID_IPropertyNotifySink}) {}

BrevantisControl::~BrevantisControl() {
  if (window_) DestroyWindow(window_);
}

namespace {

using C = BrevantisControl;
const InterfaceEntry kControlInterfaces[] = {
    BREVANTIS_INTERFACE(C, _Brevantis),
    BREVANTIS_INTERFACE_AS(C, IDispatch, _Brevantis),
    BREVANTIS_INTERFACE(C, ISupportErrorInfo),
    BREVANTIS_INTERFACE(C, IOleObject),
    BREVANTIS_INTERFACE(C, IOleInPlaceObject),
    BREVANTIS_INTERFACE_AS(C, IOleWindow, IOleInPlaceObject),
    BREVANTIS_INTERFACE(C, IOleControl),
    BREVANTIS_INTERFACE(C, IViewObject2),
    BREVANTIS_INTERFACE_AS(C, IViewObject, IViewObject2),
    BREVANTIS_INTERFACE(C, IPersistStreamInit),
    BREVANTIS_INTERFACE(C, IPersistPropertyBag),
    BREVANTIS_INTERFACE(C, IPersistStorage),
    BREVANTIS_INTERFACE_AS(C, IPersist, IPersistStreamInit),
    BREVANTIS_INTERFACE(C, IProvideClassInfo2),
    BREVANTIS_INTERFACE_AS(C, IProvideClassInfo, IProvideClassInfo2),
    BREVANTIS_INTERFACE(C, IConnectionPointContainer),
    BREVANTIS_INTERFACE_END,
};

}  // namespace

const InterfaceEntry* BrevantisControl::Interfaces() { return kControlInterfaces; }

HRESULT BrevantisControl::Create(REFIID iid, void** out) {
  return Guarded([&] { return ComObject<BrevantisControl>::Create(iid, out); });
}

STDMETHODIMP BrevantisControl::About() {
  return Guarded([] {
    const Store& store = CurrentStore();
    return ShowControlAboutBox(store[kVersion].text, WebFactsOf(store));
  });
}
STDMETHODIMP BrevantisControl::ShowAbout() {
  return Guarded([] { return ShowProgramAboutBox(ProgramFactsOf(CurrentStore())); });
}
STDMETHODIMP BrevantisControl::ShowSplashScreen() {
  return Guarded([] { return ShowProgramSplashScreen(ProgramFactsOf(CurrentStore())); });
}
// A page that could not be opened reaches the host as the Error event; only
// a probe file that cannot be written comes back as an automation error.
STDMETHODIMP BrevantisControl::WebConnect(BSTR url) {
  const ComPtr<_Brevantis> self(this);  // a handler of the event may let go of the control
  return Guarded([&] {
    const Store& store = CurrentStore();
    bool opened = false;
    RETURN_IF_FAILED(OpenUrlInBrowser(WebConnectAddress(FromBstr(url), store[kWebSiteURL].text), WebFactsOf(store),
                                      &opened));
    if (!opened) RaiseErrorEvent(kNoBrowserCode, kNoBrowserText);
    return S_OK;
  });
}

STDMETHODIMP BrevantisControl::OpenCD() {
  const ComPtr<_Brevantis> self(this);  // a handler of the event may let go of the control
  return Guarded([&] {
    const Store& store = CurrentStore();
    CdOutcome outcome = CdOutcome::Opened;
    RETURN_IF_FAILED(OpenCatalogueOnCd(store[kCDIndexFile].text, WebFactsOf(store), &outcome));
    if (outcome == CdOutcome::NoBrowser) RaiseErrorEvent(kNoBrowserCode, kNoBrowserText);
    return S_OK;
  });
}

void BrevantisControl::RaiseErrorEvent(short code, const std::wstring& text) {
  ErrorEventState& state = g_errorEvents.Get();
  if (state.raising) return;
  const std::vector<ComPtr<IDispatch>> sinks = connectionPoints_.Find(DIID___Brevantis)->Sinks<IDispatch>(IID_IDispatch);
  state.raising = true;
  // Cleared however the handlers end, so one failing sink silences nothing for good.
  struct ClearFlag {
    bool& raising;
    ~ClearFlag() { raising = false; }
  } clearFlag{state.raising};
  for (const ComPtr<IDispatch>& sink : sinks) {
    // Each sink gets its own copies; what a handler writes back is ignored.
    short codeArg = code;
    Bstr textArg(text.data(), static_cast<UINT>(text.size()));
    VARIANT args[2];
    VariantInit(&args[0]);
    VariantInit(&args[1]);
    V_VT(&args[0]) = VT_BSTR | VT_BYREF;  // last argument first
    V_BSTRREF(&args[0]) = textArg.Address();
    V_VT(&args[1]) = VT_I2 | VT_BYREF;
    V_I2REF(&args[1]) = &codeArg;
    DISPPARAMS params = {args, nullptr, 2, 0};
    sink->Invoke(1, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, nullptr, nullptr, nullptr);
  }
}

STDMETHODIMP BrevantisControl::EnumConnectionPoints(IEnumConnectionPoints** points) {
  return connectionPoints_.EnumConnectionPoints(this, points);
}

STDMETHODIMP BrevantisControl::FindConnectionPoint(REFIID iid, IConnectionPoint** point) {
  return connectionPoints_.FindConnectionPoint(iid, point);
}

STDMETHODIMP BrevantisControl::GetClassInfo(ITypeInfo** info) {
  if (!info) return E_POINTER;
  *info = nullptr;
  ComPtr<ITypeLib> lib;
  const HRESULT hr = LoadOwnTypeLib(lib.Out());
  return FAILED(hr) ? hr : lib->GetTypeInfoOfGuid(CLSID_Brevantis, info);
}

STDMETHODIMP BrevantisControl::GetGUID(DWORD kind, GUID* guid) {
  if (!guid) return E_POINTER;
  if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID) {
    *guid = GUID_NULL;
    return E_INVALIDARG;
  }
  *guid = DIID___Brevantis;
  return S_OK;
}

}  // namespace brevantis
