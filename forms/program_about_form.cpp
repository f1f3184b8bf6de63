#include "forms/program_about_form.h"

#include <mmsystem.h>

#include "com/module.h"
#include "com/text.h"
#include "forms/forms_resources.h"
#include "forms/picture.h"
#include "forms/screen_texts.h"
#include "platform/platform.h"
#include "platform/ui.h"
#include "web/browser.h"

namespace brevantis {
namespace {

constexpr int kLabel1 = IDC_SHOWABOUT_LABEL1;

// The publisher's own picture, beside the control's library file, takes the
// place of ProgramPicture when it loads.
std::wstring LogoFilePath() {
  const std::wstring module = ThisModulePath();
  return module.substr(0, module.find_last_of(L'\\')) + L"\\Prglogo.bmp";
}

}  // namespace

ProgramAboutForm::ProgramAboutForm(ThreadScreens& screens)
    : Form(L"frmShowAbout", IDD_SHOWABOUT, [&screens] { screens.programAbout.reset(); }), screens_(screens) {}

void ProgramAboutForm::OnLoad() {
  SetPicture(IDC_SHOWABOUT_IMAGE3, facts_.icon);
  SetPicture(IDC_SHOWABOUT_IMAGE1, facts_.picture);
  SetItemText(kLabel1 + 0, facts_.name);
  UseBoldFont(kLabel1 + 0, 150);
  SetItemText(IDC_SHOWABOUT_LABEL2, AuthorLine(facts_.authors[0]));
  SetItemText(IDC_SHOWABOUT_LABEL3, AuthorLine(facts_.authors[1]));
  SetItemText(IDC_SHOWABOUT_LABEL4, AuthorLine(facts_.authors[2]));
  if (ComPtr<IPictureDisp> logo = LoadPictureFile(LogoFilePath())) SetPicture(IDC_SHOWABOUT_IMAGE1, logo);
  CentreOnScreen(Window());
  SetItemText(kLabel1 + 2, ProgramCopyrightLine(facts_.copyrightFrom, facts_.copyrightTo));
  SetItemText(kLabel1 + 1, ProgramVersionLine(facts_.major, facts_.minor, facts_.revision));
  SetItemText(kLabel1 + 3, kProgramLegalNotice);
  SetPicture(IDC_SHOWABOUT_IMAGE2, facts_.companyLogo);
  SetToolTip(IDC_SHOWABOUT_IMAGE2, L"Visitate il Sito Web " + facts_.companyName);
  screens_.aboutShowing = true;
}

void ProgramAboutForm::OnUnload() {
  KillTimer(Window(), kTimer1);
  screens_.aboutShowing = false;
}

void ProgramAboutForm::EnableTimer1() {
  if (facts_.splashInterval > 0) SetTimer(Window(), kTimer1, static_cast<UINT>(facts_.splashInterval), nullptr);
}

void ProgramAboutForm::HideButtons() {
  ShowItem(IDC_SHOWABOUT_SYSINFO, false);
  ShowItem(IDOK, false);
}

bool ProgramAboutForm::ButtonsShown() const { return IsWindowVisible(Item(IDOK)) != FALSE; }

bool ProgramAboutForm::OnMessage(UINT message, WPARAM wParam, LPARAM, INT_PTR*) {
  if (message == WM_ACTIVATE && LOWORD(wParam) != WA_INACTIVE) OnActivate();
  return false;
}

void ProgramAboutForm::OnCommand(int id, int code) {
  if (code != BN_CLICKED) return;  // also STN_CLICKED
  switch (id) {
    case IDOK:      // Command1
    case IDCANCEL:  // Esc, while Command1 is there to take it
      if (ButtonsShown()) Unload();
      break;
    case IDC_SHOWABOUT_SYSINFO:
      StartSysInfo();
      break;
    case IDC_SHOWABOUT_IMAGE2:
      OnLogoClick();
      break;
  }
}

namespace {

bool NamesAShare(const std::wstring& path) {
  return path.size() >= 2 && (path[0] == L'\\' || path[0] == L'/') && (path[1] == L'\\' || path[1] == L'/');
}

// Whether path names a file on a drive of this machine (a relative one: the
// current folder's). A sound on a share would have every activation connect
// to its server and hand it the user's credentials.
bool OnThisMachine(const std::wstring& path) {
  if (NamesAShare(path)) return false;
  std::wstring where = path;
  if (where.size() < 2 || where[1] != L':') {
    wchar_t current[MAX_PATH] = {};
    const DWORD length = GetCurrentDirectoryW(MAX_PATH, current);
    if (length == 0 || length >= MAX_PATH) return false;
    where.assign(current, length);
    if (NamesAShare(where)) return false;
  }
  return CurrentPlatform().DriveKind(where.substr(0, 2) + L"\\") != DRIVE_REMOTE;
}

}  // namespace

// The about box greets the user each time it becomes the active window; the
// splash is silent. Blanks are a name like any other; only local files play,
// and never the system's default sound in their place.
void ProgramAboutForm::OnActivate() {
  const std::wstring& sound = facts_.sound;
  if (!screens_.splashMode && !sound.empty() && OnThisMachine(sound))
    CurrentPlatform().PlaySoundFile(sound, SND_ASYNC | SND_NODEFAULT);
}

void ProgramAboutForm::OnLogoClick() {
  if (TrimSpaces(facts_.webSite).empty()) return;
  bool opened = false;
  // Nobody waits for the click's outcome: what the user sees is the browser,
  // or the connection assistant when offline.
  OpenUrlInBrowser(facts_.webSite, facts_.web, &opened);
}

}  // namespace brevantis
