// The registered control in a container we did not write: the AtlAxWin
// window class of the system's atl.dll, which creates it by ProgID, activates
// it in place, sizes it and advises its own sink.
#include <gtest/gtest.h>

#include "BrevantisLib_h.h"
#include "com/raii.h"
#include "testkit/dispatch_client.h"
#include "testkit/test_container.h"

using namespace brevantis;
using namespace brevantis::testing;

namespace {

template <class F>
F AtlFunction(HMODULE atl, const char* name) {
  return reinterpret_cast<F>(reinterpret_cast<void*>(GetProcAddress(atl, name)));
}

TEST(AtlHost, CreatesSizesAndAdvisesTheControl) {
  ASSERT_TRUE(SUCCEEDED(OleInitialize(nullptr)));
  {
    LoadedLibrary atl(LoadLibraryW(L"atl.dll"));
    ASSERT_TRUE(atl);
    auto init = AtlFunction<BOOL(WINAPI*)()>(atl.Get(), "AtlAxWinInit");
    auto getControl = AtlFunction<HRESULT(WINAPI*)(HWND, IUnknown**)>(atl.Get(), "AtlAxGetControl");
    auto advise = AtlFunction<HRESULT(WINAPI*)(IUnknown*, IUnknown*, const IID*, DWORD*)>(atl.Get(), "AtlAdvise");
    ASSERT_TRUE(init && getControl && advise && init());
    const HWND frame = CreateWindowExW(0, L"STATIC", L"host", WS_OVERLAPPEDWINDOW, 0, 0, 400, 300, nullptr, nullptr,
                                       nullptr, nullptr);
    const HWND host = CreateWindowExW(0, L"AtlAxWin", L"BrevantisLib.Brevantis", WS_CHILD | WS_VISIBLE, 10, 10, 200,
                                      120, frame, nullptr, nullptr, nullptr);
    ASSERT_NE(nullptr, host);
    ComPtr<IUnknown> unknown;
    ComPtr<_Brevantis> control;
    ASSERT_EQ(S_OK, getControl(host, unknown.Out()));
    ASSERT_EQ(S_OK, unknown->QueryInterface(IID__Brevantis, control.OutVoid()));

    // The container's resize reaches the control, which keeps its square.
    ASSERT_TRUE(MoveWindow(host, 10, 10, 300, 50, TRUE));
    ComPtr<IOleWindow> inPlace;
    HWND window = nullptr;
    ASSERT_EQ(S_OK, control->QueryInterface(IID_IOleWindow, inPlace.OutVoid()));
    ASSERT_EQ(S_OK, inPlace->GetWindow(&window));
    RECT client = {};
    GetClientRect(window, &client);
    EXPECT_EQ(client.right, client.bottom);
    EXPECT_LT(client.right, 50);

    // Initialised, never loaded; this host has no ambient user mode, so run time.
    DispatchClient dispatch(control.Get());
    EXPECT_EQ(L"Ostrel Edizioni", dispatch.GetString(L"CompanyName"));
    EXCEPINFO error = {};
    EXPECT_EQ(DISP_E_EXCEPTION, dispatch.PutString(L"OSName", L"x", &error));
    EXPECT_EQ(static_cast<SCODE>(0x800A017E), error.scode);
    SysFreeString(error.bstrSource);
    SysFreeString(error.bstrDescription);
    SysFreeString(error.bstrHelpFile);

    Owned<ErrorEventSink> sink;
    DWORD cookie = 0;
    EXPECT_EQ(S_OK, advise(control.Get(), sink.As<IUnknown>(), &DIID___Brevantis, &cookie));
    EXPECT_NE(0u, cookie);
    DestroyWindow(frame);
  }
  OleUninitialize();
}

}  // namespace
