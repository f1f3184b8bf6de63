// The CD catalogue opener: the drive search over scripted drive lists, the
// request for the CD, and the page on drive D: (a CD-ROM of the test prefix)
// opened in the project's fake browser.
#include <gtest/gtest.h>

#include "com/text.h"
#include "testkit/recording_platform.h"
#include "web/cd_catalogue.h"
#include "web_test_paths.h"
#include "web_test_support.h"

using namespace brevantis;
using namespace brevantis::testing;

namespace {

std::wstring Roots(const wchar_t* letters) {
  std::wstring list;
  for (const wchar_t* letter = letters; *letter; ++letter) list += std::wstring{*letter, L':', L'\\', L'\0'};
  return list;
}

std::wstring Root(wchar_t letter) { return std::wstring{letter, L':', L'\\', L'\0'}; }

// The prefix's real drives, everything else recorded.
struct RealDrivesPlatform : RecordingPlatform {
  DWORD ListDriveRoots(std::wstring* buffer) override { return Win32Platform().ListDriveRoots(buffer); }
  UINT DriveKind(const std::wstring& root) override { return Win32Platform().DriveKind(root); }
};

class Catalogue : public ::testing::Test {
 protected:
  void SetUp() override {
    facts_ = {L"Atlante", L"Editrice", L"", temp_.Path()};
    platform_.executable = L"C:\\B\\b.exe";
    MakeFolders(kPage.substr(0, kPage.find_last_of(L'\\')));
    WriteTextFile(kPage, "<html></html>");
  }
  void TearDown() override { DeleteTree(std::wstring(CD_FOLDER_PATH) + L"\\zo"); }

  WebFacts facts_;
  std::wstring index_ = L"zo\\index.htm";  // CDIndexFile's default

  CdOutcome Open() {
    CdOutcome outcome = CdOutcome::Opened;
    EXPECT_EQ(S_OK, OpenCatalogueOnCd(index_, facts_, &outcome));
    EXPECT_EQ(0u, HtmFilesIn(temp_.Path()));
    return outcome;
  }
  void ExpectAskedForCd() {
    EXPECT_EQ(CdOutcome::AskedForCd, Open());
    ASSERT_EQ(1u, platform_.messages.size());
    EXPECT_EQ(L"Inserire il CD di Atlante nel lettore CD-ROM.", platform_.messages[0].text);
    EXPECT_EQ(L"Catalogo Editrice su CD", platform_.messages[0].caption);
    EXPECT_EQ(0u, platform_.messages[0].style);
    EXPECT_EQ(std::vector<std::wstring>{L"set CDAudio door open"}, platform_.mciCommands);
    EXPECT_TRUE(platform_.processes.empty());
    EXPECT_TRUE(platform_.executableLookups.empty());
    platform_.messages.clear();
    platform_.mciCommands.clear();
  }

  const std::wstring kPage = std::wstring(CD_FOLDER_PATH) + L"\\zo\\index.htm";
  ScratchFolder temp_;
  RealDrivesPlatform platform_;
};

TEST_F(Catalogue, TheFirstCdRomDriveWinsElseTheLastRoot) {
  RecordingPlatform platform;
  ScopedPlatform scope(&platform);
  platform.driveStrings = Roots(L"ACDE");
  platform.driveTypes = {{L"D:\\", DRIVE_CDROM}, {L"E:\\", DRIVE_CDROM}};
  EXPECT_EQ(Root(L'D'), FindCdRomDrive());
  EXPECT_EQ((std::vector<std::wstring>{L"A:\\", L"C:\\", L"D:\\"}), platform.driveTypeQueries);

  platform.driveStrings = Roots(L"acz");  // upper-cased on the way out
  EXPECT_EQ(Root(L'Z'), FindCdRomDrive());
  platform.driveStrings.clear();
  EXPECT_EQ(L"", FindCdRomDrive());
  platform.driveTypes.clear();
  platform.driveStrings = Roots(L"ABCDEFGHIJKLMNO");  // 15 roots still fit
  EXPECT_EQ(Root(L'O'), FindCdRomDrive());
}

TEST_F(Catalogue, WithoutACdRomDriveThePageOnTheLastRootOpens) {
  RecordingPlatform platform;
  ScopedPlatform scope(&platform);
  platform.executable = L"C:\\B\\b.exe";
  platform.driveStrings = Roots(L"ACZ");
  const std::wstring onZ = kPage.substr(3);  // the page's path after Z:\ ...
  index_ = onZ;
  EXPECT_EQ(CdOutcome::Opened, Open());
  ASSERT_EQ(1u, platform.processes.size());
  EXPECT_EQ(L"C:\\B\\b.exe \"Z:\\" + onZ + L"\"", platform.processes[0].commandLine);
}

TEST_F(Catalogue, SixteenRootsOrMoreEndTheSearch) {
  RecordingPlatform platform;
  ScopedPlatform scope(&platform);
  for (const wchar_t* letters : {L"ABCDEFGHIJKLMNOP", L"ABCDEFGHIJKLMNOPQRSTUVWXYZ"}) {
    platform.driveStrings = Roots(letters);
    platform.driveTypeQueries.clear();
    EXPECT_EQ(L"", FindCdRomDrive());
    EXPECT_TRUE(platform.driveTypeQueries.empty());
  }
}

TEST_F(Catalogue, TheRealCdRomDriveOpensInTheRegisteredBrowser) {
  EXPECT_EQ(Root(L'D'), FindCdRomDrive());
  const std::wstring program = temp_.Path() + L"\\Browser\\fake.exe";
  InstallFakeBrowser(program);
  HtmAssociation association(program);
  EXPECT_EQ(CdOutcome::Opened, Open());
  const auto lines = BrowserCommandLines(program);
  ASSERT_EQ(1u, lines.size());
  EXPECT_EQ(ToAnsi(program).c_str() + std::string(" \"D:\\zo\\index.htm\""), lines[0]);
}

TEST_F(Catalogue, WithoutThePageTheTrayOpensAndTheCdIsAskedFor) {
  ScopedPlatform scope(&platform_);
  DeleteFileW(kPage.c_str());
  ExpectAskedForCd();

  WriteTextFile(kPage, "<html></html>");
  for (const std::wstring& index : {std::wstring(10000, L'a'), std::wstring(L"zo"), std::wstring(L"zo\\ind\x0416x.htm")}) {
    index_ = index;
    ExpectAskedForCd();
  }
}

// The page is one quoted argument: the drive's root and CDIndexFile. A
// CDIndexFile that would leave the CD's root, or smuggle words past a ".."
// the system resolves away, opens nothing (Error 200 for the host).
TEST_F(Catalogue, ThePageIsTheDriveRootAndCDIndexFileQuoted) {
  ScopedPlatform scope(&platform_);
  EXPECT_EQ(CdOutcome::Opened, Open());
  platform_.executable = L"C:\\Program Files\\B\\b.exe";
  EXPECT_EQ(CdOutcome::Opened, Open());
  ASSERT_EQ(2u, platform_.processes.size());
  EXPECT_EQ(L"C:\\B\\b.exe \"D:\\zo\\index.htm\"", platform_.processes[0].commandLine);
  EXPECT_EQ(L"\"C:\\Program Files\\B\\b.exe\" \"D:\\zo\\index.htm\"", platform_.processes[1].commandLine);
  EXPECT_EQ(1, platform_.processes[0].showCommand);
  for (const wchar_t* index : {L"x --gpu-launcher=calc\\..\\zo\\index.htm", L"zo/../zo/index.htm", L"..\\zo\\index.htm",
                               L"\\zo\\index.htm", L"/zo/index.htm", L"\\\\server\\share\\index.htm",
                               L"D:\\zo\\index.htm", L"zo\\index.htm:x"}) {
    index_ = index;
    EXPECT_EQ(CdOutcome::NoBrowser, Open()) << ToAnsi(index);
  }
  EXPECT_EQ(2u, platform_.processes.size());
  EXPECT_TRUE(platform_.messages.empty());
}

TEST_F(Catalogue, WithoutADriveCDIndexFileIsRelativeToTheCurrentFolder) {
  RecordingPlatform platform;
  ScopedPlatform scope(&platform);
  platform.executable = L"C:\\B\\b.exe";
  wchar_t previous[MAX_PATH] = {};
  GetCurrentDirectoryW(MAX_PATH, previous);
  SetCurrentDirectoryW(CD_FOLDER_PATH);
  const CdOutcome outcome = Open();
  SetCurrentDirectoryW(previous);
  EXPECT_EQ(CdOutcome::Opened, outcome);
  ASSERT_EQ(1u, platform.processes.size());
  EXPECT_EQ(L"C:\\B\\b.exe \"zo\\index.htm\"", platform.processes[0].commandLine);
}

TEST_F(Catalogue, NoBrowserIsReportedAndNothingStarts) {
  ScopedPlatform scope(&platform_);
  platform_.executableCode = 31;
  EXPECT_EQ(CdOutcome::NoBrowser, Open());
  EXPECT_TRUE(platform_.processes.empty());
  EXPECT_TRUE(platform_.messages.empty());

  ScopedPlatform real(nullptr);  // the prefix has no .htm association
  EXPECT_EQ(CdOutcome::NoBrowser, Open());
}

}  // namespace
