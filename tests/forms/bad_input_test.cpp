// The screens with what a careless host may put into the control: odd
// pictures, megabyte strings, and many shows in a row, which must leave no
// GDI object behind.
#include <windows.h>

#include "com/text.h"
#include "form_probe.h"
#include "forms/forms.h"
#include "forms/forms_resources.h"
#include "screens_fixture.h"
#include "testkit/process_counters.h"

using namespace brevantis;
using namespace brevantis::testing;

namespace {

const wchar_t kProgramForm[] = L"frmShowAbout";
const wchar_t kControlForm[] = L"frmabout";

class BadInput : public ScreensTest {
 protected:
  // Shows the splash (it stays: no interval), gives it to look, closes it.
  void WithSplash(const std::function<void(HWND)>& look) {
    store()[kSplashScreenInterval].number = 0;
    ASSERT_EQ(S_OK, ShowProgramSplashScreen());
    const HWND splash = FindForm(kProgramForm);
    ASSERT_NE(nullptr, splash);
    UpdateWindow(splash);
    look(splash);
    SendMessageW(splash, WM_CLOSE, 0, 0);
    EXPECT_FALSE(IsWindow(splash));
  }
};

TEST_F(BadInput, EmptyIconAndHugePicturesDraw) {
  const COLORREF face = GetSysColor(COLOR_BTNFACE);
  store()[kProgramPicture].picture = CreateEmptyPicture();
  store()[kProgramIcon].picture = IconPicture();
  store()[kCompanyLogo].picture = SolidPicture(6000, 4000, RGB(255, 0, 0));
  WithSplash([&](HWND splash) {
    EXPECT_EQ(face, DrawnPixel(splash, IDC_SHOWABOUT_IMAGE1, 5, 5)) << "empty: nothing drawn";
    EXPECT_NE(face, DrawnPixel(splash, IDC_SHOWABOUT_IMAGE3, 16, 16)) << "the icon";
    EXPECT_EQ(RGB(255, 0, 0), DrawnPixel(splash, IDC_SHOWABOUT_IMAGE2, 5, 5)) << "the huge bitmap, scaled down";
  });
  // A host may also set a picture to nothing at all.
  store()[kProgramIcon].picture.Reset();
  store()[kCompanyLogo].picture.Reset();
  WithSplash([&](HWND splash) {
    EXPECT_EQ(face, DrawnPixel(splash, IDC_SHOWABOUT_IMAGE3, 5, 5));
    EXPECT_EQ(face, DrawnPixel(splash, IDC_SHOWABOUT_IMAGE2, 5, 5));
  });
}

TEST_F(BadInput, MegabyteStringsShowAndTheirLinksWork) {
  ScopedPlatform scope(&platform_);
  platform_.connected = false;
  platform_.defaultAnswer = IDNO;
  std::wstring mega(1 << 20, L'x');
  for (size_t i = 7; i + 1 < mega.size(); i += 8) mega[i] = L' ';
  for (Prop p : {kProgramName, kAuthor1, kAuthor2, kAuthor3, kCopyrightFromDate, kCopyrightToDate, kCompanyName,
                 kWebSiteURL, kAboutWavSound, kVersion})
    store()[p].text = mega;
  size_t name = 0, author = 0, copyright = 0;
  std::wstring tip;
  FormVisitor visitor(kProgramForm, [&](HWND form) {
    name = ItemTextOf(form, IDC_SHOWABOUT_LABEL1).size();
    author = ItemTextOf(form, IDC_SHOWABOUT_LABEL2).size();
    copyright = ItemTextOf(form, IDC_SHOWABOUT_LABEL1 + 2).size();
    tip = ToolTipText(form, IDC_SHOWABOUT_IMAGE2);
    Click(form, IDC_SHOWABOUT_IMAGE2);
    Click(form, IDOK);
  });
  EXPECT_EQ(S_OK, ShowProgramAboutBox());
  EXPECT_TRUE(visitor.Join());
  EXPECT_EQ(mega.size(), name);
  EXPECT_EQ(50u, author);
  // Both years are the megabyte, trimmed of nothing, and differ from nothing.
  EXPECT_EQ(std::wstring(L"© Copyright ").size() + mega.size(), copyright);
  EXPECT_EQ(0u, tip.find(L"Visitate il Sito Web xxxxxxx xxxxxxx"));
  ASSERT_FALSE(platform_.sounds.empty());
  EXPECT_EQ(mega, platform_.sounds[0].path);
  EXPECT_GE(platform_.connectedStateCalls, 1) << "the logo tried the megabyte address";

  size_t version = 0;
  FormVisitor controlVisitor(kControlForm, [&](HWND form) {
    version = ItemTextOf(form, IDC_ABOUT_LABEL1 + 1).size();
    Click(form, IDOK);
  });
  EXPECT_EQ(S_OK, ShowControlAboutBox());
  EXPECT_TRUE(controlVisitor.Join());
  EXPECT_EQ(mega.size(), version);
}

TEST_F(BadInput, AHundredShowsLeaveNothingBehind) {
  const std::wstring logo = ModuleFolder() + L"Prglogo.bmp";
  WriteBitmapFile(logo, 64, 64, RGB(0, 0, 255));
  store()[kProgramPicture].picture = SolidPicture(300, 200, RGB(0, 128, 0));
  store()[kProgramIcon].picture = IconPicture();
  store()[kCompanyLogo].picture = SolidPicture(120, 40, RGB(255, 0, 0));
  store()[kSplashScreenInterval].number = 1;
  const auto showAll = [&] {
    ASSERT_EQ(S_OK, ShowProgramSplashScreen());
    EXPECT_TRUE(PumpUntil([&] { return FindForm(kProgramForm) == nullptr; }));
    FormVisitor about(kProgramForm, [](HWND form) {
      UpdateWindow(form);
      Click(form, IDOK);
    });
    ShowProgramAboutBox();
    about.Join();
    FormVisitor control(kControlForm, [](HWND form) {
      UpdateWindow(form);
      Click(form, IDOK);
    });
    ShowControlAboutBox();
    control.Join();
  };
  showAll();  // the system's own first-use objects (fonts, classes) come now

  // The count sees what this process makes.
  const DWORD before = GdiObjectCount();
  GdiObject probe(CreateSolidBrush(RGB(1, 2, 3)));
  ASSERT_EQ(before + 1, GdiObjectCount());
  probe.Reset();

  const DWORD handles = HandleCount();
  const size_t heap = HeapBytesInUse();
  for (int i = 0; i < 100; ++i) showAll();
  EXPECT_EQ(before, GdiObjectCount());
  EXPECT_EQ(handles, HandleCount());
  // A form, picture or string kept by each show would be far more than this.
  EXPECT_LE(HeapBytesInUse(), heap + 64 * 1024);
  DeleteFileW(logo.c_str());
}

}  // namespace
