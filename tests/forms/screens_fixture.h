// What the screen tests share: a store filled with a sample program, the
// recording platform, pictures, and ways to ask a real form what it shows.
#pragma once

#include <gtest/gtest.h>
#include <ocidl.h>

#include <string>

#include "com/raii.h"
#include "control/facts.h"
#include "forms/forms.h"
#include "forms/screens.h"
#include "model/store.h"
#include "testkit/local_http_server.h"
#include "testkit/recording_platform.h"
#include "web_test_support.h"

namespace brevantis::testing {

class ScreensTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  Store& store() { return CurrentStore(); }
  // The screens as the control's methods show them, with the store's facts.
  static HRESULT ShowProgramAboutBox() { return brevantis::ShowProgramAboutBox(ProgramFactsOf(CurrentStore())); }
  static HRESULT ShowProgramSplashScreen() {
    return brevantis::ShowProgramSplashScreen(ProgramFactsOf(CurrentStore()));
  }
  static HRESULT ShowControlAboutBox() {
    return brevantis::ShowControlAboutBox(CurrentStore()[kVersion].text, WebFactsOf(CurrentStore()));
  }

  RecordingPlatform platform_;
};

// A bitmap picture of one colour.
ComPtr<IPictureDisp> SolidPicture(int width, int height, COLORREF colour);
// The system's information icon as a picture.
ComPtr<IPictureDisp> IconPicture();
// Writes a bitmap file of one colour.
void WriteBitmapFile(const std::wstring& path, int width, int height, COLORREF colour);

// The folder of the program that holds the forms' code, with a backslash.
std::wstring ModuleFolder();

// The colour element id of form draws at (x, y) when the form is asked to
// draw it (WM_DRAWITEM) into a bitmap of the test's own, first painted white.
COLORREF DrawnPixel(HWND form, int id, int x, int y);
// The text colour form gives element id (WM_CTLCOLORSTATIC); black, the
// default, when the form does not choose one.
COLORREF TextColour(HWND form, int id);
// The tool tip form shows for element id; "" when there is none.
std::wstring ToolTipText(HWND form, int id);

// Makes OpenUrlInBrowser succeed through the recording platform: a local
// server answers the reachability probe and the shell names C:\B\b.exe, so
// an opened address shows as the process "C:\B\b.exe <address>".
class OnlineWithBrowser {
 public:
  explicit OnlineWithBrowser(RecordingPlatform& platform);

 private:
  LocalHttpServer server_;
  ProbeSettings settings_;
  ScratchFolder temp_;
};

}  // namespace brevantis::testing
