// The registered control hosted by a container we did not write: the
// AtlAxWin window class of the system's atl.dll.
#include <gtest/gtest.h>

#include <string>

#include "BrevantisLib_h.h"
#include "com/raii.h"
#include "test_paths.h"
#include "testkit/dispatch_client.h"
#include "testkit/test_container.h"

using namespace brevantis;
using namespace brevantis::testing;

namespace {

class AtlHost : public ::testing::Test {
 protected:
  using AxWinInit = BOOL(WINAPI*)();
  using AxGetControl = HRESULT(WINAPI*)(HWND, IUnknown**);
  using Advise = HRESULT(WINAPI*)(IUnknown*, IUnknown*, const IID*, DWORD*);

  void SetUp() override {
    ASSERT_TRUE(SUCCEEDED(OleInitialize(nullptr)));
    atl_.Reset(LoadLibraryW(L"atl.dll"));
    ASSERT_TRUE(atl_);
    auto init = Function<AxWinInit>("AtlAxWinInit");
    getControl_ = Function<AxGetControl>("AtlAxGetControl");
    advise_ = Function<Advise>("AtlAdvise");
    ASSERT_TRUE(init && getControl_ && advise_);
    ASSERT_TRUE(init());
    frame_ = CreateWindowExW(0, L"STATIC", L"host", WS_OVERLAPPEDWINDOW, 0, 0, 400, 300, nullptr, nullptr, nullptr,
                             nullptr);
    ASSERT_NE(nullptr, frame_);
    // The container sizes the control to its window; the control keeps its square.
    host_ = CreateWindowExW(0, L"AtlAxWin", L"BrevantisLib.Brevantis", WS_CHILD | WS_VISIBLE, 10, 10, 200, 120, frame_,
                            nullptr, nullptr, nullptr);
    ASSERT_NE(nullptr, host_);
    ComPtr<IUnknown> control;
    ASSERT_EQ(S_OK, getControl_(host_, control.Out()));
    ASSERT_EQ(S_OK, control->QueryInterface(IID__Brevantis, control_.OutVoid()));
  }

  void TearDown() override {
    control_.Reset();
    if (frame_) DestroyWindow(frame_);
    OleUninitialize();
  }

  template <class F>
  F Function(const char* name) {
    return reinterpret_cast<F>(reinterpret_cast<void*>(GetProcAddress(atl_.Get(), name)));
  }

  LoadedLibrary atl_;
  AxGetControl getControl_ = nullptr;
  Advise advise_ = nullptr;
  HWND frame_ = nullptr;
  HWND host_ = nullptr;
  ComPtr<_Brevantis> control_;
};

TEST_F(AtlHost, CreatesTheControlWithItsInitialValues) {
  Bstr company, folder, version;
  ASSERT_EQ(S_OK, control_->get_CompanyName(company.Out()));
  ASSERT_EQ(S_OK, control_->get_DefaultProgramFolder(folder.Out()));
  ASSERT_EQ(S_OK, control_->get_Version(version.Out()));
  EXPECT_STREQ(L"Ostrel Edizioni", company.Get());
  EXPECT_STREQ(L"Pellandra", folder.Get());
  EXPECT_EQ(0u, version.Length());  // initialised, never loaded
  LONG interval = 0;
  ASSERT_EQ(S_OK, control_->get_SplashScreenInterval(&interval));
  EXPECT_EQ(1000, interval);
}

// The host window's resize reaches the control as SetExtent and SetObjectRects.
TEST_F(AtlHost, TheControlKeepsItsSquareWhenTheHostIsResized) {
  ASSERT_TRUE(MoveWindow(host_, 10, 10, 300, 50, TRUE));
  ComPtr<IOleObject> ole;
  ASSERT_EQ(S_OK, control_->QueryInterface(IID_IOleObject, ole.OutVoid()));
  ComPtr<IOleWindow> inPlace;
  ASSERT_EQ(S_OK, control_->QueryInterface(IID_IOleWindow, inPlace.OutVoid()));
  HWND window = nullptr;
  ASSERT_EQ(S_OK, inPlace->GetWindow(&window));
  RECT client = {};
  GetClientRect(window, &client);
  const HDC screen = GetDC(nullptr);
  const int side = MulDiv(570, GetDeviceCaps(screen, LOGPIXELSX), 1440);
  ReleaseDC(nullptr, screen);
  EXPECT_EQ(side, client.right);
  EXPECT_EQ(side, client.bottom);
  SIZEL size = {};
  ASSERT_EQ(S_OK, ole->GetExtent(DVASPECT_CONTENT, &size));
  EXPECT_EQ(1005, size.cx);
  EXPECT_EQ(1005, size.cy);
  ComPtr<IOleClientSite> site;
  ASSERT_EQ(S_OK, ole->GetClientSite(site.Out()));
  EXPECT_TRUE(site);  // the container gave the control its site
}

TEST_F(AtlHost, PropertiesRoundTripThroughTheHostedControl) {
  DispatchClient client(control_.Get());
  ASSERT_EQ(S_OK, client.PutString(L"ProgramName", L"Atlante dei Fiumi"));
  EXPECT_EQ(L"Atlante dei Fiumi", client.GetString(L"ProgramName"));
  EXCEPINFO error = {};
  EXPECT_EQ(DISP_E_EXCEPTION, client.PutString(L"OSName", L"x", &error));
  EXPECT_EQ(static_cast<SCODE>(0x800A017E), error.scode);  // this host has no ambient user mode: run time
  SysFreeString(error.bstrSource);
  SysFreeString(error.bstrDescription);
  SysFreeString(error.bstrHelpFile);
}

TEST_F(AtlHost, AHostSinkConnectsThroughTheEventConnectionPoint) {
  Owned<ErrorEventSink> sink;
  DWORD cookie = 0;
  ASSERT_EQ(S_OK, advise_(control_.Get(), sink.As<IUnknown>(), &DIID___Brevantis, &cookie));
  EXPECT_NE(0u, cookie);
}

TEST(ControlVersion, VersionIsTheFileVersionOfTheOcx) {
  DWORD handle = 0;
  const DWORD size = GetFileVersionInfoSizeW(BREVANTIS_OCX_PATH, &handle);
  ASSERT_GT(size, 0u);
  std::string data(size, '\0');
  ASSERT_TRUE(GetFileVersionInfoW(BREVANTIS_OCX_PATH, 0, size, &data[0]));
  VS_FIXEDFILEINFO* info = nullptr;
  UINT length = 0;
  ASSERT_TRUE(VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&info), &length));

  ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
  {
    ComPtr<IPersistPropertyBag> control;
    ASSERT_EQ(S_OK, CoCreateInstance(CLSID_Brevantis, nullptr, CLSCTX_INPROC_SERVER, IID_IPersistPropertyBag,
                                     control.OutVoid()));
    Owned<TestPropertyBag> bag;
    ASSERT_EQ(S_OK, control->Load(bag.As<IPropertyBag>(), nullptr));
    wchar_t expected[32];
    swprintf(expected, 32, L"%u.%02u.%04u", HIWORD(info->dwFileVersionMS), LOWORD(info->dwFileVersionMS),
             LOWORD(info->dwFileVersionLS));
    ComPtr<IDispatch> dispatch;
    ASSERT_EQ(S_OK, control->QueryInterface(IID_IDispatch, dispatch.OutVoid()));
    EXPECT_EQ(expected, DispatchClient(dispatch.Get()).GetString(L"Version"));
  }
  CoUninitialize();
}

}  // namespace
