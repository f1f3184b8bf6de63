// The control's rules at design time and run time: read-only properties,
// change notification, the Error event convention and the environment.
#include "control_fixture.h"

#include <tuple>

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
}

TEST_F(BehaviourTest, AnErrorRaisedInsideAHandlerIsDroppedOnEveryInstance) {
  ComPtr<IDispatch> control = NewControl(), other = NewControl();
  Owned<ErrorEventSink> sink, otherSink;
  ASSERT_NE(0u, Connect(control.Get(), DIID___Brevantis, sink.As<IDispatch>()));
  ASSERT_NE(0u, Connect(other.Get(), DIID___Brevantis, otherSink.As<IDispatch>()));
  sink->onError = [&] {
    Native(control.Get())->RaiseErrorEvent(201, L"nested");
    Native(other.Get())->RaiseErrorEvent(202, L"nested elsewhere");
  };
  Native(control.Get())->RaiseErrorEvent(200, kNoBrowser);
  EXPECT_EQ(1u, sink->events.size());
  EXPECT_TRUE(otherSink->events.empty());

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

// The 570-twip square in pixels of the screen.
LONG SquareSide() {
  const HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
  ReleaseDC(nullptr, screen);
  return MulDiv(570, dpi, 1440);
}

auto Edges(const RECT& r) { return std::make_tuple(r.left, r.top, r.right, r.bottom); }

// A designer drags the control to other sizes: it refuses the extent, and in
// place it tells the site its square.
TEST_F(BehaviourTest, TheControlKeepsItsSquareWhateverItIsGiven) {
  ComPtr<IDispatch> control = NewControl();
  ComPtr<IOleObject> ole = As<IOleObject>(control.Get());
  SIZEL dragged = {5000, 300};
  SIZEL square = {1005, 1005};  // 570 twips in HIMETRIC
  EXPECT_EQ(E_FAIL, ole->SetExtent(DVASPECT_CONTENT, &dragged));
  EXPECT_EQ(S_OK, ole->SetExtent(DVASPECT_CONTENT, &square));
  SIZEL size = {};
  ASSERT_EQ(S_OK, ole->GetExtent(DVASPECT_CONTENT, &size));
  EXPECT_EQ(1005, size.cx);
  EXPECT_EQ(1005, size.cy);
  ComPtr<IViewObject2> view = As<IViewObject2>(control.Get());
  ASSERT_EQ(S_OK, view->GetExtent(DVASPECT_CONTENT, -1, nullptr, &size));
  EXPECT_EQ(1005, size.cx);

  Owned<TestSite> site;
  site->userMode = false;
  site->window = CreateWindowExW(0, L"STATIC", L"form", WS_OVERLAPPEDWINDOW, 0, 0, 400, 300, nullptr, nullptr,
                                 nullptr, nullptr);
  ASSERT_NE(nullptr, site->window);
  ASSERT_EQ(S_OK, ole->SetClientSite(site.As<IOleClientSite>()));
  const LONG side = SquareSide();
  site->position = {10, 20, 210, 140};
  ASSERT_EQ(S_OK, ole->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, site.As<IOleClientSite>(), 0, site->window, nullptr));
  EXPECT_EQ(Edges({10, 20, 10 + side, 20 + side}), Edges(site->position));
  ComPtr<IOleInPlaceObject> inPlace = As<IOleInPlaceObject>(control.Get());
  const RECT stretched = {30, 40, 330, 90};
  EXPECT_EQ(S_OK, inPlace->SetObjectRects(&stretched, &stretched));
  EXPECT_EQ(Edges({30, 40, 30 + side, 40 + side}), Edges(site->position));
  HWND window = nullptr;
  ASSERT_EQ(S_OK, inPlace->GetWindow(&window));
  RECT client = {};
  GetClientRect(window, &client);
  EXPECT_EQ(Edges({0, 0, side, side}), Edges(client));
  // A site that insists on its own size is told the square once, not for ever.
  int told = 0;
  site->onPosRectChange = [&] {
    if (++told < 3) inPlace->SetObjectRects(&stretched, &stretched);
  };
  EXPECT_EQ(S_OK, inPlace->SetObjectRects(&stretched, &stretched));
  EXPECT_EQ(1, told);
  site->onPosRectChange = nullptr;
  ole->Close(OLECLOSE_NOSAVE);
  ole->SetClientSite(nullptr);
  DestroyWindow(site->window);
}

// The pixels that drawing the control into bounds larger than its square
// changes in a white canvas, as the smallest rectangle holding them.
RECT PaintedArea(IViewObject* view) {
  constexpr int kCanvas = 100;
  const HDC screen = GetDC(nullptr);
  const HDC dc = CreateCompatibleDC(screen);
  const HBITMAP bitmap = CreateCompatibleBitmap(screen, kCanvas, kCanvas);
  ReleaseDC(nullptr, screen);
  const HGDIOBJ old = SelectObject(dc, bitmap);
  const RECT canvas = {0, 0, kCanvas, kCanvas};
  FillRect(dc, &canvas, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  const RECTL bounds = {0, 0, kCanvas, kCanvas};
  EXPECT_EQ(S_OK, view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, dc, &bounds, nullptr, nullptr, 0));
  RECT painted = {};
  for (int y = 0; y < kCanvas; ++y)
    for (int x = 0; x < kCanvas; ++x)
      if ((GetPixel(dc, x, y) & 0xFFFFFF) != 0xFFFFFF) {
        const RECT pixel = {x, y, x + 1, y + 1};
        UnionRect(&painted, &painted, &pixel);
      }
  SelectObject(dc, old);
  DeleteObject(bitmap);
  DeleteDC(dc);
  return painted;
}

TEST_F(BehaviourTest, DrawsItsSquareAtDesignTimeOnly) {
  ComPtr<IDispatch> control = NewControl();
  Owned<TestSite> site;
  ASSERT_EQ(S_OK, As<IOleObject>(control.Get())->SetClientSite(site.As<IOleClientSite>()));
  ComPtr<IViewObject> view = As<IViewObject>(control.Get());
  site->userMode = false;
  EXPECT_EQ(Edges({0, 0, SquareSide(), SquareSide()}), Edges(PaintedArea(view.Get())));
  site->userMode = true;
  const RECT painted = PaintedArea(view.Get());
  EXPECT_TRUE(IsRectEmpty(&painted));
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
