// Finding and driving the information screens as real windows: by window
// class, from the test's main thread (modeless forms) or from a thread of
// its own while the main thread runs a modal form.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <thread>

namespace brevantis::testing {

// Every wait gives a busy machine this long before it gives up.
constexpr DWORD kPatienceMs = 30000;

// The first window of className whose visibility is visible; nullptr if none.
HWND FindForm(const wchar_t* className, bool visible = true);

std::wstring TextOf(HWND window);
std::wstring ItemTextOf(HWND form, int id);

// Whether window lies in the middle of the screen (to a pixel).
bool IsCentred(HWND window);

// Presses a button or clicks an element the way the mouse does.
void Click(HWND form, int id);

// Runs this thread's messages until done() holds or kPatienceMs pass;
// returns done().
bool PumpUntil(const std::function<bool()>& done);
// Runs this thread's messages for ms.
void PumpFor(DWORD ms);

// On a thread of its own: waits for the visible form of className, then
// gives it to visit, which reads it and closes it. If the form never shows,
// it ends the creating thread's modal loop with WM_QUIT so no test hangs.
class FormVisitor {
 public:
  FormVisitor(const wchar_t* className, std::function<void(HWND)> visit);
  ~FormVisitor() { Join(); }
  FormVisitor(const FormVisitor&) = delete;
  FormVisitor& operator=(const FormVisitor&) = delete;

  // Waits for the visit to end; true when the form was found.
  bool Join();

 private:
  std::thread thread_;
  bool found_ = false;
};

}  // namespace brevantis::testing
