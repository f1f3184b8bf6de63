// Plays the user for the demo: every window the control shows in this
// process (its message boxes and forms) is printed, left on screen a moment
// and then closed, so the demo runs through without anybody at the keyboard.
#pragma once

#include <windows.h>
#include <atomic>
#include <set>
#include <string>
#include <thread>

class ScreenPresenter {
 public:
  explicit ScreenPresenter(DWORD showMilliseconds);
  ~ScreenPresenter();
  ScreenPresenter(const ScreenPresenter&) = delete;
  ScreenPresenter& operator=(const ScreenPresenter&) = delete;

 private:
  void Run();

  const DWORD showMilliseconds_;
  std::atomic<bool> stop_{false};
  std::set<HWND> seen_;
  std::thread thread_;
};
