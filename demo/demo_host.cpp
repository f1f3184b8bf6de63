// The demo host: creates the control and the crypto filter box by ProgID, as
// a script host would, sets and reads some of their properties and prints them.
#include <windows.h>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "BrevantisLib_h.h"
#include "com/text.h"
#include "demo/screen_presenter.h"
#include "testkit/dispatch_client.h"
#include "testkit/local_http_server.h"

using brevantis::DispatchClient;
using brevantis::ToUtf8;

namespace {

void Print(const char* label, const std::wstring& value) {
  std::printf("  %-22s %s\n", label, ToUtf8(value).c_str());
}

// Calls a method by name; false (and a line saying why) when it fails.
bool CallMethod(DispatchClient& object, const wchar_t* name) {
  const HRESULT hr = object.Call(name, DISPATCH_METHOD, nullptr, 0, nullptr);
  if (FAILED(hr)) std::printf("  %s failed: 0x%08lX\n", ToUtf8(name).c_str(), static_cast<unsigned long>(hr));
  return SUCCEEDED(hr);
}

// Lets the host's message loop run for a while, as a program's would: the
// splash screen closes on a timer that this loop delivers.
void PumpMessages(DWORD milliseconds) {
  const DWORD end = GetTickCount() + milliseconds;
  while (static_cast<LONG>(end - GetTickCount()) > 0) {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
    Sleep(10);
  }
}

bool ShowScreens(DispatchClient& control) {
  std::printf("The screens (each stays up a moment, then the demo closes it)\n");
  std::printf("  ShowSplashScreen: closes itself after SplashScreenInterval\n");
  if (!CallMethod(control, L"ShowSplashScreen")) return false;
  PumpMessages(1500);
  std::printf("  ShowAbout\n");
  if (!CallMethod(control, L"ShowAbout")) return false;
  std::printf("  About: the control's own about box\n");
  return CallMethod(control, L"About");
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
    Print(ToUtf8(name).c_str(), control.GetString(name));
  }
  EXCEPINFO error = {};
  hr = control.PutString(L"OSName", L"Something else", &error);
  std::printf("  %-22s 0x%08lX %s\n", "put OSName ->", static_cast<unsigned long>(error.scode),
              ToUtf8(brevantis::FromBstr(error.bstrDescription)).c_str());
  SysFreeString(error.bstrSource);
  SysFreeString(error.bstrDescription);
  SysFreeString(error.bstrHelpFile);
  control.PutString(L"Author2", L"Marco Bellini");
  control.PutString(L"CopyrightToDate", L"2026");
  VARIANT number;
  VariantInit(&number);
  V_VT(&number) = VT_I4;
  V_I4(&number) = 2;
  control.Put(L"ProgramMajor", number);
  V_I4(&number) = 7;
  control.Put(L"ProgramRevision", number);
  return ShowScreens(control);
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

// A property bag with nothing saved: loading from it is what a form does for
// a control placed with its defaults, and it teaches the control this
// machine's folders.
class EmptyBag : public IPropertyBag {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IPropertyBag)) {
      *out = this;
      return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP Read(LPCOLESTR, VARIANT*, IErrorLog*) override { return E_INVALIDARG; }
  STDMETHODIMP Write(LPCOLESTR, VARIANT*) override { return S_OK; }
};

// Prints the control's Error events, as a host's handler would show them.
class ErrorPrinter : public IDispatch {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) || IsEqualIID(iid, DIID___Brevantis)) {
      *out = this;
      return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override { *count = 0; return S_OK; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT*, EXCEPINFO*, UINT*) override {
    if (id == 1 && params && params->cArgs == 2)
      std::printf("    [Error event] %d: %s\n", *V_I2REF(&params->rgvarg[1]),
                  ToUtf8(brevantis::FromBstr(*V_BSTRREF(&params->rgvarg[0]))).c_str());
    return S_OK;
  }
};

// Points the control's reachability probe at the demo's own server, for the
// demo's run only.
class ProbeAt {
 public:
  explicit ProbeAt(const std::wstring& url) {
    RegCreateKeyExW(HKEY_CURRENT_USER, kKey, 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key_, nullptr);
    Set(url);
  }
  ~ProbeAt() {
    RegDeleteValueW(key_, L"ProbeUrl");
    RegCloseKey(key_);
  }
  void Set(const std::wstring& url) {
    RegSetValueExW(key_, L"ProbeUrl", 0, REG_SZ, reinterpret_cast<const BYTE*>(url.c_str()),
                   static_cast<DWORD>((url.size() + 1) * sizeof(wchar_t)));
  }

 private:
  static constexpr const wchar_t* kKey = L"Software\\Ostrel\\Brevantis";
  HKEY key_ = nullptr;
};

// The line the demo browser notes for its n-th page, waiting a little for it.
std::string BrowserLog(size_t line) {
  char temp[MAX_PATH] = {};
  GetTempPathA(MAX_PATH, temp);
  const std::string path = std::string(temp) + "brevantis-demo-browser.log";
  for (int i = 0; i < 200; ++i) {
    if (FILE* log = std::fopen(path.c_str(), "rb")) {
      char text[1024];
      size_t n = 0;
      while (std::fgets(text, sizeof(text), log))
        if (++n == line) {
          std::fclose(log);
          std::string found(text);
          while (!found.empty() && (found.back() == '\n' || found.back() == '\r')) found.pop_back();
          return found;
        }
      std::fclose(log);
    }
    Sleep(50);
  }
  return "(the browser noted nothing)";
}

bool ShowWebConnect() {
  std::printf("WebConnect, with the demo's own web site on 127.0.0.1\n");
  const std::string page =
      "<html><head><title>Ostrel Edizioni: Brevantis</title></head><body>Brevantis online</body></html>";
  brevantis::testing::LocalHttpServer server(brevantis::testing::LocalHttpServer::Behaviour::Answer, page);
  ProbeAt probe(server.Url());
  char temp[MAX_PATH] = {};
  GetTempPathA(MAX_PATH, temp);
  DeleteFileA((std::string(temp) + "brevantis-demo-browser.log").c_str());

  DispatchClient control;
  if (FAILED(control.Create(L"BrevantisLib.Brevantis"))) return false;
  brevantis::ComPtr<IPersistPropertyBag> persist;
  EmptyBag bag;
  if (FAILED(control.Get()->QueryInterface(IID_IPersistPropertyBag, persist.OutVoid())) ||
      FAILED(persist->Load(&bag, nullptr)))
    return false;
  ErrorPrinter printer;
  brevantis::ComPtr<IConnectionPointContainer> container;
  brevantis::ComPtr<IConnectionPoint> point;
  DWORD cookie = 0;
  control.Get()->QueryInterface(IID_IConnectionPointContainer, container.OutVoid());
  if (container) container->FindConnectionPoint(DIID___Brevantis, point.Out());
  if (point) point->Advise(&printer, &cookie);

  const std::wstring site = server.Url().substr(0, server.Url().rfind(L'/') + 1);
  control.PutString(L"WebSiteURL", site.c_str());
  Print("WebSiteURL", site);
  if (!CallMethod(control, L"WebConnect")) return false;
  Print("browser opened", std::wstring(L"") + brevantis::FromAnsi(BrowserLog(1)));

  std::printf("  Now the probe's host name does not resolve: the machine counts as offline\n");
  probe.Set(L"http://brevantis-probe.invalid/probe");
  if (!CallMethod(control, L"WebConnect")) return false;
  if (point) point->Unadvise(cookie);
  return true;
}

}  // namespace

int main() {
  if (FAILED(OleInitialize(nullptr))) return 2;
  // Every window shown stays up a moment (BREVANTIS_DEMO_PAUSE_MS) and is closed.
  char pause[16] = {};
  const DWORD pauseMs = GetEnvironmentVariableA("BREVANTIS_DEMO_PAUSE_MS", pause, sizeof(pause)) ? atoi(pause) : 1500;
  ScreenPresenter presenter(pauseMs);
  const bool ok = ShowControl() && ShowCryptoBox() && ShowWebConnect();
  OleUninitialize();
  return ok ? 0 : 1;
}
