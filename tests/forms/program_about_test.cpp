// frmShowAbout as the host's users see it: the about box (modal, answered
// from a thread of the test's own) and the splash screen (modeless, on the
// test's thread), read from the real windows.
#include <windows.h>
#include <mmsystem.h>

#include "com/text.h"
#include "form_probe.h"
#include "forms/forms.h"
#include "forms/forms_resources.h"
#include "screens_fixture.h"

using namespace brevantis;
using namespace brevantis::testing;

namespace {

constexpr int kLabel1 = IDC_SHOWABOUT_LABEL1;
const wchar_t kForm[] = L"frmShowAbout";

std::wstring Year() {
  SYSTEMTIME now;
  GetLocalTime(&now);
  return std::to_wstring(now.wYear);
}

// Everything the about box shows, as a thread of the test read it.
struct Shown {
  std::wstring caption, name, version, copyright, notice, tip;
  std::wstring authors[3];
  bool buttons = false;
  bool centred = false;
};

Shown Read(HWND form) {
  Shown shown;
  shown.caption = TextOf(form);
  shown.name = ItemTextOf(form, kLabel1 + 0);
  shown.version = ItemTextOf(form, kLabel1 + 1);
  shown.copyright = ItemTextOf(form, kLabel1 + 2);
  shown.notice = ItemTextOf(form, kLabel1 + 3);
  for (int i = 0; i < 3; ++i) shown.authors[i] = ItemTextOf(form, IDC_SHOWABOUT_LABEL2 + i);
  shown.tip = ToolTipText(form, IDC_SHOWABOUT_IMAGE2);
  shown.centred = IsCentred(form);
  shown.buttons = IsWindowVisible(GetDlgItem(form, IDOK)) && IsWindowVisible(GetDlgItem(form, IDC_SHOWABOUT_SYSINFO));
  return shown;
}

class ProgramAbout : public ScreensTest {
 protected:
  // Shows the about box, reads it and closes it with Ok.
  Shown ShowAndRead() {
    Shown shown;
    FormVisitor visitor(kForm, [&](HWND form) {
      shown = Read(form);
      Click(form, IDOK);
    });
    EXPECT_EQ(S_OK, ShowProgramAboutBox());
    EXPECT_TRUE(visitor.Join());
    EXPECT_EQ(nullptr, FindForm(kForm)) << "closed by Ok";
    return shown;
  }
};

TEST_F(ProgramAbout, ShowsTheProgramFromTheStore) {
  store()[kAuthor1].text = std::wstring(50, L'a');
  store()[kAuthor2].text = std::wstring(50, L'b') + L'c';
  store()[kProgramMajor].number = 2;
  store()[kProgramMinor].number = 123;
  store()[kProgramRevision].number = 7;
  store()[kCompanyName].text = L"Ostrel Edizioni";
  const Shown shown = ShowAndRead();
  EXPECT_EQ(L"Informazioni su Atlante Stradale", shown.caption);
  EXPECT_EQ(L"Atlante Stradale", shown.name);
  EXPECT_EQ(std::wstring(50, L'a'), shown.authors[0]);
  EXPECT_EQ(std::wstring(50, L'b'), shown.authors[1]);
  EXPECT_EQ(L"Elena Conti", shown.authors[2]);
  EXPECT_EQ(L"Versione: 2.123.0007", shown.version);
  EXPECT_EQ(L"Questo programma è tutelato dalle leggi sul copyright, dalle leggi sul diritto di autore e dalle "
            L"disposizioni internazionali nonchè dal D.P.R. n. 518 del 29.12.1992. La riproduzione o distribuzione "
            L"non autorizzata di questo programma, o di parte di esso, sarà perseguita penalmente e civilmente.",
            shown.notice);
  EXPECT_EQ(L"Visitate il Sito Web Ostrel Edizioni", shown.tip);
  EXPECT_TRUE(shown.buttons);
  EXPECT_TRUE(shown.centred);
  EXPECT_EQ(51u, store()[kAuthor2].text.size()) << "only the label is cut";
}

TEST_F(ProgramAbout, CopyrightYearsAreTrimmedCompletedAndKept) {
  struct Case {
    const wchar_t* from;
    const wchar_t* to;
    std::wstring line, fromAfter, toAfter;
  } cases[] = {
      {L"  2004  ", L"2004", L"© Copyright 2004", L"2004", L"2004"},
      {L"2004", L"", L"© Copyright 2004 - " + Year(), L"2004", Year()},
      {L"", L" ", L"© Copyright " + Year(), Year(), Year()},
      {L"2005", L"2007", L"© Copyright 2005 - 2007", L"2005", L"2007"},
  };
  for (const Case& c : cases) {
    store()[kCopyrightFromDate].text = c.from;
    store()[kCopyrightToDate].text = c.to;
    EXPECT_EQ(c.line, ShowAndRead().copyright);
    EXPECT_EQ(c.fromAfter, store()[kCopyrightFromDate].text);
    EXPECT_EQ(c.toAfter, store()[kCopyrightToDate].text);
  }
}

TEST_F(ProgramAbout, OkEscAndTheCloseBoxCloseIt) {
  const std::function<void(HWND)> closers[] = {
      [](HWND form) { Click(form, IDOK); },
      [](HWND form) { PostMessageW(form, WM_KEYDOWN, VK_ESCAPE, 0); },
      [](HWND form) { PostMessageW(form, WM_SYSCOMMAND, SC_CLOSE, 0); },
  };
  for (const auto& close : closers) {
    FormVisitor visitor(kForm, close);
    EXPECT_EQ(S_OK, ShowProgramAboutBox());
    EXPECT_TRUE(visitor.Join());
    EXPECT_EQ(nullptr, FindForm(kForm, true));
    EXPECT_EQ(nullptr, FindForm(kForm, false)) << "unloaded, not hidden";
  }
}

TEST_F(ProgramAbout, PlaysTheSoundEachTimeItIsActivatedNeverInTheSplash) {
  ScopedPlatform scope(&platform_);
  store()[kAboutWavSound].text = L"  ";  // blanks are a name like any other
  FormVisitor visitor(kForm, [](HWND form) {
    SendMessageW(form, WM_ACTIVATE, WA_INACTIVE, 0);
    SendMessageW(form, WM_ACTIVATE, WA_CLICKACTIVE, 0);
    SendMessageW(form, WM_ACTIVATE, WA_ACTIVE, 0);
    Click(form, IDOK);
  });
  ShowProgramAboutBox();
  visitor.Join();
  ASSERT_EQ(3u, platform_.sounds.size()) << "shown, then activated twice";
  for (const auto& sound : platform_.sounds) {
    EXPECT_EQ(L"  ", sound.path);
    EXPECT_EQ(static_cast<UINT>(SND_ASYNC | SND_NODEFAULT), sound.flags);
  }

  platform_.sounds.clear();
  store()[kSplashScreenInterval].number = 0;
  ASSERT_EQ(S_OK, ShowProgramSplashScreen());
  const HWND splash = FindForm(kForm);
  ASSERT_NE(nullptr, splash);
  SendMessageW(splash, WM_ACTIVATE, WA_ACTIVE, 0);
  SendMessageW(splash, WM_CLOSE, 0, 0);
  EXPECT_TRUE(platform_.sounds.empty());

  // Nothing, or a sound on a share: silence.
  platform_.driveTypes[L"R:\\"] = DRIVE_REMOTE;
  for (const wchar_t* remote : {L"", L"\\\\server\\share\\ciao.wav", L"//server/share/ciao.wav", L"R:\\ciao.wav"}) {
    store()[kAboutWavSound].text = remote;
    FormVisitor silent(kForm, [](HWND form) { Click(form, IDOK); });
    ShowProgramAboutBox();
    silent.Join();
    EXPECT_TRUE(platform_.sounds.empty()) << ToAnsi(remote);
  }
  store()[kAboutWavSound].text = L"C:\\suoni\\ciao.wav";
  FormVisitor local(kForm, [](HWND form) { Click(form, IDOK); });
  ShowProgramAboutBox();
  local.Join();
  ASSERT_EQ(1u, platform_.sounds.size());
  EXPECT_EQ(L"C:\\suoni\\ciao.wav", platform_.sounds[0].path);
}

TEST_F(ProgramAbout, TheLogoOpensWebSiteURLUntrimmedUnlessBlank) {
  ScopedPlatform scope(&platform_);
  OnlineWithBrowser online(platform_);
  for (const wchar_t* url : {L"", L"   ", L" http://www.example.com/atlante "}) {
    store()[kWebSiteURL].text = url;
    FormVisitor visitor(kForm, [](HWND form) {
      Click(form, IDC_SHOWABOUT_IMAGE2);
      Click(form, IDOK);
    });
    ShowProgramAboutBox();
    visitor.Join();
  }
  EXPECT_EQ(1, platform_.connectedStateCalls) << "blank addresses ask nothing";
  ASSERT_EQ(1u, platform_.processes.size());
  EXPECT_EQ(L"C:\\B\\b.exe  http://www.example.com/atlante ", platform_.processes[0].commandLine);
  EXPECT_EQ(SW_SHOWNORMAL, platform_.processes[0].showCommand);
}

TEST_F(ProgramAbout, TheLogoFileBesideTheLibraryReplacesTheProgramPicture) {
  const std::wstring logo = ModuleFolder() + L"Prglogo.bmp";
  store()[kProgramPicture].picture = SolidPicture(40, 40, RGB(255, 0, 0));
  store()[kSplashScreenInterval].number = 0;
  const auto drawnPicture = [&] {
    EXPECT_EQ(S_OK, ShowProgramSplashScreen());
    const HWND splash = FindForm(kForm);
    const COLORREF pixel = splash ? DrawnPixel(splash, IDC_SHOWABOUT_IMAGE1, 5, 5) : CLR_INVALID;
    if (splash) SendMessageW(splash, WM_CLOSE, 0, 0);
    return pixel;
  };
  DeleteFileW(logo.c_str());
  EXPECT_EQ(RGB(255, 0, 0), drawnPicture()) << "no file";
  WriteBitmapFile(logo, 20, 20, RGB(0, 0, 255));
  EXPECT_EQ(RGB(0, 0, 255), drawnPicture()) << "a bitmap";
  WriteTextFile(logo, "not a picture at all");
  EXPECT_EQ(RGB(255, 0, 0), drawnPicture()) << "not a picture";
  WriteTextFile(logo, "");
  EXPECT_EQ(RGB(255, 0, 0), drawnPicture()) << "empty";
  DeleteFileW(logo.c_str());
}

TEST_F(ProgramAbout, TheSplashHasNoButtonsAndClosesOnItsTimer) {
  store()[kSplashScreenInterval].number = 300;
  ASSERT_EQ(S_OK, ShowProgramSplashScreen());
  const HWND splash = FindForm(kForm);
  ASSERT_NE(nullptr, splash);
  const Shown shown = Read(splash);
  EXPECT_EQ(L"Form1", shown.caption);
  EXPECT_EQ(L"Atlante Stradale", shown.name);
  EXPECT_FALSE(IsWindowVisible(GetDlgItem(splash, IDOK)));
  EXPECT_FALSE(IsWindowVisible(GetDlgItem(splash, IDC_SHOWABOUT_SYSINFO)));
  // The control's about box is loaded, hidden, with its caption emptied.
  const HWND controlAbout = FindForm(L"frmabout", false);
  ASSERT_NE(nullptr, controlAbout);
  EXPECT_EQ(L"", TextOf(controlAbout));

  EXPECT_EQ(S_OK, ShowProgramAboutBox()) << "ignored while the splash is up";
  EXPECT_EQ(S_OK, ShowProgramSplashScreen()) << "ignored while the splash is up";
  EXPECT_EQ(L"Form1", TextOf(splash));
  EXPECT_TRUE(PumpUntil([&] { return !IsWindow(splash); })) << "closed by Timer1";
  EXPECT_EQ(controlAbout, FindForm(L"frmabout", false)) << "stays loaded";

  ASSERT_EQ(S_OK, ShowProgramSplashScreen()) << "a new splash after the last one closed";
  EXPECT_TRUE(PumpUntil([&] { return FindForm(kForm) == nullptr; }));
}

TEST_F(ProgramAbout, ASplashWithoutIntervalStaysUntilClosed) {
  for (LONG interval : {0L, -1000L}) {
    store()[kSplashScreenInterval].number = interval;
    ASSERT_EQ(S_OK, ShowProgramSplashScreen());
    const HWND splash = FindForm(kForm);
    ASSERT_NE(nullptr, splash);
    PumpFor(700);
    EXPECT_TRUE(IsWindowVisible(splash)) << interval;
    PostMessageW(splash, WM_SYSCOMMAND, SC_CLOSE, 0);
    EXPECT_TRUE(PumpUntil([&] { return !IsWindow(splash); })) << "the close box closes it";
  }
}

}  // namespace
