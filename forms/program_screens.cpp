// ShowAbout and ShowSplashScreen: frmShowAbout in its two modes.
#include "forms/program_screens.h"

#include "control/store.h"
#include "forms/control_about_form.h"
#include "forms/forms.h"
#include "forms/program_about_form.h"

namespace brevantis {
namespace {

// Lets the window messages waiting now run once, as the splash screen
// needs to paint before the host goes on with its start-up.
void ProcessPendingMessages() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (message.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(message.wParam));  // for the host's own loop
      return;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

std::shared_ptr<ProgramAboutForm> ProgramForm(ProgramScreens& screens) {
  if (!screens.form) screens.form = std::make_shared<ProgramAboutForm>(screens);
  return screens.form;
}

}  // namespace

ProgramScreens& CurrentProgramScreens() {
  Store& store = CurrentStore();
  if (!store.programAboutForm) store.programAboutForm = std::make_shared<ProgramScreens>();
  return *static_cast<ProgramScreens*>(store.programAboutForm.get());
}

HRESULT ShowProgramAboutBox() {
  ProgramScreens& screens = CurrentProgramScreens();
  if (screens.aboutShowing) return S_OK;
  screens.splashMode = false;
  const std::shared_ptr<ProgramAboutForm> form = ProgramForm(screens);
  const HRESULT hr = form->SetCaption(L"Informazioni su " + CurrentStore()[kProgramName].text);
  if (FAILED(hr)) return hr;
  form->ShowModal();
  form->Unload();
  if (screens.form == form) screens.form.reset();
  return S_OK;
}

HRESULT ShowProgramSplashScreen() {
  ProgramScreens& screens = CurrentProgramScreens();
  if (screens.aboutShowing) return S_OK;
  if (!screens.controlAboutLoadedBySplash) {
    screens.controlAboutLoadedBySplash =
        std::make_shared<ControlAboutForm>([&screens] { screens.controlAboutLoadedBySplash.reset(); });
  }
  HRESULT hr = screens.controlAboutLoadedBySplash->SetCaption(L"");
  if (FAILED(hr)) return hr;
  screens.splashMode = true;
  const std::shared_ptr<ProgramAboutForm> form = ProgramForm(screens);
  hr = form->Load();
  if (FAILED(hr)) return hr;
  form->EnableTimer1();
  form->HideButtons();
  form->ShowModeless();
  ProcessPendingMessages();
  return S_OK;
}

}  // namespace brevantis
