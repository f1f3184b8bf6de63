// frmShowAbout: the host program's about box (modal, with its buttons and
// sound) and splash screen (modeless, closed by Timer1), filled from the
// program's facts when it loads.
#pragma once

#include <windows.h>

#include "forms/form_window.h"
#include "forms/forms.h"
#include "forms/screens.h"

namespace brevantis {

class ProgramAboutForm final : public Form {
 public:
  explicit ProgramAboutForm(ThreadScreens& screens);

  // The facts the next load shows.
  void Use(const ProgramFacts& facts) { facts_ = facts; }
  // Starts Timer1 with the interval the facts give; an interval of 0 or less
  // never ticks.
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

  ThreadScreens& screens_;
  ProgramFacts facts_;
};

}  // namespace brevantis
