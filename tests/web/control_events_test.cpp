// WebConnect and OpenCD on the control itself: what opens, and the Error
// event that reaches the host's sinks when nothing can be opened.
#include <gtest/gtest.h>

#include "BrevantisLib_h.h"
#include "com/text.h"
#include "control/brevantis_control.h"
#include "test_paths.h"
#include "testkit/dispatch_client.h"
#include "testkit/local_http_server.h"
#include "testkit/recording_platform.h"
#include "testkit/test_container.h"
#include "web_test_paths.h"
#include "web_test_support.h"

using namespace brevantis;
using namespace brevantis::testing;

namespace {

const std::wstring kNoBrowser = L"No default internet browser installed./Browser internet non installato.";

// As a saved form loads it: the control learns this machine's folders.
void Load(IUnknown* control) {
  ComPtr<IPersistPropertyBag> persist;
  ASSERT_EQ(S_OK, control->QueryInterface(IID_IPersistPropertyBag, persist.OutVoid()));
  Owned<TestPropertyBag> bag;
  bag->SetText(L"WebSiteURL", L"http://www.example.com/sito");
  ASSERT_EQ(S_OK, persist->Load(bag.As<IPropertyBag>(), nullptr));
}

class ControlWeb : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(SUCCEEDED(OleInitialize(nullptr)));
    ASSERT_EQ(S_OK, BrevantisControl::Create(IID__Brevantis, control_.OutVoid()));
    Load(control_.Get());
    ASSERT_NE(0u, Connect(control_.Get(), DIID___Brevantis, sink_.As<IDispatch>()));
  }
  void TearDown() override {
    control_.Reset();
    OleUninitialize();
  }

  std::wstring InstallBrowser() {
    const std::wstring program = temp_.Path() + L"\\Browser\\fake.exe";
    InstallFakeBrowser(program);
    return program;
  }

  ScratchFolder temp_;
  LocalHttpServer server_{LocalHttpServer::Behaviour::Answer, "Brevantis online"};
  ProbeSettings settings_{server_.Url()};
  ComPtr<_Brevantis> control_;
  Owned<ErrorEventSink> sink_;
};

TEST_F(ControlWeb, WebConnectOpensTheAddressOrTheWebSite) {
  const std::wstring program = InstallBrowser();
  HtmAssociation association(program);
  ASSERT_EQ(S_OK, control_->WebConnect(Bstr(L"   ").Get()));
  ASSERT_EQ(1u, BrowserCommandLines(program, 1).size());
  ASSERT_EQ(S_OK, control_->WebConnect(Bstr(L" x ").Get()));
  const auto lines = BrowserCommandLines(program, 2);
  ASSERT_EQ(2u, lines.size());
  EXPECT_EQ(ToAnsi(program) + " http://www.example.com/sito", lines[0]);
  EXPECT_EQ(ToAnsi(program) + " x", lines[1]);
  EXPECT_TRUE(sink_->events.empty());

  // A host's address is one argument; one that starts like an option is
  // refused with Error 200.
  ASSERT_EQ(S_OK, control_->WebConnect(Bstr(L"http://x --no-sandbox \uff02").Get()));
  const auto third = BrowserCommandLines(program, 3);
  ASSERT_EQ(3u, third.size());
  EXPECT_EQ(ToAnsi(program) + " http://x%20--no-sandbox%20%EF%BC%82", third[2]);
  ASSERT_EQ(S_OK, control_->WebConnect(Bstr(L"--no-sandbox").Get()));
  ASSERT_EQ(1u, sink_->events.size());
  EXPECT_EQ(200, sink_->events[0].code);
  EXPECT_EQ(3u, BrowserCommandLines(program).size());
}

TEST_F(ControlWeb, WithoutABrowserError200ReachesTheSink) {
  ASSERT_EQ(S_OK, control_->WebConnect(nullptr));
  ASSERT_EQ(1u, sink_->events.size());
  EXPECT_EQ(200, sink_->events[0].code);
  EXPECT_EQ(kNoBrowser, sink_->events[0].text);
}

// A handler may let go of the control: the control holds itself until the
// method that raised the event returns. The sink's references tell: the
// control's connection holds one as long as the control lives.
TEST_F(ControlWeb, AHandlerThatReleasesTheControlLeavesItUntilTheMethodReturns) {
  const auto references = [&] {
    IDispatch* sink = sink_.As<IDispatch>();
    sink->AddRef();
    return sink->Release();
  };
  const ULONG idle = references();
  _Brevantis* control = control_.Detach();
  ULONG inHandler = 0;
  sink_->onError = [&] {
    control->Release();
    inHandler = references();
  };
  EXPECT_EQ(S_OK, control->WebConnect(nullptr));
  EXPECT_EQ(idle + 1, inHandler) << "still connected, and the event's own reference";
  EXPECT_EQ(idle - 1, references()) << "gone with the control once WebConnect returned";
}

TEST_F(ControlWeb, AnErrorInsideTheHandlerIsDropped) {
  int nested = 0;
  sink_->onError = [&] {
    ++nested;
    control_->WebConnect(Bstr(L"again").Get());
  };
  ASSERT_EQ(S_OK, control_->WebConnect(Bstr(L"x").Get()));
  EXPECT_EQ(1, nested);
  EXPECT_EQ(1u, sink_->events.size());
  sink_->onError = nullptr;
  ASSERT_EQ(S_OK, control_->WebConnect(Bstr(L"x").Get()));  // once handled, errors come through again
  EXPECT_EQ(2u, sink_->events.size());
}

TEST_F(ControlWeb, OfflineTheAssistantIsOfferedAndError200Follows) {
  RecordingPlatform platform;
  platform.connected = false;
  platform.connectedFlags = 0;
  ScopedPlatform scope(&platform);
  ASSERT_EQ(S_OK, control_->WebConnect(Bstr(L"x").Get()));
  ASSERT_EQ(1u, platform.messages.size());
  EXPECT_EQ(static_cast<UINT>(MB_ICONEXCLAMATION | MB_OK), platform.messages[0].style);
  EXPECT_TRUE(platform.processes.empty());
  ASSERT_EQ(1u, sink_->events.size());
  EXPECT_EQ(200, sink_->events[0].code);
}

TEST_F(ControlWeb, OpenCdOpensThePageOrRaisesError200) {
  const std::wstring page = std::wstring(CD_FOLDER_PATH) + L"\\zo\\index.htm";
  MakeFolders(std::wstring(CD_FOLDER_PATH) + L"\\zo");
  WriteTextFile(page, "<html></html>");
  ASSERT_EQ(S_OK, control_->OpenCD());
  ASSERT_EQ(1u, sink_->events.size());
  EXPECT_EQ(200, sink_->events[0].code);

  const std::wstring program = InstallBrowser();
  HtmAssociation association(program);
  ASSERT_EQ(S_OK, control_->OpenCD());
  const auto lines = BrowserCommandLines(program);
  ASSERT_EQ(1u, lines.size());
  EXPECT_EQ(ToAnsi(program) + " \"D:\\zo\\index.htm\"", lines[0]);
  EXPECT_EQ(1u, sink_->events.size());

  // Words smuggled past a ".." of a saved form's CDIndexFile: nothing opens.
  ASSERT_EQ(S_OK, control_->put_CDIndexFile(Bstr(L"x --no-sandbox\\..\\zo\\index.htm").Get()));
  ASSERT_EQ(S_OK, control_->OpenCD());
  EXPECT_EQ(2u, sink_->events.size());
  EXPECT_EQ(1u, BrowserCommandLines(program).size());
}

// The registered control in atl.dll's container, its events sunk with AtlAdvise.
TEST(AtlHostedControl, Error200ReachesTheSinkTheHostAdvised) {
  ASSERT_TRUE(SUCCEEDED(OleInitialize(nullptr)));
  {
    LoadedLibrary ocx(LoadLibraryW(BREVANTIS_OCX_PATH));
    ASSERT_TRUE(ocx);
    const auto registerServer = reinterpret_cast<HRESULT(WINAPI*)()>(
        reinterpret_cast<void*>(GetProcAddress(ocx.Get(), "DllRegisterServer")));
    ASSERT_EQ(S_OK, registerServer());
    LoadedLibrary atl(LoadLibraryW(L"atl.dll"));
    ASSERT_TRUE(atl);
    const auto init = reinterpret_cast<BOOL(WINAPI*)()>(reinterpret_cast<void*>(GetProcAddress(atl.Get(), "AtlAxWinInit")));
    const auto getControl = reinterpret_cast<HRESULT(WINAPI*)(HWND, IUnknown**)>(
        reinterpret_cast<void*>(GetProcAddress(atl.Get(), "AtlAxGetControl")));
    const auto advise = reinterpret_cast<HRESULT(WINAPI*)(IUnknown*, IUnknown*, const IID*, DWORD*)>(
        reinterpret_cast<void*>(GetProcAddress(atl.Get(), "AtlAdvise")));
    ASSERT_TRUE(init && getControl && advise && init());
    const HWND host = CreateWindowExW(0, L"AtlAxWin", L"BrevantisLib.Brevantis", WS_OVERLAPPEDWINDOW, 0, 0, 200, 100,
                                      nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(nullptr, host);
    {
      ComPtr<IUnknown> control;
      ASSERT_EQ(S_OK, getControl(host, control.Out()));
      Load(control.Get());  // the hosted control has its own store: it learns the folders too
      Owned<ErrorEventSink> sink;
      DWORD cookie = 0;
      ASSERT_EQ(S_OK, advise(control.Get(), sink.As<IUnknown>(), &DIID___Brevantis, &cookie));
      LocalHttpServer server(LocalHttpServer::Behaviour::Answer, "Brevantis online");
      ProbeSettings settings(server.Url());
      ComPtr<IDispatch> dispatch;
      ASSERT_EQ(S_OK, control->QueryInterface(IID_IDispatch, dispatch.OutVoid()));
      ASSERT_EQ(S_OK, DispatchClient(dispatch.Get()).Call(L"WebConnect", DISPATCH_METHOD, nullptr, 0, nullptr));
      ASSERT_EQ(1u, sink->events.size());
      EXPECT_EQ(200, sink->events[0].code);
      EXPECT_EQ(kNoBrowser, sink->events[0].text);
    }
    DestroyWindow(host);
  }
  OleUninitialize();
}

}  // namespace
