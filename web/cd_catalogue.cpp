// Opens the catalogue page on the program's CD in the default browser, or
// opens the tray and asks for the CD.
#include "web/cd_catalogue.h"

#include <algorithm>

#include "com/failure.h"
#include "com/raii.h"
#include "com/text.h"
#include "platform/platform.h"
#include "web/browser.h"

namespace brevantis {
namespace {

// The system is asked once, into 64 characters: up to 15 roots fit.
constexpr size_t kDriveListLength = 64;

// Whether path names a file that can be opened for reading; its contents are
// not read. A folder, a missing file or a name the code page cannot carry
// all count as absent.
bool CanOpenForReading(const std::wstring& path) {
  const std::string name = ToAnsi(path);
  FileHandle file(CreateFileA(name.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr));
  return static_cast<bool>(file);
}

// A catalogue name from a saved form is data: a path below the CD's root and
// nothing else. ".." segments (which the system would resolve away before
// the file is found), another drive or stream (":") and a root or server of
// its own ("\\", "/") are refused.
bool BelowTheRoot(const std::wstring& index) {
  std::wstring segments = L"\\" + index + L"\\";
  std::replace(segments.begin(), segments.end(), L'/', L'\\');
  const bool ownRoot = !index.empty() && segments[1] == L'\\';
  return !ownRoot && index.find(L':') == std::wstring::npos && segments.find(L"\\..\\") == std::wstring::npos;
}

void AskForCd(const WebFacts& facts) {
  Platform& platform = CurrentPlatform();
  platform.SendMciCommand(L"set CDAudio door open");  // the default CD audio device; its result does not matter
  platform.ShowMessage(GetActiveWindow(), L"Inserire il CD di " + facts.programName + L" nel lettore CD-ROM.",
                       L"Catalogo " + facts.companyName + L" su CD", MB_OK);
}

}  // namespace

std::wstring FindCdRomDrive() {
  Platform& platform = CurrentPlatform();
  std::wstring list(kDriveListLength, L' ');
  const DWORD length = platform.ListDriveRoots(&list);
  if (length < list.size()) list.resize(length);
  std::wstring drive;
  UINT type = DRIVE_UNKNOWN;
  do {
    const size_t nul = list.find(L'\0');
    // Deliberately ended here: a list too long for the buffer holds no NUL,
    // and searching on would never end. The drive found so far stands.
    if (nul == std::wstring::npos) break;
    drive = list.substr(0, nul + 1);
    list.erase(0, nul + 1);
    type = platform.DriveKind(drive.substr(0, nul));
  } while (!list.empty() && type != DRIVE_CDROM);
  return UpperCase(drive);
}

HRESULT OpenCatalogueOnCd(const std::wstring& index, const WebFacts& facts, CdOutcome* outcome) {
  if (!outcome) return E_POINTER;
  *outcome = CdOutcome::NoBrowser;
  return Guarded([&] {
    if (!BelowTheRoot(index)) return S_OK;  // not opened: NoBrowser's Error 200
    const std::wstring path = FindCdRomDrive().substr(0, 3) + index;
    if (!CanOpenForReading(path)) {
      AskForCd(facts);
      *outcome = CdOutcome::AskedForCd;
      return S_OK;
    }
    std::wstring browser;
    RETURN_IF_FAILED(FindDefaultBrowser(facts.tempFolder, &browser));
    if (browser.empty()) return S_OK;
    // A browser that the system cannot start has not opened the page either.
    // Quoted, as one argument: a file name cannot hold a quote.
    if (CurrentPlatform().StartProcess(BrowserCommandLine(browser, L"\"" + path + L"\""), SW_SHOWNORMAL))
      *outcome = CdOutcome::Opened;
    return S_OK;
  });
}

}  // namespace brevantis
