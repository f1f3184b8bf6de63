#include "form_probe.h"

namespace brevantis::testing {

HWND FindForm(const wchar_t* className, bool visible) {
  for (HWND window = FindWindowExW(nullptr, nullptr, className, nullptr); window;
       window = FindWindowExW(nullptr, window, className, nullptr))
    if ((IsWindowVisible(window) != FALSE) == visible) return window;
  return nullptr;
}

std::wstring TextOf(HWND window) {
  std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(static_cast<size_t>(GetWindowTextW(window, &text[0], static_cast<int>(text.size()))));
  return text;
}

std::wstring ItemTextOf(HWND form, int id) { return TextOf(GetDlgItem(form, id)); }

bool IsCentred(HWND window) {
  RECT frame;
  GetWindowRect(window, &frame);
  const int dx = frame.left + frame.right - GetSystemMetrics(SM_CXSCREEN);
  const int dy = frame.top + frame.bottom - GetSystemMetrics(SM_CYSCREEN);
  return dx >= -1 && dx <= 1 && dy >= -1 && dy <= 1;
}

void Click(HWND form, int id) {
  const HWND item = GetDlgItem(form, id);
  PostMessageW(item, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(2, 2));
  PostMessageW(item, WM_LBUTTONUP, 0, MAKELPARAM(2, 2));
}

bool PumpUntil(const std::function<bool()>& done) {
  const DWORD start = GetTickCount();
  while (!done() && GetTickCount() - start < kPatienceMs) {
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
    PumpFor(0);
  }
  return done();
}

void PumpFor(DWORD ms) {
  const DWORD start = GetTickCount();
  do {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
    if (ms) MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
  } while (GetTickCount() - start < ms);
}

FormVisitor::FormVisitor(const wchar_t* className, std::function<void(HWND)> visit) {
  const DWORD creator = GetCurrentThreadId();
  thread_ = std::thread([this, className, visit, creator] {
    HWND form = nullptr;
    for (DWORD waited = 0; !form && waited < kPatienceMs; waited += 20) {
      form = FindForm(className);
      if (!form) Sleep(20);
    }
    found_ = form != nullptr;
    if (found_)
      visit(form);
    else
      PostThreadMessageW(creator, WM_QUIT, 0, 0);
  });
}

bool FormVisitor::Join() {
  if (thread_.joinable()) thread_.join();
  return found_;
}

}  // namespace brevantis::testing
