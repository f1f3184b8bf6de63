// The demo host: creates the control and the crypto filter box by ProgID, as
// a script host would, sets and reads some of their properties and prints them.
#include <windows.h>
#include <cstdio>
#include <string>

#include "com/dispatch_client.h"
#include "com/text.h"

using brevantis::DispatchClient;

namespace {

void Print(const char* label, const std::wstring& value) {
  std::printf("  %-22s %s\n", label, brevantis::ToAnsi(value).c_str());
}

bool ShowControl() {
  DispatchClient control;
  HRESULT hr = control.Create(L"BrevantisLib.Brevantis");
  if (FAILED(hr)) {
    std::printf("Cannot create BrevantisLib.Brevantis: 0x%08lX\n", static_cast<unsigned long>(hr));
    return false;
  }
  std::printf("BrevantisLib.Brevantis\n");
  control.PutString(L"ProgramName", L"Atlante dei Fiumi d'Italia");
  control.PutString(L"Author1", L"Giulia Rinaldi");
  control.PutString(L"CopyrightFromDate", L"1998");
  for (const wchar_t* name : {L"ProgramName", L"Author1", L"CopyrightFromDate", L"CompanyName", L"WebSiteURL",
                              L"SplashScreenInterval", L"CDIndexFile", L"DefaultProgramFolder"}) {
    Print(brevantis::ToAnsi(name).c_str(), control.GetString(name));
  }
  EXCEPINFO error = {};
  hr = control.PutString(L"OSName", L"Something else", &error);
  std::printf("  %-22s 0x%08lX %s\n", "put OSName ->", static_cast<unsigned long>(error.scode),
              brevantis::ToAnsi(brevantis::FromBstr(error.bstrDescription)).c_str());
  SysFreeString(error.bstrSource);
  SysFreeString(error.bstrDescription);
  SysFreeString(error.bstrHelpFile);
  return true;
}

bool ShowCryptoBox() {
  DispatchClient box;
  HRESULT hr = box.Create(L"BrevantisLib.clsCryptoFilterBox");
  if (FAILED(hr)) {
    std::printf("Cannot create BrevantisLib.clsCryptoFilterBox: 0x%08lX\n", static_cast<unsigned long>(hr));
    return false;
  }
  std::printf("BrevantisLib.clsCryptoFilterBox\n");
  box.PutString(L"InBuffer", L"Testo da firmare");
  box.PutString(L"Password", L"segreto");
  for (const wchar_t* name : {L"InBuffer", L"Password", L"Status"}) Print(brevantis::ToAnsi(name).c_str(), box.GetString(name));
  return true;
}

}  // namespace

int main() {
  if (FAILED(OleInitialize(nullptr))) return 2;
  const bool ok = ShowControl() && ShowCryptoBox();
  OleUninitialize();
  return ok ? 0 : 1;
}
