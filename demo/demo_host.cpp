// The demo host: creates the control and the crypto filter box by ProgID, as
// a script host would, sets and reads some of their properties and prints them.
#include <windows.h>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "com/dispatch_client.h"
#include "com/text.h"
#include "screen_presenter.h"

using brevantis::DispatchClient;

namespace {

void Print(const char* label, const std::wstring& value) {
  std::printf("  %-22s %s\n", label, Utf8(value).c_str());
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
    Print(Utf8(name).c_str(), control.GetString(name));
  }
  EXCEPINFO error = {};
  hr = control.PutString(L"OSName", L"Something else", &error);
  std::printf("  %-22s 0x%08lX %s\n", "put OSName ->", static_cast<unsigned long>(error.scode),
              Utf8(brevantis::FromBstr(error.bstrDescription)).c_str());
  SysFreeString(error.bstrSource);
  SysFreeString(error.bstrDescription);
  SysFreeString(error.bstrHelpFile);
  return true;
}

// Calls a method by name; false (and a line saying why) when it fails.
bool CallMethod(DispatchClient& object, const wchar_t* name) {
  const HRESULT hr = object.Call(name, DISPATCH_METHOD, nullptr, 0, nullptr);
  if (FAILED(hr)) std::printf("  %s failed: 0x%08lX\n", Utf8(name).c_str(), static_cast<unsigned long>(hr));
  return SUCCEEDED(hr);
}

bool ShowCryptoBox() {
  std::printf("BrevantisLib.clsCryptoFilterBox (creating it makes sure the user's keys exist)\n");
  DispatchClient box;
  HRESULT hr = box.Create(L"BrevantisLib.clsCryptoFilterBox");
  if (FAILED(hr)) {
    std::printf("Cannot create BrevantisLib.clsCryptoFilterBox: 0x%08lX\n", static_cast<unsigned long>(hr));
    return false;
  }
  const wchar_t* text = L"Testo da firmare, con lettere accentate: \u00e0 \u00e8 \u00ec";
  box.PutString(L"InBuffer", text);
  if (!CallMethod(box, L"Sign")) return false;
  Print("Signature length", brevantis::DecimalText(box.GetString(L"Signature").size()));
  if (!CallMethod(box, L"Validate")) return false;
  Print("Validate -> Status", box.GetString(L"Status") + L" (2: signature confirmed)");

  box.PutString(L"Password", L"segreto");
  if (!CallMethod(box, L"Encrypt")) return false;
  const std::wstring secret = box.GetString(L"OutBuffer");
  Print("Encrypt -> length", brevantis::DecimalText(secret.size()));
  box.PutString(L"InBuffer", secret.c_str());
  if (!CallMethod(box, L"Decrypt")) return false;
  Print("Decrypt -> text", box.GetString(L"OutBuffer"));
  Print("Round trip", box.GetString(L"OutBuffer") == text ? L"identical" : L"DIFFERENT");
  return box.GetString(L"OutBuffer") == text;
}

}  // namespace

int main() {
  if (FAILED(OleInitialize(nullptr))) return 2;
  // Every window shown stays up a moment (BREVANTIS_DEMO_PAUSE_MS) and is closed.
  char pause[16] = {};
  const DWORD pauseMs = GetEnvironmentVariableA("BREVANTIS_DEMO_PAUSE_MS", pause, sizeof(pause)) ? atoi(pause) : 1500;
  ScreenPresenter presenter(pauseMs);
  const bool ok = ShowControl() && ShowCryptoBox();
  OleUninitialize();
  return ok ? 0 : 1;
}
