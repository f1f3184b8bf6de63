// What the information screens keep for a thread.
#pragma once

#include <memory>

namespace brevantis {

class ProgramAboutForm;
class ControlAboutForm;

struct ThreadScreens {
  // True from the end of frmShowAbout's load until it unloads; while it is,
  // ShowAbout and ShowSplashScreen do nothing.
  bool aboutShowing = false;
  // The form was opened by ShowSplashScreen: no sound, no buttons, a timer.
  bool splashMode = false;
  // frmShowAbout, made on first need and released when it closes.
  std::shared_ptr<ProgramAboutForm> programAbout;
  // frmabout as the splash screen loads it, hidden, by setting its caption;
  // it stays loaded.
  std::shared_ptr<ControlAboutForm> controlAboutLoadedBySplash;
  // frmabout as About shows it, released when it closes.
  std::shared_ptr<ControlAboutForm> controlAbout;
};

// The calling thread's, made on first use.
ThreadScreens& CurrentScreens();

}  // namespace brevantis
