#include "testkit/message_box_watcher.h"

namespace brevantis::testing {
namespace {

constexpr int kMessageTextId = 0xFFFF;  // the static text of a message box

std::wstring WindowText(HWND window, int id = 0) {
  wchar_t text[4096] = {};
  if (id) GetDlgItemTextW(window, id, text, 4096);
  else GetWindowTextW(window, text, 4096);
  return text;
}

struct Search {
  const std::wstring* caption;
  DWORD processId;
  HWND found;
};

BOOL CALLBACK MatchBox(HWND window, LPARAM param) {
  auto* search = reinterpret_cast<Search*>(param);
  wchar_t className[16] = {};
  GetClassNameW(window, className, 16);
  DWORD owner = 0;
  GetWindowThreadProcessId(window, &owner);
  if (owner == search->processId && std::wstring(className) == L"#32770" && WindowText(window) == *search->caption &&
      IsWindowVisible(window)) {
    search->found = window;
    return FALSE;
  }
  return TRUE;
}

}  // namespace

MessageBoxWatcher::MessageBoxWatcher(std::wstring caption, DWORD processId, int button)
    : caption_(std::move(caption)), processId_(processId), button_(button), thread_([this] { Watch(); }) {}

MessageBoxWatcher::~MessageBoxWatcher() {
  stop_ = true;
  thread_.join();
}

std::vector<std::wstring> MessageBoxWatcher::Texts() {
  std::lock_guard<std::mutex> lock(mutex_);
  return texts_;
}

HWND MessageBoxWatcher::FindBox() {
  Search search = {&caption_, processId_, nullptr};
  EnumWindows(MatchBox, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

void MessageBoxWatcher::Watch() {
  while (!stop_) {
    const HWND box = FindBox();
    if (!box) {
      Sleep(10);
      continue;
    }
    const std::wstring text = WindowText(box, kMessageTextId);
    {
      std::lock_guard<std::mutex> lock(mutex_);
      texts_.push_back(text);
    }
    PostMessageW(box, WM_COMMAND, button_, 0);
    // The same box must not be read twice: wait until it is gone.
    for (int i = 0; i < 500 && IsWindow(box) && IsWindowVisible(box); ++i) Sleep(10);
  }
}

}  // namespace brevantis::testing
