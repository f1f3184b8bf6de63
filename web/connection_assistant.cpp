// The offer to connect an offline machine: through WinINet's dialler, or on
// Windows 95 through the dial-up chooser.
#include "web/connection_assistant.h"

#include "control/store.h"
#include "platform/platform.h"
#include "web/dial_up.h"
#include "web/dial_up_chooser.h"
#include "web/vb_text.h"

namespace brevantis {
namespace {

// From wininet.h, which is not included: it renames InternetDial.
constexpr DWORD kRasInstalled = 0x10;  // INTERNET_RAS_INSTALLED
constexpr DWORD kForceOnline = 1;      // INTERNET_AUTODIAL_FORCE_ONLINE

constexpr wchar_t kQuestion[] =
    L"Occorre effettuare la connessione ad Internet.\r\rSi vuole effettuare ora la connessione ad Internet?";
constexpr wchar_t kRefusal[] =
    L"Occorre effettuare la connessione ad Internet. Se non si è connessi ad Internet in questo momento, "
    L"attivare ora la connessione.";

bool IsWindows95() {
  const std::wstring name = TrimSpaces(CurrentStore()[kOSName].text);
  return name.size() >= 2 && name.compare(name.size() - 2, 2, L"95") == 0;
}

bool UserWantsToConnect(const std::wstring& caption) {
  return CurrentPlatform().ShowMessage(GetActiveWindow(), kQuestion, caption, MB_YESNO | MB_ICONEXCLAMATION) == IDYES;
}

void Refuse(const std::wstring& caption) {
  CurrentPlatform().ShowMessage(GetActiveWindow(), kRefusal, caption, MB_OK | MB_ICONEXCLAMATION);
}

}  // namespace

void ShowConnectionAssistant(HWND owner) {
  try {
    const std::wstring caption = AssistantCaption();
    if (!IsWindows95()) {
      const short entries = CountDialUpEntries();
      const bool rasInstalled = IsRasInstalled();
      if (entries < 1 || !rasInstalled) return Refuse(caption);
      if (UserWantsToConnect(caption)) {
        // The connection is the user's: never hung up here.
        DWORD_PTR connection = 0;
        CurrentPlatform().InternetDial(owner, L"", kForceOnline, &connection);
      }
      return;
    }
    if (CountDialUpEntries() <= 0) return Refuse(caption);
    if (UserWantsToConnect(caption)) ShowDialUpChooser();
  } catch (...) {
    // Nothing of the offer is worth failing the caller for.
  }
}

short CountDialUpEntries() {
  const DialUpEntries entries = EnumerateDialUpEntries();
  if (!entries.libraryLoaded) {
    WarnNotConfigured();
    CurrentStore().dialUpUnavailable = true;
    return 0;
  }
  return static_cast<short>(entries.names.size());
}

bool IsRasInstalled() {
  DWORD flags = 0;
  CurrentPlatform().GetInternetConnectedState(&flags);  // only the flags count
  return (flags & kRasInstalled) != 0;
}

}  // namespace brevantis
