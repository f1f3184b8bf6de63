#include "demo/screen_presenter.h"

#include <cstdio>
#include <string>
#include <vector>

#include "com/text.h"

using brevantis::ToUtf8;

namespace {

struct Found {
  std::vector<HWND> windows;
};

BOOL CALLBACK CollectVisible(HWND window, LPARAM param) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process == GetCurrentProcessId() && IsWindowVisible(window))
    reinterpret_cast<Found*>(param)->windows.push_back(window);
  return TRUE;
}

BOOL CALLBACK PrintChildText(HWND child, LPARAM) {
  wchar_t className[32] = {}, text[1024] = {};
  GetClassNameW(child, className, 32);
  GetWindowTextW(child, text, 1024);
  if (text[0] && lstrcmpiW(className, L"Static") == 0)
    std::printf("      | %s\n", ToUtf8(text).c_str());
  return TRUE;
}

}  // namespace

ScreenPresenter::ScreenPresenter(DWORD showMilliseconds)
    : showMilliseconds_(showMilliseconds), thread_([this] { Run(); }) {}

ScreenPresenter::~ScreenPresenter() {
  stop_ = true;
  thread_.join();
}

void ScreenPresenter::Run() {
  while (!stop_) {
    Found found;
    EnumWindows(CollectVisible, reinterpret_cast<LPARAM>(&found));
    for (HWND window : found.windows) {
      if (!seen_.insert(window).second) continue;
      wchar_t caption[256] = {};
      GetWindowTextW(window, caption, 256);
      std::printf("    [window] %s\n", ToUtf8(caption).c_str());
      EnumChildWindows(window, PrintChildText, 0);
      std::fflush(stdout);
      Sleep(showMilliseconds_);
      // A message box with only OK closes on WM_CLOSE as on its button.
      PostMessageW(window, WM_CLOSE, 0, 0);
    }
    Sleep(20);
  }
}
