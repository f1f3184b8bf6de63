// Bad input through the registered control's COM interfaces, as a careless
// host or script would give it: each case gets its outcome, and the process
// stays healthy afterwards.
#include <gtest/gtest.h>

#include <atomic>
#include <cfloat>
#include <thread>
#include <vector>
#include <climits>
#include <string>

#include "BrevantisLib_h.h"
#include "com/raii.h"
#include "testkit/dispatch_client.h"
#include "testkit/local_http_server.h"
#include "testkit/message_box_watcher.h"
#include "testkit/process_counters.h"
#include "testkit/test_container.h"
#include "web_test_support.h"

using namespace brevantis;
using namespace brevantis::testing;

namespace {

VARIANT Double(double value) {
  VARIANT v;
  VariantInit(&v);
  V_VT(&v) = VT_R8;
  V_R8(&v) = value;
  return v;
}

VARIANT Long(LONG value) {
  VARIANT v;
  VariantInit(&v);
  V_VT(&v) = VT_I4;
  V_I4(&v) = value;
  return v;
}

class BadInput : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(SUCCEEDED(OleInitialize(nullptr)));
    ASSERT_EQ(S_OK, control_.Create(L"BrevantisLib.Brevantis"));
  }
  void TearDown() override {
    // Still healthy: a new object answers.
    DispatchClient fresh;
    EXPECT_EQ(S_OK, fresh.Create(L"BrevantisLib.Brevantis"));
    EXPECT_EQ(L"Pellandra", fresh.GetString(L"DefaultProgramFolder"));
    control_ = DispatchClient();
    fresh = DispatchClient();
    OleUninitialize();
  }

  // Loads the control as a saved form would (it learns this machine's folders).
  void Load() {
    ComPtr<IPersistPropertyBag> persist;
    ASSERT_EQ(S_OK, control_.Get()->QueryInterface(IID_IPersistPropertyBag, persist.OutVoid()));
    Owned<TestPropertyBag> bag;
    ASSERT_EQ(S_OK, persist->Load(bag.As<IPropertyBag>(), nullptr));
  }

  SCODE Error(HRESULT hr, EXCEPINFO& info) {
    SysFreeString(info.bstrSource);
    SysFreeString(info.bstrDescription);
    SysFreeString(info.bstrHelpFile);
    return hr == DISP_E_EXCEPTION ? info.scode : hr;
  }

  DispatchClient control_;
};

TEST_F(BadInput, NumbersTakeOnlyWhatConvertsToALong) {
  for (const wchar_t* name : {L"ProgramMajor", L"ProgramMinor", L"ProgramRevision", L"SplashScreenInterval"}) {
    SCOPED_TRACE(name);
    ASSERT_EQ(S_OK, control_.Put(name, Long(7)));
    EXPECT_EQ(DISP_E_OVERFLOW, control_.Put(name, Double(1e300)));
    EXPECT_EQ(DISP_E_OVERFLOW, control_.Put(name, Double(-1e300)));
    EXPECT_EQ(DISP_E_TYPEMISMATCH, control_.PutString(name, L"abc"));
    EXPECT_EQ(L"7", control_.GetString(name));
    ASSERT_EQ(S_OK, control_.PutString(name, L" 42 "));
    EXPECT_EQ(L"42", control_.GetString(name));
    ASSERT_EQ(S_OK, control_.Put(name, Double(2.5)));  // rounded half to even, as hosts do
    EXPECT_EQ(L"2", control_.GetString(name));
    for (LONG extreme : {LONG_MIN, LONG_MAX, -1L}) {
      ASSERT_EQ(S_OK, control_.Put(name, Long(extreme)));
      EXPECT_EQ(std::to_wstring(extreme), control_.GetString(name));
    }
  }
  // A read-only property refuses a value that does not even convert.
  EXPECT_EQ(DISP_E_TYPEMISMATCH, control_.PutString(L"IsWindowsNT", L"abc"));
  EXPECT_EQ(L"False", control_.GetString(L"IsWindowsNT"));
}

TEST_F(BadInput, AMissingTemporaryFolderFailsWebConnectWithAFileError) {
  ScratchFolder scratch;
  SetCurrentDirectoryW(scratch.Path().c_str());
  const std::wstring missing = scratch.Path() + L"\\gone";
  SetEnvironmentVariableW(L"TMP", missing.c_str());
  SetEnvironmentVariableW(L"TEMP", missing.c_str());
  Load();
  EXPECT_EQ(missing, control_.GetString(L"WinTempDir"));

  LocalHttpServer server(LocalHttpServer::Behaviour::Answer, "Brevantis online");
  ProbeSettings settings(server.Url());
  EXCEPINFO info = {};
  EXPECT_EQ(static_cast<SCODE>(0x800A004C),  // 76, path not found
            Error(control_.Call(L"WebConnect", DISPATCH_METHOD, nullptr, 0, nullptr, &info), info));

  // OpenCD looks for the page before any browser: with no CD it asks for one.
  MessageBoxWatcher watcher(L"Catalogo Ostrel Edizioni su CD");
  EXPECT_EQ(S_OK, control_.Call(L"OpenCD", DISPATCH_METHOD, nullptr, 0, nullptr));
  EXPECT_EQ((std::vector<std::wstring>{L"Inserire il CD di  nel lettore CD-ROM."}), watcher.Texts());
}

TEST_F(BadInput, TenThousandFormsLeaveNothingBehind) {
  auto cycle = [] {
    ComPtr<IPersistPropertyBag> control;
    ASSERT_EQ(S_OK, CoCreateInstance(CLSID_Brevantis, nullptr, CLSCTX_INPROC_SERVER, IID_IPersistPropertyBag,
                                     control.OutVoid()));
    ASSERT_EQ(S_OK, control->InitNew());
    Owned<TestPropertyBag> saved, loaded;
    loaded->SetText(L"ProgramName", L"Atlante");
    loaded->SetText(L"CompanyName", L"Editrice");
    ASSERT_EQ(S_OK, control->Load(loaded.As<IPropertyBag>(), nullptr));
    ASSERT_EQ(S_OK, control->Save(saved.As<IPropertyBag>(), TRUE, FALSE));
    ASSERT_TRUE(saved->Has(L"Version"));
  };
  for (int i = 0; i < 100; ++i) cycle();  // warm-up: libraries, caches
  const DWORD handles = HandleCount(), gdi = GdiObjectCount();
  const size_t heap = HeapBytesInUse();
  for (int i = 0; i < 10000; ++i) cycle();
  EXPECT_EQ(handles, HandleCount());
  EXPECT_EQ(gdi, GdiObjectCount());
  // A few hundred bytes kept by each cycle would be megabytes.
  EXPECT_LE(HeapBytesInUse(), heap + 64 * 1024);
}

// Closes the control's forms of this process as they appear, as a user would.
class FormCloser {
 public:
  FormCloser() : thread_([this] {
    while (!stop_) {
      for (const wchar_t* form : {L"frmabout", L"frmShowAbout"}) {
        HWND window = nullptr;
        while ((window = FindWindowExW(nullptr, window, form, nullptr)) != nullptr) {
          DWORD process = 0;
          GetWindowThreadProcessId(window, &process);
          if (process == GetCurrentProcessId() && IsWindowVisible(window)) {
            closed_.push_back(form);
            PostMessageW(window, WM_CLOSE, 0, 0);
            Sleep(200);
          }
        }
      }
      Sleep(20);
    }
  }) {}
  ~FormCloser() {
    stop_ = true;
    thread_.join();
  }
  size_t Closed() const { return closed_.size(); }

 private:
  std::atomic<bool> stop_{false};
  std::vector<std::wstring> closed_;
  std::thread thread_;
};

TEST_F(BadInput, EveryMethodWorksOnAControlNeverInitialisedOrLoaded) {
  ScratchFolder scratch;
  SetCurrentDirectoryW(scratch.Path().c_str());  // a probe file of an unknown folder lands here
  FormCloser closer;
  MessageBoxWatcher assistant(L"Connessione ad Internet");
  MessageBoxWatcher catalogue(L"Catalogo Ostrel Edizioni su CD");
  for (const wchar_t* method : {L"About", L"ShowAbout", L"ShowSplashScreen", L"WebConnect", L"OpenCD"}) {
    SCOPED_TRACE(method);
    EXPECT_EQ(S_OK, control_.Call(method, DISPATCH_METHOD, nullptr, 0, nullptr));
  }
  // The splash closes on its timer, which this thread's messages deliver.
  for (int i = 0; i < 300; ++i) {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    Sleep(10);
  }
  EXPECT_GE(closer.Closed(), 2u);  // the two modal about boxes
  EXPECT_EQ(1u, catalogue.Texts().size());
}

#ifndef _WIN64
// The shipped control keeps C++ exceptions so that running out of memory is
// an automation error for the host, not a crash. The test fills the address
// space with reservations (no memory is committed) until the control cannot
// copy a long name, then gives it back; the control goes on working. Only a
// 32-bit process can be filled: Wine keeps a byte per reserved page.
TEST_F(BadInput, RunningOutOfMemoryIsAnErrorNotACrash) {
  ComPtr<_Brevantis> control;
  ASSERT_EQ(S_OK, control_.Get()->QueryInterface(IID__Brevantis, control.OutVoid()));
  const Bstr name(std::wstring(8 << 20, L'n').c_str());
  std::vector<void*> reserved;
  for (SIZE_T size = SIZE_T(1) << 30; size >= 0x10000; size /= 2) {
    while (void* block = VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS)) reserved.push_back(block);
  }
  const HRESULT full = control->put_Author1(name.Get());
  for (void* block : reserved) VirtualFree(block, 0, MEM_RELEASE);
  EXPECT_EQ(E_OUTOFMEMORY, full);
  ASSERT_EQ(S_OK, control->put_Author1(name.Get()));
  EXPECT_EQ(name.Length(), control_.GetString(L"Author1").size());
}
#endif

}  // namespace
