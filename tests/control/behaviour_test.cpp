// The control's rules at design time and run time: read-only properties,
// change notification, the Error event convention and the environment.
#include "control_fixture.h"

using namespace brevantis;
using namespace brevantis::testing;

namespace {

constexpr SCODE kSetNotSupportedAtRuntime = 0x800A017E;  // 382
constexpr SCODE kSetNotSupported = 0x800A017F;           // 383
constexpr SCODE kSetNotPermitted = 0x800A0183;           // 387

class BehaviourTest : public ControlTest {
 protected:
  static SCODE PutError(IDispatch* control, const wchar_t* name, const wchar_t* value) {
    EXCEPINFO error = {};
    const HRESULT hr = Put(control, name, value, &error);
    SysFreeString(error.bstrSource);
    SysFreeString(error.bstrDescription);
    SysFreeString(error.bstrHelpFile);
    return hr == DISP_E_EXCEPTION ? error.scode : hr;
  }

  static BrevantisControl* Native(IDispatch* control) {
    return static_cast<BrevantisControl*>(static_cast<_Brevantis*>(control));
  }

  static const std::wstring kNoBrowser;
};

const std::wstring BehaviourTest::kNoBrowser = L"No default internet browser installed./Browser internet non installato.";

TEST_F(BehaviourTest, EnvironmentPropertiesRefuseByMode) {
  ComPtr<IDispatch> control = NewControl();
  ComPtr<IOleObject> ole = As<IOleObject>(control.Get());
  const std::wstring before = Get(control.Get(), L"OSName");

  EXPECT_EQ(kSetNotSupportedAtRuntime, PutError(control.Get(), L"OSName", L"x"));  // no site: run time

  Owned<SiteWithoutAmbient> plain;
  ASSERT_EQ(S_OK, ole->SetClientSite(plain.As<IOleClientSite>()));
  EXPECT_EQ(kSetNotSupportedAtRuntime, PutError(control.Get(), L"WinSysDir", L"x"));  // no answer: run time

  Owned<TestSite> site;
  ASSERT_EQ(S_OK, ole->SetClientSite(site.As<IOleClientSite>()));
  site->userMode = false;
  for (const wchar_t* name : {L"OSName", L"WinSysDir", L"WinTempDir"})
    EXPECT_EQ(kSetNotPermitted, PutError(control.Get(), name, L"x")) << name;
  site->userMode = true;
  for (const wchar_t* name : {L"OSName", L"WinSysDir", L"WinTempDir"})
    EXPECT_EQ(kSetNotSupportedAtRuntime, PutError(control.Get(), name, L"x")) << name;
  ComPtr<_Brevantis> typed = As<_Brevantis>(control.Get());
  EXPECT_EQ(static_cast<HRESULT>(kSetNotSupportedAtRuntime), typed->put_IsWindowsNT(VARIANT_TRUE));
  site->userMode = false;
  EXPECT_EQ(static_cast<HRESULT>(kSetNotPermitted), typed->put_IsWindowsNT(VARIANT_TRUE));

  EXPECT_EQ(before, Get(control.Get(), L"OSName"));
  ole->SetClientSite(nullptr);
}

TEST_F(BehaviourTest, VersionTakesOnlyItsOwnValueAtAnyTime) {
  ComPtr<IDispatch> control = NewControl();
  Owned<TestPropertyBag> bag;
  ASSERT_EQ(S_OK, As<IPersistPropertyBag>(control.Get())->Load(bag.As<IPropertyBag>(), nullptr));
  Owned<TestSite> site;
  site->userMode = false;
  ASSERT_EQ(S_OK, As<IOleObject>(control.Get())->SetClientSite(site.As<IOleClientSite>()));
  EXPECT_EQ(kSetNotSupported, PutError(control.Get(), L"Version", L"1.03.0002"));
  EXPECT_EQ(S_OK, PutError(control.Get(), L"Version", L"1.03.0001"));
  EXPECT_EQ(L"1.03.0001", Get(control.Get(), L"Version"));
  As<IOleObject>(control.Get())->SetClientSite(nullptr);
}

TEST_F(BehaviourTest, SuccessfulPutsNotifyTheContainer) {
  ComPtr<IDispatch> control = NewControl();
  Owned<NotifySink> sink;
  ASSERT_NE(0u, Connect(control.Get(), IID_IPropertyNotifySink, sink.As<IPropertyNotifySink>()));
  Put(control.Get(), L"ProgramName", L"Atlante");
  PutLong(control.Get(), L"SplashScreenInterval", 3000);
  Put(control.Get(), L"OSName", L"refused");
  Put(control.Get(), L"Version", Get(control.Get(), L"Version").c_str());  // accepted: same value
  As<_Brevantis>(control.Get())->putref_ProgramIcon(nullptr);
  EXPECT_EQ((std::vector<DISPID>{10, 20, 31, 16}), sink->changed);
  EXPECT_EQ(S_OK, As<IPersistStreamInit>(control.Get())->IsDirty());
}

TEST_F(BehaviourTest, PicturePutsTakePicturesOnly) {
  ComPtr<IDispatch> control = NewControl();
  ComPtr<IPictureDisp> before;
  As<_Brevantis>(control.Get())->get_ProgramPicture(before.Out());
  Owned<TestSite> notAPicture;
  // Through IDispatch the object is refused before the control sees it ...
  VARIANT object;
  VariantInit(&object);
  V_VT(&object) = VT_DISPATCH;
  V_DISPATCH(&object) = notAPicture.As<IDispatch>();
  EXPECT_TRUE(FAILED(DispatchClient(control.Get()).Call(L"ProgramPicture", DISPATCH_PROPERTYPUTREF, &object, 1, nullptr)));
  // ... and a caller of the interface that passes one anyway gets error 481.
  EXPECT_EQ(static_cast<HRESULT>(0x800A01E1), As<_Brevantis>(control.Get())->putref_ProgramPicture(
                                                  reinterpret_cast<IPictureDisp*>(notAPicture.As<IDispatch>())));
  ComPtr<IPictureDisp> after;
  As<_Brevantis>(control.Get())->get_ProgramPicture(after.Out());
  EXPECT_EQ(before.Get(), after.Get());
}

TEST_F(BehaviourTest, ErrorReachesEverySinkWithItsOwnArguments) {
  ComPtr<IDispatch> control = NewControl();
  Owned<ErrorEventSink> first, second;
  first->writeBack = true;
  first->result = E_FAIL;  // a failing handler stops nobody
  ASSERT_NE(0u, Connect(control.Get(), DIID___Brevantis, first.As<IDispatch>()));
  ASSERT_NE(0u, Connect(control.Get(), DIID___Brevantis, second.As<IDispatch>()));
  Native(control.Get())->RaiseErrorEvent(200, kNoBrowser);
  ASSERT_EQ(1u, first->events.size());
  ASSERT_EQ(1u, second->events.size());
  EXPECT_EQ(200, second->events[0].code);
  EXPECT_EQ(kNoBrowser, second->events[0].text);
  EXPECT_FALSE(CurrentStore().inErrorEvent);
}

TEST_F(BehaviourTest, AnErrorRaisedInsideAHandlerIsDroppedOnEveryInstance) {
  ComPtr<IDispatch> control = NewControl(), other = NewControl();
  Owned<ErrorEventSink> sink, otherSink;
  ASSERT_NE(0u, Connect(control.Get(), DIID___Brevantis, sink.As<IDispatch>()));
  ASSERT_NE(0u, Connect(other.Get(), DIID___Brevantis, otherSink.As<IDispatch>()));
  sink->onError = [&] {
    EXPECT_TRUE(CurrentStore().inErrorEvent);
    Native(control.Get())->RaiseErrorEvent(201, L"nested");
    Native(other.Get())->RaiseErrorEvent(202, L"nested elsewhere");
  };
  Native(control.Get())->RaiseErrorEvent(200, kNoBrowser);
  EXPECT_EQ(1u, sink->events.size());
  EXPECT_TRUE(otherSink->events.empty());
  EXPECT_FALSE(CurrentStore().inErrorEvent);

  sink->onError = nullptr;
  Native(other.Get())->RaiseErrorEvent(203, L"after");  // the flag is clear again
  ASSERT_EQ(1u, otherSink->events.size());
  EXPECT_EQ(203, otherSink->events[0].code);
}

TEST_F(BehaviourTest, TheEnvironmentIsThisMachines) {
  ComPtr<IDispatch> control = NewControl();
  Owned<TestPropertyBag> bag;
  ASSERT_EQ(S_OK, As<IPersistPropertyBag>(control.Get())->Load(bag.As<IPropertyBag>(), nullptr));

  wchar_t system[MAX_PATH], temp[MAX_PATH];
  GetSystemDirectoryW(system, MAX_PATH);
  const DWORD n = GetTempPathW(MAX_PATH, temp);
  EXPECT_EQ(system, Get(control.Get(), L"WinSysDir"));
  EXPECT_EQ(std::wstring(temp, n - 1), Get(control.Get(), L"WinTempDir"));  // without the backslash
  EXPECT_EQ(L"True", Get(control.Get(), L"IsWindowsNT"));
  wchar_t product[256] = {};
  DWORD bytes = sizeof(product);
  RegGetValueW(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Windows NT\\CurrentVersion", L"ProductName", RRF_RT_REG_SZ,
               nullptr, product, &bytes);
  EXPECT_NE(L"", std::wstring(product));
  EXPECT_EQ(product, Get(control.Get(), L"OSName"));
}

TEST_F(BehaviourTest, TheControlKeepsItsSquareWhateverItIsGiven) {
  ComPtr<IDispatch> control = NewControl();
  ComPtr<IOleObject> ole = As<IOleObject>(control.Get());
  SIZEL wanted = {5000, 300};
  EXPECT_EQ(S_OK, ole->SetExtent(DVASPECT_CONTENT, &wanted));
  SIZEL size = {};
  ASSERT_EQ(S_OK, ole->GetExtent(DVASPECT_CONTENT, &size));
  EXPECT_EQ(1005, size.cx);  // 570 twips in HIMETRIC
  EXPECT_EQ(1005, size.cy);
  ComPtr<IViewObject2> view = As<IViewObject2>(control.Get());
  ASSERT_EQ(S_OK, view->GetExtent(DVASPECT_CONTENT, -1, nullptr, &size));
  EXPECT_EQ(1005, size.cx);
}

// Whether drawing the control into a white square changes any pixel.
bool DrawsSomething(IViewObject* view) {
  const HDC screen = GetDC(nullptr);
  const HDC dc = CreateCompatibleDC(screen);
  const HBITMAP bitmap = CreateCompatibleBitmap(screen, 38, 38);
  ReleaseDC(nullptr, screen);
  const HGDIOBJ old = SelectObject(dc, bitmap);
  const RECT square = {0, 0, 38, 38};
  FillRect(dc, &square, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  const RECTL bounds = {0, 0, 38, 38};
  EXPECT_EQ(S_OK, view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, dc, &bounds, nullptr, nullptr, 0));
  bool changed = false;
  for (int y = 0; y < 38 && !changed; ++y)
    for (int x = 0; x < 38 && !changed; ++x) changed = (GetPixel(dc, x, y) & 0xFFFFFF) != 0xFFFFFF;
  SelectObject(dc, old);
  DeleteObject(bitmap);
  DeleteDC(dc);
  return changed;
}

TEST_F(BehaviourTest, DrawsItsPictureAtDesignTimeOnly) {
  ComPtr<IDispatch> control = NewControl();
  Owned<TestSite> site;
  ASSERT_EQ(S_OK, As<IOleObject>(control.Get())->SetClientSite(site.As<IOleClientSite>()));
  ComPtr<IViewObject> view = As<IViewObject>(control.Get());
  site->userMode = false;
  EXPECT_TRUE(DrawsSomething(view.Get()));
  site->userMode = true;
  EXPECT_FALSE(DrawsSomething(view.Get()));
  As<IOleObject>(control.Get())->SetClientSite(nullptr);
}

TEST_F(BehaviourTest, ClassInfoNamesTheEventInterface) {
  ComPtr<IProvideClassInfo2> info = As<IProvideClassInfo2>(NewControl().Get());
  GUID events = {};
  ASSERT_EQ(S_OK, info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &events));
  EXPECT_TRUE(IsEqualGUID(DIID___Brevantis, events));
  ComPtr<ITypeInfo> coclass;
  ASSERT_EQ(S_OK, info->GetClassInfo(coclass.Out()));
  TYPEATTR* attr = nullptr;
  ASSERT_EQ(S_OK, coclass->GetTypeAttr(&attr));
  EXPECT_TRUE(IsEqualGUID(CLSID_Brevantis, attr->guid));
  coclass->ReleaseTypeAttr(attr);
}

}  // namespace
