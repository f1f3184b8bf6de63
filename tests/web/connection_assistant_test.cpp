// The connection assistant and the dial-up chooser with the recording
// platform: the texts, styles and captions the user sees, what is dialled
// and started; the chooser is a real dialog under the display.
#include <gtest/gtest.h>

#include <functional>

#include "testkit/recording_platform.h"
#include "web/connection_assistant.h"
#include "web/web_resources.h"

using namespace brevantis;
using brevantis::testing::RecordingPlatform;
using brevantis::testing::ScopedPlatform;

namespace {

const std::wstring kQuestion =
    L"Occorre effettuare la connessione ad Internet.\r\rSi vuole effettuare ora la connessione ad Internet?";
const std::wstring kRefusal =
    L"Occorre effettuare la connessione ad Internet. Se non si è connessi ad Internet in questo momento, "
    L"attivare ora la connessione.";
const std::wstring kNotConfigured =
    L"Attenzione! Questo computer non è configurato per potere accedere ad Internet.";
const std::wstring kCaption = L"Atlante - Connessione ad Internet";

// Runs action on the chooser once it shows, from a timer of the dialog's own
// message loop; a chooser the action leaves open is closed and reported.
class ChooserDriver {
 public:
  explicit ChooserDriver(std::function<void(HWND)> action) {
    action_ = std::move(action);
    done_ = false;
    timer_ = SetTimer(nullptr, 0, 50, Tick);
  }
  ~ChooserDriver() { KillTimer(nullptr, timer_); }
  static bool ActionRan() { return done_; }

 private:
  static BOOL CALLBACK IsChooser(HWND window, LPARAM found) {
    wchar_t caption[64] = {};
    GetWindowTextW(window, caption, 64);
    if (!IsWindowVisible(window) || std::wstring(caption) != L"Connessione di Accesso remoto") return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
  }

  static HWND FindChooser() {
    HWND found = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), IsChooser, reinterpret_cast<LPARAM>(&found));
    return found;
  }

  static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD) {
    const HWND chooser = FindChooser();
    if (!chooser) return;
    if (done_) {
      ADD_FAILURE() << "the chooser stayed open";
      SendMessageW(chooser, WM_COMMAND, IDC_RAS95_COMMAND2, 0);
      return;
    }
    done_ = true;
    action_(chooser);
  }

  static inline std::function<void(HWND)> action_;
  static inline bool done_ = false;
  UINT_PTR timer_ = 0;
};

std::vector<std::wstring> ComboItems(HWND chooser) {
  const HWND combo = GetDlgItem(chooser, IDC_RAS95_COMBO1);
  std::vector<std::wstring> items;
  for (LRESULT i = 0, n = SendMessageW(combo, CB_GETCOUNT, 0, 0); i < n; ++i) {
    std::wstring text(SendMessageW(combo, CB_GETLBTEXTLEN, i, 0) + 1, L'\0');
    SendMessageW(combo, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(&text[0]));
    items.push_back(text.c_str());
  }
  return items;
}

class ConnectionAssistant : public ::testing::Test {
 protected:
  void SetUp() override {
    CurrentAssistantState().dialUpUnavailable = false;
    facts_.programName = L"Atlante";
    facts_.osName = L"Microsoft Windows XP";
    platform_.dialUpEntries = {L"Ufficio", L"Casa"};
    platform_.connectedFlags = 0x12;  // RAS installed
  }

  WebFacts facts_;
  RecordingPlatform platform_;
  ScopedPlatform scope_{&platform_};
};

TEST_F(ConnectionAssistant, OffersToDialAndDialsTheDefaultConnectionOnYes) {
  platform_.answers = {IDYES};
  ShowConnectionAssistant(facts_);

  ASSERT_EQ(1u, platform_.messages.size());
  EXPECT_EQ(kQuestion, platform_.messages[0].text);
  EXPECT_EQ(kCaption, platform_.messages[0].caption);
  EXPECT_EQ(52u, platform_.messages[0].style);
  ASSERT_EQ(1u, platform_.dials.size());
  EXPECT_TRUE(IsWindow(platform_.dials[0].parent));  // a hidden window of the thread's own
  EXPECT_EQ(CurrentAssistantState().owner, platform_.dials[0].parent);
  EXPECT_EQ(L"", platform_.dials[0].connection);
  EXPECT_EQ(1u, platform_.dials[0].flags);

  facts_.osName = L"Windows 98";
  platform_.answers = {IDNO};
  ShowConnectionAssistant(facts_);
  EXPECT_EQ(2u, platform_.messages.size());
  EXPECT_EQ(1u, platform_.dials.size());  // No dials nothing
}

TEST_F(ConnectionAssistant, RefusesWhenNothingCanBeDialled) {
  // No entries: only the refusal, though RAS is asked about all the same.
  platform_.dialUpEntries.clear();
  ShowConnectionAssistant(facts_);
  ASSERT_EQ(1u, platform_.messages.size());
  EXPECT_EQ(kRefusal, platform_.messages[0].text);
  EXPECT_EQ(kCaption, platform_.messages[0].caption);
  EXPECT_EQ(48u, platform_.messages[0].style);
  EXPECT_EQ(1, platform_.connectedStateCalls);

  // Entries, but RAS not installed.
  platform_.dialUpEntries = {L"Casa"};
  platform_.connectedFlags = 0x02;
  platform_.messages.clear();
  ShowConnectionAssistant(facts_);
  ASSERT_EQ(1u, platform_.messages.size());
  EXPECT_EQ(kRefusal, platform_.messages[0].text);
  EXPECT_TRUE(platform_.dials.empty());
}

TEST_F(ConnectionAssistant, AMissingDialUpLibraryWarnsTwiceAndStopsLaterOffers) {
  platform_.rasLibraryLoads = false;
  ShowConnectionAssistant(facts_);
  ASSERT_EQ(2u, platform_.messages.size());
  EXPECT_EQ(kNotConfigured, platform_.messages[0].text);
  EXPECT_EQ(kCaption, platform_.messages[0].caption);
  EXPECT_EQ(48u, platform_.messages[0].style);
  EXPECT_EQ(kRefusal, platform_.messages[1].text);
  EXPECT_TRUE(CurrentAssistantState().dialUpUnavailable);
  EXPECT_EQ(0, CountDialUpEntries(facts_));
}

TEST_F(ConnectionAssistant, CountsEntriesAndReadsTheRasFlag) {
  EXPECT_EQ(2, CountDialUpEntries(facts_));
  EXPECT_TRUE(IsRasInstalled());
  platform_.connectedFlags = 0x01;
  platform_.connected = false;  // the call's own result does not count
  EXPECT_FALSE(IsRasInstalled());
  platform_.connectedFlags = 0x10;
  EXPECT_TRUE(IsRasInstalled());
}

TEST_F(ConnectionAssistant, Windows95TakesTheChooserAndOkDialsTheChosenEntry) {
  facts_.osName = L"Microsoft Windows 95 ";
  platform_.answers = {IDYES};
  std::vector<std::wstring> items;
  LRESULT selected = -1;
  ChooserDriver driver([&](HWND chooser) {
    items = ComboItems(chooser);
    const HWND combo = GetDlgItem(chooser, IDC_RAS95_COMBO1);
    selected = SendMessageW(combo, CB_GETCURSEL, 0, 0);
    SendMessageW(combo, CB_SETCURSEL, 1, 0);
    SendMessageW(GetDlgItem(chooser, IDC_RAS95_COMMAND1), BM_CLICK, 0, 0);
  });
  ShowConnectionAssistant(facts_);

  ASSERT_TRUE(ChooserDriver::ActionRan());
  EXPECT_EQ((std::vector<std::wstring>{L"Ufficio", L"Casa"}), items);
  EXPECT_EQ(0, selected);
  ASSERT_EQ(1u, platform_.processes.size());
  wchar_t windows[MAX_PATH] = {}, system[MAX_PATH] = {};
  GetWindowsDirectoryW(windows, MAX_PATH);
  GetSystemDirectoryW(system, MAX_PATH);
  EXPECT_EQ(L"\"" + std::wstring(windows) + L"\\rundll.exe\" " + system + L"\\rnaui.dll,RnaDial \"Casa\"",
            platform_.processes[0].commandLine);
  EXPECT_EQ(1, platform_.processes[0].showCommand);
  EXPECT_TRUE(platform_.dials.empty());
  EXPECT_EQ(kQuestion, platform_.messages.at(0).text);
  EXPECT_EQ(1u, platform_.messages.size());
}

TEST_F(ConnectionAssistant, AnEmptyChooserWarnsAndStaysOpenUntilAnnulla) {
  // The count sees an entry; by the time the chooser loads, none is left.
  struct EntriesOnce : RecordingPlatform {
    bool EnumDialUpEntries(void* buffer, DWORD* size, DWORD* entries, DWORD* result) override {
      const bool loaded = RecordingPlatform::EnumDialUpEntries(buffer, size, entries, result);
      dialUpEntries.clear();
      return loaded;
    }
  } platform;
  ScopedPlatform scope(&platform);
  platform.dialUpEntries = {L"Casa"};
  platform.answers = {IDYES};
  facts_.osName = L"Windows 95";
  size_t messagesWhileOpen = 0;
  ChooserDriver driver([&](HWND chooser) {
    messagesWhileOpen = platform.messages.size();
    EXPECT_TRUE(ComboItems(chooser).empty());
    SendMessageW(GetDlgItem(chooser, IDC_RAS95_COMMAND2), BM_CLICK, 0, 0);
  });
  ShowConnectionAssistant(facts_);

  ASSERT_TRUE(ChooserDriver::ActionRan());
  ASSERT_EQ(2u, messagesWhileOpen);
  EXPECT_EQ(kNotConfigured, platform.messages[1].text);
  EXPECT_EQ(kCaption, platform.messages[1].caption);
  EXPECT_TRUE(platform.processes.empty());
}

}  // namespace
