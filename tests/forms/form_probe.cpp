#include "form_probe.h"

#include <cstdint>

namespace brevantis::testing {
namespace {

struct Search {
  const wchar_t* className;
  bool visible;
  HWND found;
};

BOOL CALLBACK Match(HWND window, LPARAM parameter) {
  auto* search = reinterpret_cast<Search*>(parameter);
  wchar_t name[64] = {};
  GetClassNameW(window, name, 64);
  if (lstrcmpW(name, search->className) != 0 || (IsWindowVisible(window) != FALSE) != search->visible) return TRUE;
  search->found = window;
  return FALSE;
}

// Wine's table of GDI handles, where GetGuiResources does not count them:
// the process's entries, 24 bytes each, in use when their type is not 0.
#pragma pack(push, 1)
struct WineGdiEntry {
  uint64_t object;
  uint32_t owner;
  uint16_t unique;
  uint8_t type;
  uint8_t flags;
  uint64_t user;
};
#pragma pack(pop)
constexpr int kWineGdiEntries = 0x10000;

int WineGdiObjectCount() {
  const auto* teb = reinterpret_cast<const unsigned char*>(NtCurrentTeb());
  const auto* peb = *reinterpret_cast<const unsigned char* const*>(teb + 0x30);
  const auto* table = *reinterpret_cast<WineGdiEntry* const*>(peb + 0x94);  // GdiSharedHandleTable
  if (!table) return -1;
  int count = 0;
  for (int i = 0; i < kWineGdiEntries; ++i)
    if (table[i].type) ++count;
  return count;
}

}  // namespace

HWND FindForm(const wchar_t* className, bool visible) {
  Search search = {className, visible, nullptr};
  EnumWindows(Match, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

std::wstring TextOf(HWND window) {
  std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(static_cast<size_t>(GetWindowTextW(window, &text[0], static_cast<int>(text.size()))));
  return text;
}

std::wstring ItemTextOf(HWND form, int id) { return TextOf(GetDlgItem(form, id)); }

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

int GdiObjectCount() {
  const DWORD counted = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
  return counted ? static_cast<int>(counted) : WineGdiObjectCount();
}

}  // namespace brevantis::testing
