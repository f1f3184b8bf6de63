// The information screens as real windows: frmShowAbout (program about box, splash), frmabout (the control's own).
#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include "com/module.h"
#include "control/facts.h"
#include "forms/forms_resources.h"
#include "forms/maker.h"
#include "forms/screens.h"
#include "model/environment.h"
#include "testkit/dispatch_client.h"
#include "testkit/local_http_server.h"
#include "testkit/recording_platform.h"
#include "testkit/test_container.h"
#include "test_paths.h"
#include "web_test_support.h"

#include <commctrl.h>  // after windows.h
#include <mmsystem.h>
#include <olectl.h>

using namespace brevantis;
using namespace brevantis::testing;

namespace {

const wchar_t kProgramForm[] = L"frmShowAbout", kControlForm[] = L"frmabout";
constexpr int kLabel1 = IDC_SHOWABOUT_LABEL1, kAbout1 = IDC_ABOUT_LABEL1, kWeb = kAbout1 + 7, kMail = kAbout1 + 8;
const COLORREF kRed = RGB(255, 0, 0), kFace = GetSysColor(COLOR_BTNFACE);

std::wstring Year() { SYSTEMTIME now; GetLocalTime(&now); return std::to_wstring(now.wYear); }
// The publisher's picture file, beside the library that holds the forms.
std::wstring LogoFile() { return ThisModulePath().substr(0, ThisModulePath().rfind(L'\\')) + L"\\Prglogo.bmp"; }

HWND FindForm(const wchar_t* className, bool visible = true) {
  HWND w = nullptr;
  while ((w = FindWindowExW(nullptr, w, className, nullptr)) && (IsWindowVisible(w) != FALSE) != visible) {}
  return w;
}

// The text of element id of form; with no id, the form's caption.
std::wstring Text(HWND form, int id = 0) {
  std::wstring text(4 << 20, L'\0');
  return text.substr(0, GetWindowTextW(id ? GetDlgItem(form, id) : form, &text[0], static_cast<int>(text.size())));
}

bool IsCentred(HWND window) {
  RECT r;
  return GetWindowRect(window, &r) && abs(r.left + r.right - GetSystemMetrics(SM_CXSCREEN)) <= 1 &&
         abs(r.top + r.bottom - GetSystemMetrics(SM_CYSCREEN)) <= 1;
}

void Click(HWND f, int id) { for (UINT m : {WM_LBUTTONDOWN, WM_LBUTTONUP}) PostMessageW(GetDlgItem(f, id), m, 0, 0); }
void Ok(HWND form) { Click(form, IDOK); }
void Esc(HWND form) { PostMessageW(form, WM_KEYDOWN, VK_ESCAPE, 0); }
void CloseBox(HWND form) { PostMessageW(form, WM_SYSCOMMAND, SC_CLOSE, 0); }

// Runs this thread's messages until done() holds; a busy machine gets 30 s.
bool PumpUntil(const std::function<bool()>& done) {
  for (DWORD start = GetTickCount(); !done() && GetTickCount() - start < 30000;) {
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
    for (MSG m; PeekMessageW(&m, nullptr, 0, 0, PM_REMOVE);) DispatchMessageW(&m);
  }
  return done();
}

// Runs show (a modal form of cls) while a thread hands the form to visit to read and close; else WM_QUIT.
HRESULT WhileShown(const wchar_t* cls, const std::function<HRESULT()>& show, const std::function<void(HWND)>& visit) {
  HWND form = nullptr;
  std::thread visitor([&, creator = GetCurrentThreadId()] {
    for (int i = 0; i < 1500 && !(form = FindForm(cls)); ++i) Sleep(20);
    form ? visit(form) : void(PostThreadMessageW(creator, WM_QUIT, 0, 0));
  });
  const HRESULT hr = show();
  visitor.join();
  EXPECT_TRUE(form && !IsWindow(form)) << "shown, closed and unloaded";
  return hr;
}

COLORREF Pixel(HWND form, int id, int x, int y) {
  RedrawWindow(form, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);  // in order, now
  const HDC dc = GetDC(GetDlgItem(form, id));
  const COLORREF pixel = GetPixel(dc, x, y);
  return ReleaseDC(GetDlgItem(form, id), dc), pixel;
}

ComPtr<IPictureDisp> RedPicture(int width, int height) {
  const std::vector<DWORD> bits(static_cast<size_t>(width) * height, 0xFF0000);
  PICTDESC desc = {sizeof(desc), PICTYPE_BITMAP, {{CreateBitmap(width, height, 1, 32, bits.data()), nullptr}}};
  ComPtr<IPictureDisp> picture;
  EXPECT_EQ(S_OK, OleCreatePictureIndirect(&desc, IID_IPictureDisp, TRUE, picture.OutVoid()));
  return picture;
}

void SetValue(HKEY root, const char* key, const char* name, const std::string& value) {
  RegSetKeyValueA(root, key, name, REG_SZ, value.c_str(), static_cast<DWORD>(value.size() + 1));
}

class Screens : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(S_OK, OleInitialize(nullptr));
    SetPlatform(&platform);
  }
  void TearDown() override {
    EXPECT_EQ(std::vector<std::wstring>{}, platform.unexpected);
    SetPlatform(nullptr);
    CurrentScreens() = ThreadScreens();  // forms first, while OLE still holds their pictures
    CurrentStore().Initialise();
    OleUninitialize();
  }
  static HRESULT ShowAbout() { return ShowProgramAboutBox(ProgramFactsOf(CurrentStore())); }
  static HRESULT ShowSplash() { return ShowProgramSplashScreen(ProgramFactsOf(CurrentStore())); }
  static HRESULT About() { return ShowControlAboutBox(CurrentStore()[kVersion].text, WebFactsOf(CurrentStore())); }

  RecordingPlatform platform;  // each test names the calls it expects
  const std::wstring mega = std::wstring(1 << 20, L'x');
};

// Copyright years trimmed, completed and kept; the sound of a local file on each activation; closed three ways.
TEST_F(Screens, TheProgramAboutBoxShowsTheStoreCentredWithItsSound) {
  platform.expected = RecordingPlatform::kSound | RecordingPlatform::kDrives;
  platform.driveTypes[L"R:\\"] = DRIVE_REMOTE;
  const std::wstring a = L"Atlante", y = Year(), line = L"© Copyright " + y, kept = y + L"|" + y;
  const struct { std::wstring name, from, to, line, kept, sound; size_t plays; void (*close)(HWND); } rows[] = {
      {a, L"  2004  ", L"2004", L"© Copyright 2004", L"2004|2004", L" \\ciao.wav", 3, Ok},
      {a, L"2004", L"", L"© Copyright 2004 - " + y, L"2004|" + y, L"C:\\suoni\\ciao.wav", 3, Esc},
      {mega, mega, mega, L"© Copyright " + mega, mega + L"|" + mega, mega, 3, Ok},
      {a, L"", L" ", line, kept, L"", 0, CloseBox}, {a, L"", L"", line, kept, L"\\\\server\\share\\ciao.wav", 0, Ok},
      {a, L"", L"", line, kept, L"//server/share/ciao.wav", 0, Ok}, {a, L"", L"", line, kept, L"R:\\ciao.wav", 0, Ok}};
  Store& store = CurrentStore();
  store[kProgramMajor].number = 2, store[kProgramMinor].number = 123, store[kProgramRevision].number = 7;
  store[kAuthor2].text = L"Marco", store[kAuthor3].text = L"Elena";
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    store[kProgramName].text = store[kAuthor1].text = row.name, store[kAboutWavSound].text = row.sound;
    store[kCopyrightFromDate].text = row.from, store[kCopyrightToDate].text = row.to;
    platform.sounds.clear();
    std::vector<std::wstring> shown;
    EXPECT_EQ(S_OK, WhileShown(kProgramForm, ShowAbout, [&](HWND form) {
      shown = {Text(form), Text(form, kLabel1), Text(form, IDC_SHOWABOUT_LABEL2), Text(form, IDC_SHOWABOUT_LABEL3),
               Text(form, IDC_SHOWABOUT_LABEL4), Text(form, kLabel1 + 1), Text(form, kLabel1 + 2),
               IsCentred(form) ? L"centred" : L"", IsWindowVisible(GetDlgItem(form, IDOK)) ? L"buttons" : L"",
               SendMessageW(FindForm(TOOLTIPS_CLASSW, false), TTM_GETTOOLCOUNT, 0, 0) ? L"tip" : L""};
      for (WPARAM state : {WA_INACTIVE, WA_CLICKACTIVE, WA_ACTIVE}) SendMessageW(form, WM_ACTIVATE, state, 0);
      row.close(form);
    }));
    EXPECT_EQ((std::vector<std::wstring>{L"Informazioni su " + row.name, row.name, row.name.substr(0, 50), L"Marco",
                                         L"Elena", L"Versione: 2.123.0007", row.line, L"centred", L"buttons", L"tip"}),
              shown);
    EXPECT_EQ(row.kept, store[kCopyrightFromDate].text + L"|" + store[kCopyrightToDate].text);
    EXPECT_LE(platform.sounds.size() - row.plays, row.plays ? 1u : 0u) << "shown (maybe twice), then activated twice";
    for (const auto& s : platform.sounds) EXPECT_TRUE(s.path == row.sound && s.flags == (SND_ASYNC | SND_NODEFAULT));
  }
}

// Shown once the host's pending messages (a key pressed) ran, centred, silent, without buttons; closed by its timer
// or, with no interval, by the close box. Pictures drawn at their size or fitted; a logo file replaces the program's.
TEST_F(Screens, TheSplashShowsThePicturesAndClosesOnItsTimerOnly) {
  platform.expected = RecordingPlatform::kSound | RecordingPlatform::kDrives;
  CurrentStore()[kAboutWavSound].text = L"C:\\suoni\\ciao.wav";
  const ComPtr<IPictureDisp> small = RedPicture(8, 8);
  CurrentStore()[kProgramIcon].picture = small;
  CurrentStore()[kCompanyLogo].picture = RedPicture(3000, 20);  // wider than its box only
  const struct { LONG interval; std::string file; ComPtr<IPictureDisp> picture; COLORREF drawn; } rows[] = {
      {300, "none", small, kRed}, {0, "none", CreateEmptyPicture(), kFace}, {-1, "bitmap", small, RGB(192, 192, 192)},
      {0, "not a picture", small, kRed}, {0, "", small, kRed}};
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    CurrentStore()[kSplashScreenInterval].number = row.interval;
    CurrentStore()[kProgramPicture].picture = row.picture;
    if (row.file == "bitmap") CopyFileW(BREVANTIS_TESTS_DIR L"\\..\\forms\\about_emblem.bmp", LogoFile().c_str(), 0);
    else if (row.file != "none") WriteTextFile(LogoFile(), row.file);
    const HWND edit = CreateWindowExW(0, L"EDIT", L"", WS_POPUP, 0, 0, 80, 20, nullptr, nullptr, nullptr, nullptr);
    PostMessageW(edit, WM_KEYDOWN, 'A', MAKELPARAM(1, MapVirtualKeyW('A', MAPVK_VK_TO_VSC)));
    ASSERT_EQ(S_OK, ShowSplash());
    EXPECT_EQ(1, GetWindowTextLengthW(edit)) << "the key, translated to its character";
    DestroyWindow(edit), DeleteFileW(LogoFile().c_str());
    const HWND splash = FindForm(kProgramForm);
    SendMessageW(splash, WM_ACTIVATE, WA_ACTIVE, 0);
    EXPECT_TRUE(IsCentred(splash) && platform.sounds.empty() && !IsWindowVisible(GetDlgItem(splash, IDOK)) &&
                !IsWindowVisible(GetDlgItem(splash, IDC_SHOWABOUT_SYSINFO))) << "centred, silent, no buttons";
    const struct { int id, x, y; COLORREF colour; } pixels[] = {{IDC_SHOWABOUT_IMAGE1, 0, 0, row.drawn},
        {IDC_SHOWABOUT_IMAGE3, 5, 5, kRed}, {IDC_SHOWABOUT_IMAGE3, 12, 12, kFace}, {IDC_SHOWABOUT_IMAGE2, 100, 0, kRed},
        {IDC_SHOWABOUT_IMAGE2, 5, 5, kFace}};
    for (const auto& p : pixels) EXPECT_EQ(p.colour, Pixel(splash, p.id, p.x, p.y)) << p.id << " at " << p.x;
    if (row.interval <= 0) {
      EXPECT_FALSE(KillTimer(splash, 1)) << "no timer";
      CloseBox(splash);
    }
    EXPECT_TRUE(PumpUntil([&] { return !IsWindow(splash); }));
  }
}

// A new form each time, centred, modal with no owner (the thread's visible, enabled windows wait), its bitmaps at full
// width, closed four ways; the splash's stays hidden. A link turns red under the mouse until it is over the bare form.
TEST_F(Screens, EachAboutShowsANewModalControlAboutBox) {
  const COLORREF blue = 0xFF0000, red = 0x0000FF;  // the links' OLE colours; other labels keep black
  ASSERT_EQ(S_OK, ShowSplash());
  SendMessageW(FindForm(kProgramForm), WM_CLOSE, 0, 0);
  const HWND hidden = FindForm(kControlForm, false);
  const auto popup = [](DWORD style) {
    return CreateWindowExW(0, L"STATIC", L"", WS_POPUP | style, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
  };
  const HWND windows[] = {popup(WS_VISIBLE), popup(0), popup(WS_VISIBLE | WS_DISABLED)};
  const struct { std::wstring version; void (*close)(HWND); } rows[] = {
      {L"1.03.0001", Ok}, {mega, Esc}, {L"1.0", CloseBox}, {L"1.0", [](HWND f) { SendMessageW(f, WM_TIMER, 1, 0); }}};
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    CurrentStore()[kVersion].text = row.version;
    std::vector<std::wstring> shown;
    std::vector<COLORREF> got;
    EXPECT_EQ(S_OK, WhileShown(kControlForm, About, [&](HWND form) {
      shown = {Text(form), Text(form, kAbout1), Text(form, kAbout1 + 1), Text(form, kAbout1 + 2),
               Text(form, kAbout1 + 6).substr(0, 21), IsCentred(form) ? L"centred" : L"",
               GetWindow(form, GW_OWNER) ? L"owned" : L"", form == hidden ? L"the splash's" : L""};
      for (HWND w : windows) got.push_back(IsWindowEnabled(w));
      for (int id : {IDC_ABOUT_IMAGE1, IDC_ABOUT_IMAGE2, IDC_ABOUT_PICTURE1})
        got.push_back(Pixel(form, id, 24, id == IDC_ABOUT_PICTURE1 ? 2 : 24) != kFace);
      const HDC dc = CreateCompatibleDC(nullptr);  // its text black until the form sets a colour
      for (int over : {-1, kWeb, kAbout1 + 9, kMail, 0}) {  // nothing, a link, a label, the other link, the form
        if (over >= 0) SendMessageW(over ? GetDlgItem(form, over) : form, WM_MOUSEMOVE, 0, 0);
        for (HWND label : {GetDlgItem(form, kAbout1 + 9), GetDlgItem(form, kWeb), GetDlgItem(form, kMail)})
          got.push_back((SendMessageW(form, WM_CTLCOLORSTATIC, WPARAM(dc), LPARAM(label)), GetTextColor(dc)));
        SetTextColor(dc, 0);
      }
      DeleteDC(dc), row.close(form);
    }));
    EXPECT_EQ((std::vector<std::wstring>{L"About " MAKER_PRODUCT, L"" MAKER_PRODUCT, row.version,
                                         L"© Copyright 2001/" + Year() + L", " MAKER_NAME L" - EU",
                                         L"All rights reserved.\r", L"centred", L"", L""}), shown);
    EXPECT_EQ((std::vector<COLORREF>{FALSE, TRUE, FALSE, TRUE, TRUE, TRUE, 0, blue, blue, 0, red, blue, 0, red, blue,
                                     0, red, red, 0, blue, blue}), got) << "windows enabled, bitmaps, colours";
    EXPECT_FALSE(CurrentScreens().controlAbout) << "released";
  }
  for (HWND w : windows) EXPECT_TRUE((IsWindowEnabled(w) != FALSE) == (w != windows[2]) && DestroyWindow(w)) << "back";
  EXPECT_TRUE(hidden && FindForm(kControlForm, false) == hidden && Text(hidden).empty()) << "its caption emptied";
}

// The logo opens WebSiteURL unless blank, the maker's link and logo its site, the e-mail link the mail command as set.
TEST_F(Screens, EachLinkStartsItsProgram) {
  platform.expected = RecordingPlatform::kConnectedState | RecordingPlatform::kExecutable | RecordingPlatform::kProcess;
  LocalHttpServer server(LocalHttpServer::Behaviour::Answer, "Brevantis online");
  ProbeSettings probe(server.Url());
  platform.executable = L"C:\\B\\b.exe";
  const std::wstring none, site = L"C:\\B\\b.exe " MAKER_WEB_SITE, mail = L"/mailto:" MAKER_EMAIL;
  const std::string fits = "C:\\" + std::string(249, 'p') + " /m";  // 255 and the NUL
  const struct { const wchar_t* form; std::string setting; int id; std::wstring started; } rows[] = {
      {kProgramForm, "", IDC_SHOWABOUT_IMAGE2, none}, {kProgramForm, "   ", IDC_SHOWABOUT_IMAGE2, none},  // as given
      {kProgramForm, " http://a.example/x ", IDC_SHOWABOUT_IMAGE2, L"C:\\B\\b.exe  http://a.example/x "},
      {kProgramForm, std::string(1 << 20, 'x'), IDC_SHOWABOUT_IMAGE2, L"C:\\B\\b.exe " + mega},
      {kControlForm, "", kWeb, site}, {kControlForm, "", IDC_ABOUT_IMAGE1, site}, {kControlForm, "", kAbout1 + 4, none},
      {kControlForm, "\"C:\\Program Files\\posta.exe\" /mail:%1", kMail, L"\"C:\\Program Files\\posta.exe\" " + mail},
      {kControlForm, "%ProgramFiles%\\posta.exe /m %1", kMail, L"%ProgramFiles%\\posta.exe " + mail},
      {kControlForm, "\"%ProgramFiles%\\posta.exe\" /m %1", kMail, none}, {kControlForm, "", kMail, none},  // "?%"
      {kControlForm, "C:\\posta.exe %1", kMail, mail.substr(1)}, {kControlForm, fits + "x", kMail, none},  // 256
      {kControlForm, fits, kMail, L"C:\\" + std::wstring(249, L'p') + L" " + mail},
      {kControlForm, "C:\\posta.exe /m", kAbout1 + 3, none}};
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    platform.processes.clear();
    CurrentStore()[kWebSiteURL].text = std::wstring(row.setting.begin(), row.setting.end());
    SetValue(HKEY_CLASSES_ROOT, "mailto\\shell\\open\\command", "", row.setting);
    WhileShown(row.form, row.form == kControlForm ? About : ShowAbout, [&](HWND f) { Click(f, row.id), Ok(f); });
    EXPECT_EQ(row.started, platform.processes.empty() ? none : platform.processes[0].commandLine);
    for (const auto& p : platform.processes) EXPECT_EQ(SW_SHOWNORMAL, p.showCommand);
  }
  EXPECT_EQ(4, platform.connectedStateCalls) << "a blank address asks nothing";
}

// The registered tool, or the system's own but never one in the root of the current drive; else the user is told.
TEST_F(Screens, SysInfoStartsTheRegisteredToolOrSaysItIsUnavailable) {
  platform.expected = RecordingPlatform::kProcess | RecordingPlatform::kMessage;
  SetCurrentDirectoryW(L"C:\\"), WriteTextFile(L"C:\\MSINFO32.EXE", "MZ");  // planted in the root: never started
  const struct { const char *path, *location; const wchar_t* started; } rows[] = {  // the last start fails
      {"  C:\\Program Files\\msinfo32.exe ", "X", L"\"C:\\Program Files\\msinfo32.exe\""},
      {"\"C:\\Tools\\msinfo32.exe\" /x", "", L"\"C:\\Tools\\msinfo32.exe\" /x"},
      {"", "", L"\"C:\\windows\\system32\\msinfo32.exe\""}, {"   ", " C:\\MSInfo ", L"\"C:\\MSInfo\""}};
  for (const auto& row : rows) {
    SetValue(HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO", "PATH", row.path);
    SetValue(HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft\\Shared Tools Location", "MSINFO", row.location);
    platform.processStarts = &row != std::end(rows) - 1;
    StartSysInfo();
    ASSERT_EQ(static_cast<size_t>(&row - rows + 1), platform.processes.size());
    EXPECT_EQ(row.started, platform.processes.back().commandLine);
  }
  EXPECT_EQ(L"System Information Is Unavailable At This Time|Brevantis|1", platform.messages.at(0).text + L"|" +
            platform.messages.at(0).caption + L"|" + std::to_wstring(platform.messages.size()));
}

// The registered control called late-bound as a host does: what the host set shows; the splash closes in its loop.
TEST_F(Screens, ThroughComTheScreensShowWhatTheHostSet) {
  DispatchClient control;
  ASSERT_EQ(S_OK, control.Create(L"BrevantisLib.Brevantis"));
  const auto call = [&](const wchar_t* method) { return control.Call(method, DISPATCH_METHOD, nullptr, 0, nullptr); };
  ASSERT_EQ(S_OK, control.PutString(L"CopyrightFromDate", L" 1999 "));
  std::wstring copyright, version;
  EXPECT_EQ(S_OK, WhileShown(kProgramForm, [&] { return call(L"ShowAbout"); },
                             [&](HWND f) { copyright = Text(f, kLabel1 + 2), Ok(f); }));
  EXPECT_EQ(L"© Copyright 1999 - " + Year() + L"|1999", copyright + L"|" + control.GetString(L"CopyrightFromDate"));
  Owned<TestPropertyBag> bag;  // a property load gives the control its version
  ComPtr<IPersistPropertyBag> persist;
  ASSERT_EQ(S_OK, control.Get()->QueryInterface(IID_IPersistPropertyBag, persist.OutVoid()));
  ASSERT_EQ(S_OK, persist->Load(bag.As<IPropertyBag>(), nullptr));
  EXPECT_EQ(S_OK, WhileShown(kControlForm, [&] { return call(L"About"); },
                             [&](HWND f) { version = Text(f, kAbout1 + 1), Ok(f); }));
  EXPECT_EQ(ControlVersionString(), version);
  ASSERT_EQ(S_OK, control.PutString(L"SplashScreenInterval", L"3000"));  // found up even under a loaded emulator
  ASSERT_EQ(S_OK, call(L"ShowSplashScreen"));
  const HWND splash = FindForm(kProgramForm);
  EXPECT_TRUE(splash && PumpUntil([&] { return !IsWindow(splash); }));
}

}  // namespace
