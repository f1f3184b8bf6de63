// The information screens the control's methods show. They take the
// program's facts as values, read when the method is called.
#pragma once

#include <windows.h>
#include <ocidl.h>
#include <string>

#include "com/raii.h"
#include "web/facts.h"

namespace brevantis {

struct ProgramFacts {
  std::wstring name;
  std::wstring authors[3];
  LONG major = 0, minor = 0, revision = 0;
  // The years as the about box shows them: see CopyrightYearShown.
  std::wstring copyrightFrom, copyrightTo;
  std::wstring companyName;
  std::wstring webSite;  // opened by the company logo
  std::wstring sound;    // AboutWavSound
  LONG splashInterval = 0;
  ComPtr<IPictureDisp> picture, icon, companyLogo;
  std::wstring controlVersion;  // the control's own about box, which the splash screen loads
  WebFacts web;
};

// The control's own about box, modal with no owner; a new form each time
// (About). It names the control's version.
HRESULT ShowControlAboutBox(const std::wstring& controlVersion, const WebFacts& web);

// The host program's about box, modal (ShowAbout).
HRESULT ShowProgramAboutBox(const ProgramFacts& program);

// The host program's splash screen, modeless; it closes itself when its
// interval has passed (ShowSplashScreen).
HRESULT ShowProgramSplashScreen(const ProgramFacts& program);

// Starts the system information tool, or says it is unavailable.
void StartSysInfo();

}  // namespace brevantis
