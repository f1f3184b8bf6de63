// frmabout, the control's own about box, shown by About and answered from a
// thread of the test's own: its texts, links and the way it closes.
#include <windows.h>

#include "com/raii.h"
#include "form_probe.h"
#include "forms/forms.h"
#include "forms/forms_resources.h"
#include "model/publisher.h"
#include "screens_fixture.h"

using namespace brevantis;
using namespace brevantis::testing;

namespace {

constexpr int kLabel1 = IDC_ABOUT_LABEL1;
const wchar_t kForm[] = L"frmabout";
constexpr COLORREF kBlue = 0xFF0000;
constexpr COLORREF kRed = 0x0000FF;

std::wstring Year() {
  SYSTEMTIME now;
  GetLocalTime(&now);
  return std::to_wstring(now.wYear);
}

void SetMailCommand(const char* command) {
  RegKey key;
  ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExA(HKEY_CLASSES_ROOT, "mailto\\shell\\open\\command", 0, nullptr, 0,
                                           KEY_ALL_ACCESS, nullptr, key.Out(), nullptr));
  RegSetValueExA(key.Get(), "", 0, REG_SZ, reinterpret_cast<const BYTE*>(command),
                 static_cast<DWORD>(strlen(command) + 1));
}

class ControlAbout : public ScreensTest {
 protected:
  // Shows the box; visit reads it and closes it.
  void Show(std::function<void(HWND)> visit) {
    FormVisitor visitor(kForm, std::move(visit));
    EXPECT_EQ(S_OK, ShowControlAboutBox());
    EXPECT_TRUE(visitor.Join());
    EXPECT_EQ(nullptr, FindForm(kForm, true));
    EXPECT_EQ(nullptr, FindForm(kForm, false)) << "unloaded";
    EXPECT_FALSE(CurrentScreens().controlAbout) << "released";
  }
};

TEST_F(ControlAbout, ShowsTheMakerTheVersionAndTheNotice) {
  store()[kVersion].text = L"1.03.0001";
  std::wstring caption, labels[12];
  bool centred = false;
  Show([&](HWND form) {
    caption = TextOf(form);
    centred = IsCentred(form);
    for (int i = 0; i < 12; ++i) labels[i] = ItemTextOf(form, kLabel1 + i);
    Click(form, IDOK);
  });
  EXPECT_EQ(L"About Ostrel Brevantis ActiveX Control", caption);
  EXPECT_TRUE(centred);
  EXPECT_EQ(L"Ostrel Brevantis ActiveX Control", labels[0]);
  EXPECT_EQ(L"1.03.0001", labels[1]);
  EXPECT_EQ(L"© Copyright 2001/" + Year() + L", Ostrel - EU", labels[2]);
  EXPECT_EQ(L"E-mail: ", labels[3]);
  EXPECT_EQ(L"Web site:", labels[4]);
  EXPECT_EQ(L"Tel: ", labels[5]);
  EXPECT_EQ(L"FAX: ", labels[11]);
  EXPECT_EQ(L"http://www.ostrel-edizioni.example/brevantis", labels[7]);
  EXPECT_EQ(L"brevantis@ostrel-edizioni.example", labels[8]);
  EXPECT_EQ(publisher::kPhone, labels[9]);
  EXPECT_EQ(publisher::kFax, labels[10]);
  EXPECT_EQ(L"All rights reserved.\rWarning: this computer program is protected by copyright law and international "
            L"treaties.\rUnauthorized reproduction or distribution of this program, or any portion of it, may result "
            L"in civil and criminal penalties, and will be prosecuted to the maximum extent possible under law.",
            labels[6]);
}

TEST_F(ControlAbout, EachAboutShowsANewForm) {
  store()[kVersion].text = L"1.03.0001";
  HWND first = nullptr;
  Show([&](HWND form) {
    first = form;
    SetDlgItemTextW(form, kLabel1 + 1, L"changed");
    PostMessageW(form, WM_KEYDOWN, VK_ESCAPE, 0);
  });
  std::wstring version;
  Show([&](HWND form) {
    version = ItemTextOf(form, kLabel1 + 1);
    PostMessageW(form, WM_SYSCOMMAND, SC_CLOSE, 0);
  });
  EXPECT_FALSE(IsWindow(first));
  EXPECT_EQ(L"1.03.0001", version);
  Show([](HWND form) { SendMessageW(form, WM_TIMER, 1, 0); });  // Timer1's handler unloads it too
}

TEST_F(ControlAbout, ItIsModalWithNoOwner) {
  const HWND host = CreateWindowExW(0, L"STATIC", L"host", WS_POPUP | WS_VISIBLE, 0, 0, 60, 40, nullptr, nullptr,
                                    nullptr, nullptr);
  BOOL hostEnabled = TRUE;
  HWND owner = host;
  Show([&](HWND form) {
    hostEnabled = IsWindowEnabled(host);
    owner = GetWindow(form, GW_OWNER);
    Click(form, IDOK);
  });
  EXPECT_FALSE(hostEnabled) << "the host's windows wait";
  EXPECT_EQ(nullptr, owner);
  EXPECT_TRUE(IsWindowEnabled(host)) << "and are given back";
  DestroyWindow(host);
}

TEST_F(ControlAbout, ALinkStaysRedUntilTheMouseIsOverBareForm) {
  COLORREF web[4], mail[4], phone = 0;
  Show([&](HWND form) {
    const auto look = [&](int step) {
      web[step] = TextColour(form, kLabel1 + 7);
      mail[step] = TextColour(form, kLabel1 + 8);
    };
    look(0);
    SendMessageW(GetDlgItem(form, kLabel1 + 7), WM_MOUSEMOVE, 0, MAKELPARAM(3, 3));
    look(1);
    SendMessageW(GetDlgItem(form, kLabel1 + 9), WM_MOUSEMOVE, 0, MAKELPARAM(3, 3));  // a label, not a link
    SendMessageW(GetDlgItem(form, kLabel1 + 8), WM_MOUSEMOVE, 0, MAKELPARAM(3, 3));
    look(2);
    phone = TextColour(form, kLabel1 + 9);
    SendMessageW(form, WM_MOUSEMOVE, 0, MAKELPARAM(2, 2));
    look(3);
    Click(form, IDOK);
  });
  EXPECT_EQ(kBlue, web[0]);
  EXPECT_EQ(kBlue, mail[0]);
  EXPECT_EQ(kRed, web[1]);
  EXPECT_EQ(kBlue, mail[1]);
  EXPECT_EQ(kRed, web[2]) << "still red over other labels";
  EXPECT_EQ(kRed, mail[2]);
  EXPECT_EQ(RGB(0, 0, 0), phone) << "other labels keep the system's colour";
  EXPECT_EQ(kBlue, web[3]);
  EXPECT_EQ(kBlue, mail[3]);
}

TEST_F(ControlAbout, TheWebLinkAndTheLogoOpenTheMakersSite) {
  ScopedPlatform scope(&platform_);
  OnlineWithBrowser online(platform_);
  Show([](HWND form) {
    Click(form, kLabel1 + 7);
    Click(form, IDC_ABOUT_IMAGE1);
    Click(form, kLabel1 + 4);  // the text before the link is not a link
    Click(form, IDOK);
  });
  ASSERT_EQ(2u, platform_.processes.size());
  for (const auto& process : platform_.processes) {
    EXPECT_EQ(L"C:\\B\\b.exe http://www.ostrel-edizioni.example/brevantis", process.commandLine);
    EXPECT_EQ(SW_SHOWNORMAL, process.showCommand);
  }
}

TEST_F(ControlAbout, TheMailLinkStartsTheRegisteredMailProgram) {
  ScopedPlatform scope(&platform_);
  SetMailCommand("\"C:\\Program Files\\Posta\\posta.exe\" /mail:%1");
  Show([](HWND form) {
    Click(form, kLabel1 + 8);
    Click(form, kLabel1 + 3);
    Click(form, IDOK);
  });
  ASSERT_EQ(1u, platform_.processes.size());
  EXPECT_EQ(L"\"C:\\Program Files\\Posta\\posta.exe\" /mailto:brevantis@ostrel-edizioni.example",
            platform_.processes[0].commandLine);
  EXPECT_EQ(SW_SHOWNORMAL, platform_.processes[0].showCommand);
}

TEST_F(ControlAbout, TheSplashLoadsItHiddenAndAboutShowsAnotherOne) {
  store()[kSplashScreenInterval].number = 0;
  ASSERT_EQ(S_OK, ShowProgramSplashScreen());
  const HWND hidden = FindForm(kForm, false);
  ASSERT_NE(nullptr, hidden);
  SendMessageW(FindForm(L"frmShowAbout"), WM_CLOSE, 0, 0);
  std::wstring caption;
  FormVisitor visitor(kForm, [&](HWND form) {
    caption = TextOf(form);
    Click(form, IDOK);
  });
  EXPECT_EQ(S_OK, ShowControlAboutBox());
  visitor.Join();
  EXPECT_EQ(L"About Ostrel Brevantis ActiveX Control", caption);
  EXPECT_EQ(hidden, FindForm(kForm, false)) << "the one the splash loaded stays";
  EXPECT_FALSE(IsWindowVisible(hidden));
}

}  // namespace
