// frmabout: the control's own about box, with the maker's links.
#pragma once

#include <windows.h>
#include <functional>

#include "forms/form_window.h"
#include "web/facts.h"

namespace brevantis {

class ControlAboutForm final : public Form {
 public:
  // release lets go of the reference that keeps this form when its Timer1
  // ticks. Nothing enables that timer; its handler is kept all the same. The
  // form names version; its links open addresses with web.
  ControlAboutForm(std::function<void()> release, std::wstring version, WebFacts web);

 private:
  void OnLoad() override;
  bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, INT_PTR* result) override;
  void OnItemMouseMove(int id) override;
  void OnCommand(int id, int code) override;
  void OpenWebSite();
  COLORREF* LinkColour(int id);

  std::wstring version_;
  WebFacts web_;
  COLORREF webSiteColour_;
  COLORREF emailColour_;
};

}  // namespace brevantis
