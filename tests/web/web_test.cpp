// The web and CD services with the strict fake platform, and end to end through the control and a fake browser.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "BrevantisLib_h.h"
#include "com/text.h"
#include "control/brevantis_control.h"
#include "testkit/local_http_server.h"
#include "testkit/recording_platform.h"
#include "testkit/test_container.h"
#include "web/browser.h"
#include "web/cd_catalogue.h"
#include "web/connection_assistant.h"
#include "web/web_resources.h"
#include "web_test_support.h"

using namespace brevantis;
using namespace brevantis::testing;

namespace {

using R = RecordingPlatform;
using Lines = std::vector<std::wstring>;
using Codes = std::vector<short>;
using Styles = std::vector<UINT>;
constexpr UINT kAsk = MB_YESNO | MB_ICONEXCLAMATION, kWarn = MB_OK | MB_ICONEXCLAMATION;

template <class T, class F>  // one field of each record, the records being forgotten
auto Take(std::vector<T>& records, F field) {
  std::vector<std::decay_t<decltype(records[0].*field)>> taken;
  for (const T& record : std::exchange(records, {})) taken.push_back(record.*field);
  return taken;
}

// Runs in the Windows 95 chooser's modal loop: the first entry selected, it chooses the second and presses OK.
void CALLBACK ChooseTheSecondEntry(HWND, UINT, UINT_PTR, DWORD) {
  const HWND chooser = FindWindowW(L"#32770", nullptr);
  if (chooser && SendDlgItemMessageW(chooser, IDC_RAS95_COMBO1, CB_GETCURSEL, 0, 0) == 0) {
    SendDlgItemMessageW(chooser, IDC_RAS95_COMBO1, CB_SETCURSEL, 1, 0);
    SendMessageW(chooser, WM_COMMAND, IDC_RAS95_COMMAND1, 0);
  }
}

class Web : public ::testing::Test {
 protected:
  void SetUp() override {
    CurrentAssistantState().dialUpUnavailable = false;
    OleInitialize(nullptr);
    ASSERT_EQ(S_OK, BrevantisControl::Create(IID__Brevantis, control_.OutVoid()));
    ASSERT_NE(0u, Connect(control_.Get(), DIID___Brevantis, sink_.As<IDispatch>()));
  }
  void TearDown() override {
    SetPlatform(nullptr);
    RegDeleteTreeW(HKEY_CLASSES_ROOT, L".htm");  // the prefix has no browser of its own
    control_.Reset();
    OleUninitialize();
    EXPECT_EQ(Lines{}, platform_.unexpected);
  }
  void Fake(unsigned expectedCalls) {
    platform_.expected = expectedCalls;
    SetPlatform(&platform_);
  }
  // A copy of this program (see main) registered for .htm files, and its log, read until it holds a line.
  std::wstring Browser(const std::wstring& relative) {
    wchar_t self[MAX_PATH] = {};
    const std::wstring exe = temp_.Path() + relative;
    CreateDirectoryW(exe.substr(0, exe.rfind(L'\\')).c_str(), nullptr);
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    CopyFileW(self, exe.c_str(), FALSE);
    RegSetValueW(HKEY_CLASSES_ROOT, L".htm", REG_SZ, L"htmlfile", 0);
    RegSetValueW(HKEY_CLASSES_ROOT, L"htmlfile\\shell\\open\\command", REG_SZ, (L"\"" + exe + L"\" \"%1\"").c_str(), 0);
    return exe;
  }
  static std::vector<std::string> CommandLines(const std::wstring& program) {
    std::vector<std::string> lines;
    for (int attempt = 0; attempt < 200 && lines.empty(); Sleep(50), ++attempt) {
      std::ifstream log((program.substr(0, program.rfind(L'\\')) + L"\\command_lines.txt").c_str());
      for (std::string line; std::getline(log, line);) lines.push_back(line);
    }
    return lines;
  }
  Codes Errors() { return Take(sink_->events, &ErrorEventSink::Event::code); }

  ScratchFolder temp_;
  LocalHttpServer server_{LocalHttpServer::Behaviour::Answer, "Brevantis online"};
  ProbeSettings online_{server_.Url()};
  WebFacts facts_{L"Atlante", L"Editrice", L"Microsoft Windows XP", temp_.Path()};
  R platform_;
  ComPtr<_Brevantis> control_;
  Owned<ErrorEventSink> sink_;
};

TEST_F(Web, TheBrowserPathEndsAfterTheFirstExeAndKeepsItsCase) {
  Fake(R::kExecutable);
  std::wstring browser;
  const struct { const wchar_t* shellSays; UINT_PTR code; const wchar_t* browser; } cases[] = {
      {L"C:\\Program Files\\B\\b.exe", 33, L"C:\\Program Files\\B\\b.exe"}, {L"C:\\B\\B.EXE -x", 42, L"C:\\B\\B.EXE"},
      {L"C:\\Tools\\exec\\b.exe", 33, L"C:\\Tools\\exe"}, {L"C:\\B\\b.com", 33, L"C:"} /* no "exe": two characters */,
      {L"C:\\B\\b.exe", 32, L""} /* 32 and below: no association */, {L"  C:\\B\\b.exe", 33, L"C:\\B\\b.exe"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(ToAnsi(c.shellSays));
    platform_.executable = c.shellSays;
    platform_.executableCode = c.code;
    EXPECT_EQ(S_OK, FindDefaultBrowser(temp_.Path(), &browser));
    EXPECT_EQ(c.browser, browser);
    EXPECT_EQ(0u, platform_.executableLookups.back().find(temp_.Path() + L"\\"));  // the probe, then deleted
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(platform_.executableLookups.back().c_str()));
  }
  EXPECT_EQ(static_cast<HRESULT>(0x800A004C), FindDefaultBrowser(temp_.Path() + L"\\gone", &browser));  // file error 76
  EXPECT_EQ(L"", browser);
}

// What could end the address or pass for a quote is encoded; one like an option is not opened.
TEST_F(Web, TheAddressIsOneArgumentAfterThePath) {
  Fake(R::kConnectedState | R::kExecutable | R::kProcess);
  platform_.executable = L"C:\\B\\b.exe";
  const std::pair<std::wstring, std::wstring> cases[] = {
      {L"x", L"x"}, {std::wstring(100000, L'u'), std::wstring(100000, L'u')}, {L"a\"b c", L"a%22b%20c"},
      {L"http://a/?c=%20&d=\u00e8", L"http://a/?c=%20&d=\u00e8"} /* e-grave: in the code page */,
      {L"http://x --gpu-launcher=calc", L"http://x%20--gpu-launcher=calc"}, {std::wstring(L"a\0b\tc", 5), L"a%00b%09c"},
      {L"http://a/\uff02", L"http://a/%EF%BC%82"} /* a full-width quote is no quote */,
      {L"\u4e2d\U0001F600", L"%E4%B8%AD%F0%9F%98%80"}, {L"-x", L""}, {L"--x http://a/", L""}, {L" /x", L""},
  };
  for (const auto& [address, arg] : cases) {
    SCOPED_TRACE(ToAnsi(address.substr(0, 40)));
    bool opened = arg.empty();
    EXPECT_EQ(S_OK, OpenUrlInBrowser(address, facts_, &opened));
    EXPECT_EQ(!arg.empty(), opened);
    EXPECT_EQ(Lines(!arg.empty(), L"C:\\B\\b.exe " + arg), Take(platform_.processes, &R::Process::commandLine));
  }
}

// On Windows 95 the chooser dials the chosen entry through the shell's dialler.
TEST_F(Web, TheAssistantDialsTheDefaultConnectionOnYesOrRefuses) {
  Fake(R::kMessage | R::kDialUpList | R::kConnectedState | R::kDial | R::kProcess);
  platform_.connected = false;  // of the state, only the RAS flag counts
  SetTimer(nullptr, 0, 50, ChooseTheSecondEntry);
  platform_.processStarts = false;  // the chooser then says the machine cannot dial
  const struct { const wchar_t* os; Lines entries; DWORD flags; bool loads; int answer; Styles styles; } cases[] = {
      {L"XP", {L"Ufficio", L"Casa"}, 0x12, true, IDNO, {kAsk}}, {L"XP", {L"Casa"}, 0x10, true, IDYES, {kAsk}},
      {L"XP", {}, 0x12, true, IDYES, {kWarn}} /* nothing to dial */, {L"XP", {L"Casa"}, 0x02, true, IDYES, {kWarn}},
      {L"Win 95", {}, 0x12, true, IDYES, {kWarn}}, {L"Win 95", {L"Ufficio", L"Casa"}, 0x12, true, IDYES, {kAsk, kWarn}},
      {L"XP", {L"Casa"}, 0x12, false, IDYES, {kWarn, kWarn}},  // no dial-up library: "not configured", refused...
      {L"XP", {L"Casa"}, 0x12, true, IDYES, {}},                // ... and never offered again
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    facts_.osName = c.os;
    platform_.dialUpEntries = c.entries;
    platform_.connectedFlags = c.flags;
    platform_.rasLibraryLoads = c.loads;
    platform_.answers = {c.answer};
    ShowConnectionAssistant(facts_);
    for (const auto& message : platform_.messages) EXPECT_EQ(L"Atlante - Connessione ad Internet", message.caption);
    EXPECT_EQ(c.styles, Take(platform_.messages, &R::Message::style));
  }
  ASSERT_EQ(1u, platform_.dials.size());  // the default connection, forced online, owned by a hidden window
  EXPECT_TRUE(platform_.dials[0].connection.empty() && platform_.dials[0].flags == 1);
  EXPECT_TRUE(IsWindow(platform_.dials[0].parent) && platform_.dials[0].parent == CurrentAssistantState().owner);
  const std::wstring windows = _wgetenv(L"windir");  // the dialler and its library by full paths
  EXPECT_EQ(Lines{L"\"" + windows + L"\\rundll.exe\" " + windows + L"\\system32\\rnaui.dll,RnaDial \"Casa\""},
            Take(platform_.processes, &R::Process::commandLine));
}

// Any answer (a portal's redirect, a proxy's login) is reachable; silence within the bound is offline.
TEST_F(Web, ReachableUnlessThereIsSurelyNoWayOut) {
  using B = LocalHttpServer::Behaviour;
  LocalHttpServer redirect(B::Redirect, "x"), login(B::ProxyLogin, "Log in"), silent(B::Silent);
  const std::pair<std::wstring, bool> cases[] = {{server_.Url(), true}, {redirect.Url(), true}, {login.Url(), true},
      {silent.Url(), false}, {L"http://127.0.0.1:" + std::to_wstring(LocalHttpServer::ClosedPort()) + L"/", false},
      {L"http://brevantis-probe.invalid/", false}};
  for (const auto& [url, reachable] : cases) {
    ProbeSettings settings(url);
    EXPECT_EQ(reachable, IsInternetReachable()) << ToAnsi(url);
  }
  for (auto* server : {&server_, &redirect, &login, &silent}) EXPECT_EQ(1, server->Requests());
}

// The page is the first CD-ROM's root (else the last root's; with no list that fits, none) and
// CDIndexFile, quoted, which may not leave the root. Without the page the tray opens and the CD is asked for.
TEST_F(Web, TheCataloguePageOpensOnTheCdRomOrTheCdIsAskedFor) {
  Fake(R::kDrives | R::kExecutable | R::kProcess | R::kMessage | R::kMci);
  platform_.executable = L"C:\\B\\b.exe";
  platform_.driveTypes = {{L"D:\\", DRIVE_CDROM}, {L"F:\\", DRIVE_CDROM}};
  SetCurrentDirectoryW(L"D:\\");  // where a CDIndexFile is looked for when there is no drive
  const std::wstring page = L"zo\\index.htm", onD = L"\"D:\\" + page + L"\"", here = L"\"" + page + L"\"";
  const std::wstring prompt = L"Inserire il CD di Atlante nel lettore CD-ROM.", longName(10000, L'a');
  const CdOutcome opened = CdOutcome::Opened, asked = CdOutcome::AskedForCd, refused = CdOutcome::NoBrowser;
  const struct { const wchar_t* roots; std::wstring index; std::wstring opens; CdOutcome outcome; } cases[] = {
      {L"CDF", page, onD, opened}, {L"ACd", page, onD, opened}, {L"FD", page, L"", asked}, {L"", page, here, opened},
      {L"ABCEGHIJKLMNOPD", page, onD, opened}, {L"ABCEGHIJKLMNOPQD", page, here, opened} /* 15 roots fit, 16 not */,
      {L"D", L"zo", L"", asked}, {L"D", longName, L"", asked}, {L"D", L"zo\\ind\x0416x.htm", L"", asked} /* not ANSI */,
      {L"D", L"x --no-sandbox\\..\\" + page, L"", refused}, {L"D", L"zo/../" + page, L"", refused},
      {L"D", L"\\" + page, L"", refused}, {L"D", L"//s/" + page, L"", refused}, {L"D", page + L":x", L"", refused},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(ToAnsi(c.roots) + " " + ToAnsi(c.index).substr(0, 40));
    platform_.driveStrings.clear();
    for (wchar_t letter : std::wstring(c.roots)) platform_.driveStrings += {letter, L':', L'\\', L'\0'};
    CdOutcome outcome = c.outcome == asked ? refused : asked;
    EXPECT_EQ(S_OK, OpenCatalogueOnCd(c.index, facts_, &outcome));
    EXPECT_EQ(c.outcome, outcome);
    EXPECT_EQ(Lines(!c.opens.empty(), L"C:\\B\\b.exe " + c.opens), Take(platform_.processes, &R::Process::commandLine));
    EXPECT_EQ(Lines(c.outcome == asked, L"set CDAudio door open"), std::exchange(platform_.mciCommands, {}));
    EXPECT_EQ(Lines(c.outcome == asked, prompt), Take(platform_.messages, &R::Message::text));
  }
}

// What only a real start shows; a page not opened is Error 200, as offline, after the assistant. D: is a CD-ROM.
TEST_F(Web, WebConnectAndOpenCdOpenInTheRegisteredBrowserOrRaiseError200) {
  Fake(R::kConnectedState | R::kDialUpList | R::kMessage);
  platform_.connected = false;
  ASSERT_EQ(S_OK, control_->WebConnect(Bstr(L"x").Get()));
  EXPECT_EQ(Styles{kWarn}, Take(platform_.messages, &R::Message::style));  // no entries: the refusal
  EXPECT_EQ(Codes{200}, Errors());
  EXPECT_EQ(0, server_.Requests());
  SetPlatform(nullptr);
  ASSERT_EQ(S_OK, control_->OpenCD());
  EXPECT_EQ(Codes{200}, Errors());  // the page is there, no browser
  ASSERT_EQ(S_OK, control_->put_WebSiteURL(Bstr(L"http://www.example.com/sito").Get()));
  const struct { const wchar_t* browser; std::wstring argument; const char* line; } cases[] = {  // "@": the path
      {nullptr, L"x", nullptr} /* no association */, {L"\\A\\FakeBrowser.EXE", L"   ", "@ http://www.example.com/sito"},
      {L"\\B\\fake.exe", L" x ", "@ x"}, {L"\\Program Files\\fake.exe", L"x", "\"@\" x"},
      {L"\\exec\\fake.exe", L"x", nullptr},  // cut after the "exe" of "exec": no such program
      {L"\\C\\fake.exe", std::wstring(100000, L'u'), nullptr},  // longer than any command line
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.browser ? ToAnsi(c.browser) : "none");
    const std::wstring program = c.browser ? Browser(c.browser) : L"";
    ASSERT_EQ(S_OK, control_->WebConnect(Bstr(c.argument.c_str()).Get()));
    std::string line = c.line ? c.line : "";
    if (c.line) {
      EXPECT_EQ(std::vector<std::string>{line.replace(line.find('@'), 1, ToAnsi(program))}, CommandLines(program));
    }
    EXPECT_EQ(c.line ? Codes{} : Codes{200}, Errors());
  }
  ASSERT_EQ(S_OK, control_->OpenCD());  // in \C\fake.exe, which opened nothing so far
  EXPECT_EQ(std::vector<std::string>{ToAnsi(temp_.Path()) + "\\C\\fake.exe \"D:\\zo\\index.htm\""},
            CommandLines(temp_.Path() + L"\\C\\fake.exe"));
  EXPECT_EQ(Codes{}, Errors());
}

}  // namespace

// A copy of this program stands in for the browser: started with an address, it appends its command line, as it
// received it, to command_lines.txt beside itself.
int main(int argc, char** argv) {
  if (argc == 1 || std::string(argv[1]).rfind("--gtest", 0) == 0) {
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
  }
  const std::string path = argv[0];  // the full path the shell gave
  std::ofstream(path.substr(0, path.rfind('\\')) + "\\command_lines.txt", std::ios::app) << GetCommandLineA() << '\n';
}
