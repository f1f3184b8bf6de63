// Finding the default browser and opening addresses: the buffer rules and
// command lines with the recording platform, then the real shell of the
// prefix starting the project's fake browser.
#include <gtest/gtest.h>

#include <iterator>

#include "com/raii.h"
#include "com/text.h"
#include "testkit/local_http_server.h"
#include "testkit/recording_platform.h"
#include "web/browser.h"
#include "web/connection_assistant.h"
#include "web_test_support.h"

using namespace brevantis;
using namespace brevantis::testing;

namespace {

constexpr HRESULT kPathNotFound = static_cast<HRESULT>(0x800A004C);
constexpr HRESULT kPathFileAccessError = static_cast<HRESULT>(0x800A004B);

std::wstring ErrorDescription() {
  ComPtr<IErrorInfo> info;
  Bstr description;
  if (GetErrorInfo(0, info.Out()) == S_OK) info->GetDescription(description.Out());
  return FromBstr(description.Get());
}

// Records what the probe file held when the shell was asked about it.
struct ProbeReadingPlatform : RecordingPlatform {
  std::string probeContents;
  UINT_PTR LookUpExecutable(const std::wstring& file, std::wstring* buffer) override {
    FileHandle probe(CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    probeContents.assign(64, '\0');
    DWORD read = 0;
    if (probe) ReadFile(probe.Get(), &probeContents[0], 64, &read, nullptr);
    probeContents.resize(read);
    return RecordingPlatform::LookUpExecutable(file, buffer);
  }
};

class Browser : public ::testing::Test {
 protected:
  void SetUp() override {
    CurrentAssistantState().dialUpUnavailable = false;
    facts_.tempFolder = temp_.Path();
  }
  const std::wstring webSite_ = L"http://www.example.com/sito";
  WebFacts facts_;
  std::wstring Found() {
    std::wstring browser = L"unchanged";
    EXPECT_EQ(S_OK, FindDefaultBrowser(facts_.tempFolder, &browser));
    EXPECT_EQ(0u, HtmFilesIn(temp_.Path()));
    return browser;
  }
  // The folder of the file the shell was last asked about.
  std::wstring LookupFolder() const {
    const std::wstring& file = platform_.executableLookups.back();
    EXPECT_EQ(L".htm", file.substr(file.size() - 4));
    return file.substr(0, file.rfind(L'\\'));
  }

  ScratchFolder temp_;
  ProbeReadingPlatform platform_;
};

TEST_F(Browser, ThePathEndsAfterTheFirstExeAndKeepsItsCase) {
  ScopedPlatform scope(&platform_);
  platform_.executable = L"C:\\Program Files\\Browser\\browser.exe";
  EXPECT_EQ(L"C:\\Program Files\\Browser\\browser.exe", Found());
  ASSERT_EQ(1u, platform_.executableLookups.size());
  EXPECT_EQ(temp_.Path(), LookupFolder());
  EXPECT_EQ("\"<HTML> <\\HTML>\"\r\n", platform_.probeContents);

  platform_.executable = L"C:\\B\\BROWSER.EXE -nohome";
  EXPECT_EQ(L"C:\\B\\BROWSER.EXE", Found());
  platform_.executable = L"C:\\Tools\\exec\\browser.exe";
  EXPECT_EQ(L"C:\\Tools\\exe", Found());
  platform_.executable = L"C:\\B\\browser.com";  // no "exe": two characters
  EXPECT_EQ(L"C:", Found());
  platform_.executable = L"  C:\\B\\b.exe";
  EXPECT_EQ(L"C:\\B\\b.exe", Found());
  platform_.executableCode = 32;  // no association
  EXPECT_EQ(L"", Found());
}

TEST_F(Browser, ProbeFileErrorsReachTheHostAsFileErrors) {
  ScopedPlatform scope(&platform_);
  std::wstring browser;
  facts_.tempFolder = temp_.Path() + L"\\missing";
  EXPECT_EQ(kPathNotFound, FindDefaultBrowser(facts_.tempFolder, &browser));
  EXPECT_EQ(L"Path not found", ErrorDescription());
  EXPECT_TRUE(platform_.executableLookups.empty());

}

// The probe is a new file of its own: a user's file of any name is never
// written or deleted, and a control that learnt no folder asks the system.
TEST_F(Browser, TheProbeFileIsNewAndTheControlsOwn) {
  ScopedPlatform scope(&platform_);
  const std::wstring users = temp_.Path() + L"\\TEST.HTM";
  WriteTextFile(users, "someone else's");
  std::wstring browser;
  EXPECT_EQ(S_OK, FindDefaultBrowser(facts_.tempFolder, &browser));
  EXPECT_EQ(1u, HtmFilesIn(temp_.Path()));
  EXPECT_EQ(ReadTextFile(users), "someone else's");
  EXPECT_NE(users, platform_.executableLookups.back());

  facts_.tempFolder.clear();
  wchar_t system[MAX_PATH + 1] = {};
  GetTempPathW(MAX_PATH + 1, system);
  const size_t before = HtmFilesIn(system);
  EXPECT_EQ(S_OK, FindDefaultBrowser(facts_.tempFolder, &browser));
  EXPECT_EQ(std::wstring(system), LookupFolder() + L"\\");
  EXPECT_EQ(before, HtmFilesIn(system));
}

TEST_F(Browser, AProbeFileThatCannotBeDeletedIsAnAccessError) {
  struct HoldingPlatform : RecordingPlatform {
    FileHandle held;
    UINT_PTR LookUpExecutable(const std::wstring& file, std::wstring* buffer) override {
      held.Reset(CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                             0, nullptr));
      return RecordingPlatform::LookUpExecutable(file, buffer);
    }
  } platform;
  ScopedPlatform scope(&platform);
  platform.executable = L"C:\\B\\b.exe";
  std::wstring browser = L"unchanged";
  EXPECT_EQ(kPathFileAccessError, FindDefaultBrowser(facts_.tempFolder, &browser));
  EXPECT_TRUE(platform.held);
  EXPECT_EQ(L"", browser);
}

// With a server that answers the probe, so the Internet is reachable.
class OpeningAddresses : public Browser {
 protected:
  LocalHttpServer server_{LocalHttpServer::Behaviour::Answer, "Brevantis online"};
  ProbeSettings settings_{server_.Url()};
};

// The address is one argument that no browser reads as options: what could
// end it or pass for a quote is percent-encoded, and an address that starts
// like an option is not opened at all.
TEST_F(OpeningAddresses, TheAddressIsOneArgumentAfterThePath) {
  ScopedPlatform scope(&platform_);
  platform_.executable = L"C:\\B\\b.exe";
  const std::pair<std::wstring, std::wstring> cases[] = {
      {L"x", L"x"},
      {std::wstring(100000, L'u'), std::wstring(100000, L'u')},
      {L"http://a/b?c=%20&d=\u00e8", L"http://a/b?c=%20&d=\u00e8"},  // e-grave is in the code page
      {L"http://x --gpu-launcher=calc.exe --no-sandbox", L"http://x%20--gpu-launcher=calc.exe%20--no-sandbox"},
      {L"http://a/b?c=\"d e\"", L"http://a/b?c=%22d%20e%22"},
      {L"http://a/\uff02 -x", L"http://a/%EF%BC%82%20-x"},  // a full-width quote is no quote
      {L"http://a/\u4e2d\U0001F600", L"http://a/%E4%B8%AD%F0%9F%98%80"},
      {std::wstring(L"a\0b\tc", 5), L"a%00b%09c"},
  };
  for (const auto& [address, argument] : cases) {
    bool opened = false;
    EXPECT_EQ(S_OK, OpenUrlInBrowser(address, facts_, &opened));
    EXPECT_TRUE(opened);
    EXPECT_EQ(L"C:\\B\\b.exe " + argument, platform_.processes.back().commandLine);
    EXPECT_EQ(1, platform_.processes.back().showCommand);
    EXPECT_EQ(0u, HtmFilesIn(temp_.Path()));
  }
  for (const wchar_t* option : {L"-x", L"--no-sandbox http://a/", L"/x"}) {
    bool opened = true;
    EXPECT_EQ(S_OK, OpenUrlInBrowser(option, facts_, &opened));
    EXPECT_FALSE(opened);
  }
  EXPECT_EQ(std::size(cases), platform_.processes.size());

  // Quoted only when the path holds a space.
  platform_.executable = L"C:\\Program Files\\B\\b.exe";
  bool opened = false;
  EXPECT_EQ(S_OK, OpenUrlInBrowser(L"x", facts_, &opened));
  EXPECT_EQ(L"\"C:\\Program Files\\B\\b.exe\" x", platform_.processes.back().commandLine);
  EXPECT_GT(server_.Requests(), 0);
}

TEST_F(OpeningAddresses, NoBrowserOrAFailedStartOpensNothing) {
  ScopedPlatform scope(&platform_);
  bool opened = true;
  platform_.executableCode = 2;
  EXPECT_EQ(S_OK, OpenUrlInBrowser(L"x", facts_, &opened));
  EXPECT_FALSE(opened);
  EXPECT_TRUE(platform_.processes.empty());

  platform_.executableCode = 33;
  platform_.executable = L"C:\\B\\b.exe";
  platform_.processStarts = false;
  EXPECT_EQ(S_OK, OpenUrlInBrowser(L"x", facts_, &opened));
  EXPECT_FALSE(opened);
  EXPECT_TRUE(platform_.messages.empty());
}

TEST_F(OpeningAddresses, OfflineTheAssistantIsOfferedAndNothingOpened) {
  ScopedPlatform scope(&platform_);
  platform_.connected = false;
  platform_.executable = L"C:\\B\\b.exe";
  bool opened = true;
  EXPECT_EQ(S_OK, OpenUrlInBrowser(L"x", facts_, &opened));
  EXPECT_FALSE(opened);
  EXPECT_EQ(0, server_.Requests());
  EXPECT_TRUE(platform_.executableLookups.empty());
  EXPECT_TRUE(platform_.processes.empty());
  ASSERT_EQ(1u, platform_.messages.size());  // no dial-up entries: the refusal
  EXPECT_EQ(48u, platform_.messages[0].style);
  EXPECT_TRUE(IsWindow(CurrentAssistantState().owner));

  // Once the dial-up library is known to be missing, nothing more is shown.
  CurrentAssistantState().dialUpUnavailable = true;
  EXPECT_EQ(S_OK, OpenUrlInBrowser(L"x", facts_, &opened));
  EXPECT_EQ(1u, platform_.messages.size());
  EXPECT_FALSE(opened);
}

// The real shell of the prefix and the project's fake browser.
class EndToEnd : public OpeningAddresses {
 protected:
  std::wstring Install(const std::wstring& relative) {
    const std::wstring program = temp_.Path() + relative;
    InstallFakeBrowser(program);
    return program;
  }
  std::string Ansi(const std::wstring& text) { return ToAnsi(text).c_str(); }
  bool Open(const std::wstring& argument) {
    bool opened = false;
    EXPECT_EQ(S_OK, OpenUrlInBrowser(WebConnectAddress(argument, webSite_), facts_, &opened));
    EXPECT_EQ(0u, HtmFilesIn(temp_.Path()));
    return opened;
  }
};

TEST_F(EndToEnd, TheRegisteredBrowserOpensTheAddressOrWebSiteURL) {
  const std::wstring program = Install(L"\\Browsers\\Fake\\FakeBrowser.EXE");
  HtmAssociation association(program);
  EXPECT_EQ(program, Found());
  const std::pair<std::wstring, std::string> cases[] = {
      {L"   ", " http://www.example.com/sito"}, {L" x ", " x"}, {L"http://a/?q=\"1 2\"&r=%41", " http://a/?q=%221%202%22&r=%41"}};
  size_t started = 0;
  for (const auto& [argument, expected] : cases) {
    ASSERT_TRUE(Open(argument));
    // One at a time: browsers started together may write in any order.
    const auto lines = BrowserCommandLines(program, ++started);
    ASSERT_EQ(started, lines.size());
    EXPECT_EQ(Ansi(program) + expected, lines.back());
  }
}

TEST_F(EndToEnd, APathWithASpaceIsQuotedOnTheCommandLine) {
  const std::wstring program = Install(L"\\Program Files\\Fake Browser\\fake.exe");
  Install(L"\\Program.exe");  // what an unquoted command line would run first
  HtmAssociation association(program);
  ASSERT_TRUE(Open(L"x"));
  const auto lines = BrowserCommandLines(program);
  ASSERT_EQ(1u, lines.size());
  EXPECT_EQ("\"" + Ansi(program) + "\" x", lines[0]);
  EXPECT_FALSE(FileExists(temp_.Path() + L"\\command_lines.txt"));
}

TEST_F(EndToEnd, BadPathsAndAddressesOpenNothing) {
  // Cut after the "exe" of "exec": a program that does not exist.
  const std::wstring program = Install(L"\\exec\\fake.exe");
  HtmAssociation association(program);
  EXPECT_EQ(temp_.Path() + L"\\exe", Found());
  EXPECT_FALSE(Open(L"x"));

  // Longer than any command line can be.
  const std::wstring good = Install(L"\\Good\\fake.exe");
  HtmAssociation goodAssociation(good);
  EXPECT_FALSE(Open(std::wstring(100000, L'u')));
}

TEST_F(EndToEnd, WithoutAnAssociationThereIsNoBrowser) {
  EXPECT_EQ(L"", Found());  // the prefix has none of its own
  EXPECT_FALSE(Open(L"x"));
}

}  // namespace
