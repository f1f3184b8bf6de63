// Answers real message boxes: while it lives, every message box of one
// process that carries the given caption is read and closed with a button,
// so code under test that shows one does not wait for a user.
#pragma once

#include <windows.h>
#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace brevantis::testing {

class MessageBoxWatcher {
 public:
  // Watches the boxes of processId (by default this process).
  explicit MessageBoxWatcher(std::wstring caption, DWORD processId = GetCurrentProcessId(), int button = IDOK);
  ~MessageBoxWatcher();
  MessageBoxWatcher(const MessageBoxWatcher&) = delete;
  MessageBoxWatcher& operator=(const MessageBoxWatcher&) = delete;

  // Watches another process from now on (one started after the watcher).
  void SetProcess(DWORD processId) { processId_ = processId; }
  // The texts of the boxes answered so far, in order.
  std::vector<std::wstring> Texts();

 private:
  void Watch();
  HWND FindBox();

  const std::wstring caption_;
  std::atomic<DWORD> processId_;
  const int button_;
  std::atomic<bool> stop_{false};
  std::mutex mutex_;
  std::vector<std::wstring> texts_;
  std::thread thread_;
};

}  // namespace brevantis::testing
