#include "forms/control_about_form.h"

#include "com/text.h"
#include "forms/forms_resources.h"
#include "forms/mail.h"
#include "forms/maker.h"
#include "forms/picture.h"
#include "forms/screen_texts.h"
#include "platform/ui.h"
#include "web/browser.h"

namespace brevantis {
namespace {

constexpr int kLabel1 = IDC_ABOUT_LABEL1;
constexpr int kWebSiteLink = kLabel1 + 7;
constexpr int kEmailLink = kLabel1 + 8;
// OLE colours, as COLORREF has them: blue at rest, red under the mouse.
constexpr COLORREF kLinkColour = 0xFF0000;
constexpr COLORREF kHoverColour = 0x0000FF;

}  // namespace

ControlAboutForm::ControlAboutForm(std::function<void()> release, std::wstring version, WebFacts web)
    : Form(L"frmabout", IDD_ABOUT, std::move(release)), version_(std::move(version)), web_(std::move(web)) {}

void ControlAboutForm::OnLoad() {
  webSiteColour_ = kLinkColour;
  emailColour_ = kLinkColour;
  SetWindowTextW(Window(), L"About " MAKER_PRODUCT);
  SetItemText(kLabel1 + 0, L"" MAKER_PRODUCT);
  UseBoldFont(kLabel1 + 0, 125);
  CentreOnScreen(Window());
  SetItemText(kLabel1 + 1, version_);
  SetItemText(kLabel1 + 2, ControlCopyrightLine());
  SetItemText(kLabel1 + 6, ControlLegalNotice(ItemText(kLabel1 + 6)));
  SetPicture(IDC_ABOUT_IMAGE1, LoadBitmapPicture(IDB_ABOUT_LOGO));
  SetPicture(IDC_ABOUT_IMAGE2, LoadBitmapPicture(IDB_ABOUT_EMBLEM));
  SetPicture(IDC_ABOUT_PICTURE1, LoadBitmapPicture(IDB_ABOUT_BAND));
  ForwardMouseMoves(kWebSiteLink);
  ForwardMouseMoves(kEmailLink);
}

COLORREF* ControlAboutForm::LinkColour(int id) {
  if (id == kWebSiteLink) return &webSiteColour_;
  if (id == kEmailLink) return &emailColour_;
  return nullptr;
}

// A link turns red under the mouse and stays so until the mouse is over the
// bare form: other labels do not count.
void ControlAboutForm::OnItemMouseMove(int id) {
  if (COLORREF* colour = LinkColour(id)) {
    *colour = kHoverColour;
    InvalidateRect(Item(id), nullptr, TRUE);
  }
}

bool ControlAboutForm::OnMessage(UINT message, WPARAM wParam, LPARAM lParam, INT_PTR* result) {
  switch (message) {
    case WM_MOUSEMOVE:
      for (int id : {kEmailLink, kWebSiteLink}) {
        COLORREF* colour = LinkColour(id);
        if (*colour == kHoverColour) {
          *colour = kLinkColour;
          InvalidateRect(Item(id), nullptr, TRUE);
        }
      }
      return true;
    case WM_CTLCOLORSTATIC: {
      COLORREF* colour = LinkColour(GetDlgCtrlID(reinterpret_cast<HWND>(lParam)));
      if (!colour) return false;
      const HDC dc = reinterpret_cast<HDC>(wParam);
      SetTextColor(dc, *colour);
      SetBkColor(dc, GetSysColor(COLOR_BTNFACE));
      *result = reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_BTNFACE));
      return true;
    }
  }
  return false;
}

void ControlAboutForm::OnCommand(int id, int code) {
  if (code != BN_CLICKED) return;  // also STN_CLICKED
  switch (id) {
    case IDOK:      // Command1
    case IDCANCEL:  // Esc
      Unload();
      break;
    case kWebSiteLink:
    case IDC_ABOUT_IMAGE1:  // the logo leads to the same address
      OpenWebSite();
      break;
    case kEmailLink:
      SendMail(L"mailto:" MAKER_EMAIL);
      break;
  }
}

void ControlAboutForm::OpenWebSite() {
  bool opened = false;
  OpenUrlInBrowser(TrimSpaces(ItemText(kWebSiteLink)), web_, &opened);
}

}  // namespace brevantis
