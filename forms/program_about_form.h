// frmShowAbout: the host program's about box (modal, with its buttons and
// sound) and splash screen (modeless, closed by Timer1), filled from the
// store when it loads.
#pragma once

#include <windows.h>

#include "forms/form_window.h"
#include "forms/program_screens.h"

namespace brevantis {

class ProgramAboutForm final : public Form {
 public:
  explicit ProgramAboutForm(ProgramScreens& screens);

  // Starts Timer1 with the interval the load took from SplashScreenInterval;
  // an interval of 0 or less never ticks.
  void EnableTimer1();
  // Hides cmdSysInfo and Command1.
  void HideButtons();

 private:
  void OnLoad() override;
  void OnUnload() override;
  bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, INT_PTR* result) override;
  void OnCommand(int id, int code) override;
  void OnActivate();
  void OnLogoClick();
  bool ButtonsShown() const;

  ProgramScreens& screens_;
  LONG timerInterval_ = 5000;
};

}  // namespace brevantis
