// The offer to connect an offline machine: through WinINet's dialler, or on
// Windows 95 through the dial-up chooser.
#include "web/connection_assistant.h"

#include <wininet.h>

#include "com/text.h"
#include "com/thread_slot.h"
#include "platform/platform.h"
#include "web/dial_up.h"
#include "web/dial_up_chooser.h"

namespace brevantis {
namespace {

ThreadSlot<AssistantState> g_assistants;

constexpr wchar_t kQuestion[] =
    L"Occorre effettuare la connessione ad Internet.\r\rSi vuole effettuare ora la connessione ad Internet?";
constexpr wchar_t kRefusal[] =
    L"Occorre effettuare la connessione ad Internet. Se non si è connessi ad Internet in questo momento, "
    L"attivare ora la connessione.";

bool IsWindows95(const WebFacts& facts) {
  const std::wstring name = TrimSpaces(facts.osName);
  return name.size() >= 2 && name.compare(name.size() - 2, 2, L"95") == 0;
}

bool UserWantsToConnect(const std::wstring& caption) {
  return CurrentPlatform().ShowMessage(GetActiveWindow(), kQuestion, caption, MB_YESNO | MB_ICONEXCLAMATION) == IDYES;
}

void Refuse(const std::wstring& caption) {
  CurrentPlatform().ShowMessage(GetActiveWindow(), kRefusal, caption, MB_OK | MB_ICONEXCLAMATION);
}

HWND DialOwner(AssistantState& state) {
  if (!state.owner || !IsWindow(state.owner))
    state.owner = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
  return state.owner;
}

}  // namespace

AssistantState& CurrentAssistantState() { return g_assistants.Get(); }

void ShowConnectionAssistant(const WebFacts& facts) {
  AssistantState& state = CurrentAssistantState();
  if (state.dialUpUnavailable) return;
  const HWND owner = DialOwner(state);
  const std::wstring caption = AssistantCaption(facts.programName);
  if (!IsWindows95(facts)) {
    const short entries = CountDialUpEntries(facts);
    const bool rasInstalled = IsRasInstalled();
    if (entries < 1 || !rasInstalled) return Refuse(caption);
    if (UserWantsToConnect(caption)) {
      // The connection is the user's: never hung up here.
      DWORD_PTR connection = 0;
      CurrentPlatform().DialInternet(owner, L"", INTERNET_AUTODIAL_FORCE_ONLINE, &connection);
    }
    return;
  }
  if (CountDialUpEntries(facts) <= 0) return Refuse(caption);
  if (UserWantsToConnect(caption)) ShowDialUpChooser(facts.programName);
}

short CountDialUpEntries(const WebFacts& facts) {
  const DialUpEntries entries = EnumerateDialUpEntries();
  if (!entries.libraryLoaded) {
    WarnNotConfigured(facts.programName);
    CurrentAssistantState().dialUpUnavailable = true;
    return 0;
  }
  return static_cast<short>(entries.names.size());
}

bool IsRasInstalled() {
  DWORD flags = 0;
  CurrentPlatform().GetInternetConnectedState(&flags);  // only the flags count
  return (flags & INTERNET_RAS_INSTALLED) != 0;
}

}  // namespace brevantis
