// What the program's about box and splash screen share on one thread, kept
// in the store's slot for them.
#pragma once

#include <memory>

namespace brevantis {

class ProgramAboutForm;
class ControlAboutForm;

struct ProgramScreens {
  // True from the end of frmShowAbout's load until it unloads; while it is,
  // ShowAbout and ShowSplashScreen do nothing.
  bool aboutShowing = false;
  // The form was opened by ShowSplashScreen: no sound, no buttons, a timer.
  bool splashMode = false;
  // frmShowAbout, made on first need and released when it closes.
  std::shared_ptr<ProgramAboutForm> form;
  // frmabout as the splash screen loads it, hidden, by setting its caption;
  // it stays loaded. About shows a form of its own.
  std::shared_ptr<ControlAboutForm> controlAboutLoadedBySplash;
};

// The calling thread's, made on first use.
ProgramScreens& CurrentProgramScreens();

}  // namespace brevantis
