// The screens as a host reaches them: the registered Brevantis.ocx created by
// its ProgID, filled and called late-bound, its forms on the real system.
#include <windows.h>

#include "form_probe.h"
#include "forms/forms_resources.h"
#include "model/environment.h"
#include "screens_fixture.h"
#include "testkit/dispatch_client.h"
#include "testkit/test_container.h"

using namespace brevantis;
using namespace brevantis::testing;

namespace {

class ThroughCom : public ScreensTest {
 protected:
  void SetUp() override {
    ScreensTest::SetUp();
    ASSERT_EQ(S_OK, control_.Create(L"BrevantisLib.Brevantis"));
  }
  void TearDown() override {
    control_ = DispatchClient();
    ScreensTest::TearDown();
  }

  HRESULT Call(const wchar_t* method) { return control_.Call(method, DISPATCH_METHOD, nullptr, 0, nullptr); }
  void Put(const wchar_t* name, LONG value) {
    VARIANT v;
    VariantInit(&v);
    V_VT(&v) = VT_I4;
    V_I4(&v) = value;
    ASSERT_EQ(S_OK, control_.Put(name, v));
  }

  DispatchClient control_;
};

TEST_F(ThroughCom, ShowAboutShowsWhatTheHostSet) {
  ASSERT_EQ(S_OK, control_.PutString(L"ProgramName", L"Dizionario dei Comuni"));
  ASSERT_EQ(S_OK, control_.PutString(L"Author1", L"Paola Neri"));
  ASSERT_EQ(S_OK, control_.PutString(L"CopyrightFromDate", L" 1999 "));
  ASSERT_EQ(S_OK, control_.PutString(L"CopyrightToDate", L"2003"));
  Put(L"ProgramMajor", 3);
  std::wstring caption, author, copyright;
  FormVisitor visitor(L"frmShowAbout", [&](HWND form) {
    caption = TextOf(form);
    author = ItemTextOf(form, IDC_SHOWABOUT_LABEL2);
    copyright = ItemTextOf(form, IDC_SHOWABOUT_LABEL1 + 2);
    PostMessageW(form, WM_KEYDOWN, VK_ESCAPE, 0);
  });
  EXPECT_EQ(S_OK, Call(L"ShowAbout"));
  EXPECT_TRUE(visitor.Join());
  EXPECT_EQ(L"Informazioni su Dizionario dei Comuni", caption);
  EXPECT_EQ(L"Paola Neri", author);
  EXPECT_EQ(L"© Copyright 1999 - 2003", copyright);
  EXPECT_EQ(L"1999", control_.GetString(L"CopyrightFromDate")) << "written back, trimmed";
}

TEST_F(ThroughCom, AboutShowsTheVersionOfTheLoadedControl) {
  // A property load gives the control its version.
  Owned<TestPropertyBag> bag;
  ComPtr<IPersistPropertyBag> persist;
  ASSERT_EQ(S_OK, control_.Get()->QueryInterface(IID_IPersistPropertyBag, persist.OutVoid()));
  ASSERT_EQ(S_OK, persist->Load(bag.As<IPropertyBag>(), nullptr));
  std::wstring version;
  FormVisitor visitor(L"frmabout", [&](HWND form) {
    version = ItemTextOf(form, IDC_ABOUT_LABEL1 + 1);
    Click(form, IDOK);
  });
  EXPECT_EQ(S_OK, Call(L"About"));
  EXPECT_TRUE(visitor.Join());
  EXPECT_EQ(ControlVersionString(), version);
}

TEST_F(ThroughCom, TheSplashClosesByItselfInTheHostsLoop) {
  // Long enough to find the splash up under a loaded emulator.
  Put(L"SplashScreenInterval", 3000);
  ASSERT_EQ(S_OK, Call(L"ShowSplashScreen"));
  const HWND splash = FindForm(L"frmShowAbout");
  ASSERT_NE(nullptr, splash);
  EXPECT_EQ(L"Form1", TextOf(splash));
  EXPECT_TRUE(PumpUntil([&] { return !IsWindow(splash); }));
}

}  // namespace
