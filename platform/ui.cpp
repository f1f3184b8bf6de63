#include "platform/ui.h"

namespace brevantis {

void CentreOnScreen(HWND window) {
  RECT frame;
  GetWindowRect(window, &frame);
  const int left = (GetSystemMetrics(SM_CXSCREEN) - (frame.right - frame.left)) / 2;
  const int top = (GetSystemMetrics(SM_CYSCREEN) - (frame.bottom - frame.top)) / 2;
  SetWindowPos(window, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void RunPendingMessages() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (message.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

}  // namespace brevantis
