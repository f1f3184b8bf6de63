// About, ShowAbout and ShowSplashScreen: frmabout, and frmShowAbout in its
// two modes.
#include "forms/screens.h"

#include "com/failure.h"
#include "com/thread_slot.h"
#include "forms/control_about_form.h"
#include "forms/forms.h"
#include "forms/program_about_form.h"
#include "platform/ui.h"

namespace brevantis {
namespace {

ThreadSlot<ThreadScreens> g_screens;

// Forms are made with new, not make_shared, which without RTTI brings the
// runtime's mutex pool into the control.
std::shared_ptr<ProgramAboutForm> ProgramForm(ThreadScreens& screens, const ProgramFacts& facts) {
  if (!screens.programAbout) screens.programAbout.reset(new ProgramAboutForm(screens));
  screens.programAbout->Use(facts);
  return screens.programAbout;
}

}  // namespace

ThreadScreens& CurrentScreens() { return g_screens.Get(); }

HRESULT ShowControlAboutBox(const std::wstring& controlVersion, const WebFacts& web) {
  ThreadScreens& screens = CurrentScreens();
  if (!screens.controlAbout) {
    screens.controlAbout.reset(new ControlAboutForm([&screens] { screens.controlAbout.reset(); }, controlVersion, web));
  }
  const std::shared_ptr<ControlAboutForm> form = screens.controlAbout;
  // Asked again while it shows (from a host's timer, say): that one call does nothing.
  if (form->IsLoaded() && IsWindowVisible(form->Window())) return S_OK;
  const HRESULT hr = form->ShowModal();
  form->Unload();
  if (screens.controlAbout == form) screens.controlAbout.reset();
  return hr;
}

HRESULT ShowProgramAboutBox(const ProgramFacts& program) {
  ThreadScreens& screens = CurrentScreens();
  if (screens.aboutShowing) return S_OK;
  screens.splashMode = false;
  const std::shared_ptr<ProgramAboutForm> form = ProgramForm(screens, program);
  RETURN_IF_FAILED(form->SetCaption(L"Informazioni su " + program.name));
  form->ShowModal();
  form->Unload();
  if (screens.programAbout == form) screens.programAbout.reset();
  return S_OK;
}

HRESULT ShowProgramSplashScreen(const ProgramFacts& program) {
  ThreadScreens& screens = CurrentScreens();
  if (screens.aboutShowing) return S_OK;
  if (!screens.controlAboutLoadedBySplash) {
    screens.controlAboutLoadedBySplash.reset(new ControlAboutForm(
        [&screens] { screens.controlAboutLoadedBySplash.reset(); }, program.controlVersion, program.web));
  }
  RETURN_IF_FAILED(screens.controlAboutLoadedBySplash->SetCaption(L""));
  screens.splashMode = true;
  const std::shared_ptr<ProgramAboutForm> form = ProgramForm(screens, program);
  RETURN_IF_FAILED(form->Load());
  form->EnableTimer1();
  form->HideButtons();
  form->ShowModeless();
  // The splash screen paints before the host goes on with its start-up.
  RunPendingMessages();
  return S_OK;
}

}  // namespace brevantis
