// The Brevantis control: its automation interface over the shared store.
#pragma once

#include <windows.h>
#include <ocidl.h>
#include <string>

#include "BrevantisLib_h.h"
#include "com/connection_point.h"
#include "com/error_info.h"
#include "com/object.h"
#include "model/properties.h"

namespace brevantis {

// The control. Its property values live in the thread's shared store; an
// instance holds only what belongs to its place in a container: the client
// site, its window, its advise sinks and its connection points.
class BrevantisControl : public ComClassBase,
                         public DispatchImpl<_Brevantis>,
                         public SupportErrorInfoFor<_Brevantis>,
                         public IOleObject,
                         public IOleInPlaceObject,
                         public IOleControl,
                         public IViewObject2,
                         public IPersistStreamInit,
                         public IPersistPropertyBag,
                         public IPersistStorage,
                         public IProvideClassInfo2,
                         public IConnectionPointContainer {
 public:
  BrevantisControl();
  ~BrevantisControl() override;
  static const InterfaceEntry* Interfaces();
  static HRESULT Create(REFIID iid, void** out);

  // Raises the Error event to every connected sink, unless an Error is being
  // handled on this thread already (then it is dropped).
  void RaiseErrorEvent(short code, const std::wstring& text);

  // Methods.
  STDMETHODIMP About() override;
  STDMETHODIMP OpenCD() override;
  STDMETHODIMP ShowAbout() override;
  STDMETHODIMP ShowSplashScreen() override;
  STDMETHODIMP WebConnect(BSTR url) override;

#define BREVANTIS_STRING_PROPERTY(Name)                                                  \
  STDMETHODIMP get_##Name(BSTR* value) override { return GetString(k##Name, value); } \
  STDMETHODIMP put_##Name(BSTR value) override { return PutString(k##Name, value); }
#define BREVANTIS_LONG_PROPERTY(Name)                                                    \
  STDMETHODIMP get_##Name(LONG* value) override { return GetLong(k##Name, value); }   \
  STDMETHODIMP put_##Name(LONG value) override { return PutLong(k##Name, value); }
#define BREVANTIS_PICTURE_PROPERTY(Name)                                                          \
  STDMETHODIMP get_##Name(IPictureDisp** value) override { return GetPicture(k##Name, value); } \
  STDMETHODIMP putref_##Name(IPictureDisp* value) override { return PutPicture(k##Name, value); }

  BREVANTIS_STRING_PROPERTY(ProgramName)
  BREVANTIS_STRING_PROPERTY(Author1)
  BREVANTIS_STRING_PROPERTY(Author2)
  BREVANTIS_STRING_PROPERTY(Author3)
  BREVANTIS_STRING_PROPERTY(WebSiteURL)
  BREVANTIS_PICTURE_PROPERTY(ProgramPicture)
  BREVANTIS_PICTURE_PROPERTY(ProgramIcon)
  BREVANTIS_LONG_PROPERTY(ProgramMajor)
  BREVANTIS_LONG_PROPERTY(ProgramMinor)
  BREVANTIS_LONG_PROPERTY(ProgramRevision)
  BREVANTIS_LONG_PROPERTY(SplashScreenInterval)
  BREVANTIS_STRING_PROPERTY(CopyrightFromDate)
  BREVANTIS_STRING_PROPERTY(CopyrightToDate)
  BREVANTIS_STRING_PROPERTY(CompanyName)
  BREVANTIS_STRING_PROPERTY(CompanyEmail)
  BREVANTIS_PICTURE_PROPERTY(CompanyLogo)
  BREVANTIS_STRING_PROPERTY(AboutWavSound)
  BREVANTIS_STRING_PROPERTY(UpdatesURL)
  BREVANTIS_STRING_PROPERTY(DefaultProgramFolder)
  BREVANTIS_STRING_PROPERTY(CompanyPhoneNumber)
  BREVANTIS_STRING_PROPERTY(CompanyFaxNumber)
  BREVANTIS_STRING_PROPERTY(Version)
  BREVANTIS_STRING_PROPERTY(CDIndexFile)
  BREVANTIS_STRING_PROPERTY(WinSysDir)
  BREVANTIS_STRING_PROPERTY(WinTempDir)
  BREVANTIS_STRING_PROPERTY(OSName)
  STDMETHODIMP get_IsWindowsNT(VARIANT_BOOL* value) override;
  STDMETHODIMP put_IsWindowsNT(VARIANT_BOOL value) override;

#undef BREVANTIS_STRING_PROPERTY
#undef BREVANTIS_LONG_PROPERTY
#undef BREVANTIS_PICTURE_PROPERTY

  // IOleObject
  STDMETHODIMP SetClientSite(IOleClientSite* site) override;
  STDMETHODIMP GetClientSite(IOleClientSite** site) override;
  STDMETHODIMP SetHostNames(LPCOLESTR, LPCOLESTR) override { return S_OK; }
  STDMETHODIMP Close(DWORD saveOption) override;
  STDMETHODIMP SetMoniker(DWORD, IMoniker*) override { return E_NOTIMPL; }
  STDMETHODIMP GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
  STDMETHODIMP InitFromData(IDataObject*, BOOL, DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP GetClipboardData(DWORD, IDataObject**) override { return E_NOTIMPL; }
  STDMETHODIMP DoVerb(LONG verb, LPMSG, IOleClientSite* site, LONG, HWND parent, LPCRECT position) override;
  STDMETHODIMP EnumVerbs(IEnumOLEVERB** verbs) override;
  STDMETHODIMP Update() override { return S_OK; }
  STDMETHODIMP IsUpToDate() override { return S_OK; }
  STDMETHODIMP GetUserClassID(CLSID* clsid) override;
  STDMETHODIMP GetUserType(DWORD form, LPOLESTR* type) override;
  STDMETHODIMP SetExtent(DWORD aspect, SIZEL* size) override;
  STDMETHODIMP GetExtent(DWORD aspect, SIZEL* size) override;
  STDMETHODIMP Advise(IAdviseSink* sink, DWORD* cookie) override;
  STDMETHODIMP Unadvise(DWORD cookie) override;
  STDMETHODIMP EnumAdvise(IEnumSTATDATA** advise) override;
  STDMETHODIMP GetMiscStatus(DWORD aspect, DWORD* status) override;
  STDMETHODIMP SetColorScheme(LOGPALETTE*) override { return E_NOTIMPL; }

  // IOleWindow, IOleInPlaceObject
  STDMETHODIMP GetWindow(HWND* window) override;
  STDMETHODIMP ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
  STDMETHODIMP InPlaceDeactivate() override;
  STDMETHODIMP UIDeactivate() override { return S_OK; }
  STDMETHODIMP SetObjectRects(LPCRECT position, LPCRECT clip) override;
  STDMETHODIMP ReactivateAndUndo() override { return E_NOTIMPL; }

  // IOleControl
  STDMETHODIMP GetControlInfo(CONTROLINFO*) override { return E_NOTIMPL; }
  STDMETHODIMP OnMnemonic(MSG*) override { return E_NOTIMPL; }
  STDMETHODIMP OnAmbientPropertyChange(DISPID id) override;
  STDMETHODIMP FreezeEvents(BOOL) override { return S_OK; }

  // IViewObject2
  STDMETHODIMP Draw(DWORD aspect, LONG, void*, DVTARGETDEVICE*, HDC, HDC draw, LPCRECTL bounds, LPCRECTL,
                    BOOL(STDMETHODCALLTYPE*)(ULONG_PTR), ULONG_PTR) override;
  STDMETHODIMP GetColorSet(DWORD, LONG, void*, DVTARGETDEVICE*, HDC, LOGPALETTE**) override { return E_NOTIMPL; }
  STDMETHODIMP Freeze(DWORD, LONG, void*, DWORD*) override { return E_NOTIMPL; }
  STDMETHODIMP Unfreeze(DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) override;
  STDMETHODIMP GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) override;
  STDMETHODIMP GetExtent(DWORD aspect, LONG, DVTARGETDEVICE*, LPSIZEL size) override;

  // IPersist, IPersistStreamInit, IPersistPropertyBag, IPersistStorage
  STDMETHODIMP GetClassID(CLSID* clsid) override;
  STDMETHODIMP IsDirty() override { return dirty_ ? S_OK : S_FALSE; }
  STDMETHODIMP InitNew() override;
  STDMETHODIMP Load(IStream* stream) override;
  STDMETHODIMP Save(IStream* stream, BOOL clearDirty) override;
  STDMETHODIMP GetSizeMax(ULARGE_INTEGER* size) override;
  STDMETHODIMP Load(IPropertyBag* bag, IErrorLog* log) override;
  STDMETHODIMP Save(IPropertyBag* bag, BOOL clearDirty, BOOL saveAll) override;
  STDMETHODIMP InitNew(IStorage* storage) override;
  STDMETHODIMP Load(IStorage* storage) override;
  STDMETHODIMP Save(IStorage* storage, BOOL sameAsLoad) override;
  STDMETHODIMP SaveCompleted(IStorage*) override { return S_OK; }
  STDMETHODIMP HandsOffStorage() override { return S_OK; }

  // IProvideClassInfo2
  STDMETHODIMP GetClassInfo(ITypeInfo** info) override;
  STDMETHODIMP GetGUID(DWORD kind, GUID* guid) override;

  // IConnectionPointContainer
  STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** points) override;
  STDMETHODIMP FindConnectionPoint(REFIID iid, IConnectionPoint** point) override;

  // Whether the container is in design mode (its ambient user mode is false).
  bool IsDesignTime();
  HWND Window() const { return window_; }

 private:
  HRESULT GetString(Prop p, BSTR* value);
  HRESULT PutString(Prop p, BSTR value);
  HRESULT GetLong(Prop p, LONG* value);
  HRESULT PutLong(Prop p, LONG value);
  HRESULT GetPicture(Prop p, IPictureDisp** value);
  HRESULT PutPicture(Prop p, IPictureDisp* value);

  // The read-only rules; S_OK when the put may go ahead.
  HRESULT CheckWritable(Prop p, const std::wstring* newText);
  // After a successful put: the container hears of it, the saved state is stale.
  void Changed(Prop p);

  HRESULT ActivateInPlace(IOleClientSite* site, HWND parent, LPCRECT position);
  void ShowForMode();

  ComPtr<IOleClientSite> site_;
  ComPtr<IOleInPlaceSite> inPlaceSite_;
  ComPtr<IOleAdviseHolder> oleAdvise_;
  ComPtr<IAdviseSink> viewSink_;
  DWORD viewAspects_ = 0;
  DWORD viewFlags_ = 0;
  HWND window_ = nullptr;
  bool tellingSiteItsSquare_ = false;  // a site that insists from OnPosRectChange is not told again
  bool dirty_ = false;
  ConnectionPoints connectionPoints_;
};

}  // namespace brevantis
