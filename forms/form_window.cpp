#include "forms/form_window.h"

#include <commctrl.h>

#include <new>
#include <vector>

#include "com/failure.h"
#include "com/module.h"
#include "forms/picture.h"

namespace brevantis {
namespace {

constexpr UINT_PTR kItemSubclass = 1;

// Each form has a window class of its own, named after the form, so that a
// host or a test finds it by class; the class's procedure is the system's
// dialog procedure.
bool RegisterFormClass(const wchar_t* name) {
  WNDCLASSEXW existing = {};
  existing.cbSize = sizeof(existing);
  if (GetClassInfoExW(ThisModule(), name, &existing)) return true;
  WNDCLASSEXW wc = {};
  wc.cbSize = sizeof(wc);
  wc.lpfnWndProc = DefDlgProcW;
  wc.cbWndExtra = DLGWINDOWEXTRA;
  wc.hInstance = ThisModule();
  wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  wc.lpszClassName = name;
  return RegisterClassExW(&wc) != 0;
}

void InitToolTips() {
  INITCOMMONCONTROLSEX controls = {};
  controls.dwSize = sizeof(controls);
  controls.dwICC = ICC_BAR_CLASSES;
  InitCommonControlsEx(&controls);
}

struct DisabledWindows {
  HWND modal;
  std::vector<HWND> windows;
};

BOOL CALLBACK DisableWindow(HWND window, LPARAM parameter) {
  auto* disabled = reinterpret_cast<DisabledWindows*>(parameter);
  if (window == disabled->modal || GetWindow(window, GW_OWNER) == disabled->modal || !IsWindowVisible(window) ||
      !IsWindowEnabled(window))
    return TRUE;
  disabled->windows.push_back(window);
  EnableWindow(window, FALSE);
  return TRUE;
}

}  // namespace

Form::Form(const wchar_t* className, int templateId, std::function<void()> release)
    : className_(className), templateId_(templateId), release_(std::move(release)) {}

Form::~Form() {
  if (!window_) return;
  const HWND window = window_;
  Detach();
  DestroyWindow(window);
}

HRESULT Form::Load() {
  if (window_) return S_OK;
  if (!RegisterFormClass(className_)) return HRESULT_FROM_WIN32(GetLastError());
  loadResult_ = S_OK;
  const HWND window =
      CreateDialogParamW(ThisModule(), MAKEINTRESOURCEW(templateId_), nullptr, Procedure, reinterpret_cast<LPARAM>(this));
  if (!window) return FAILED(loadResult_) ? loadResult_ : HRESULT_FROM_WIN32(GetLastError());
  if (FAILED(loadResult_)) {
    const HRESULT failure = loadResult_;
    Unload();
    return failure;
  }
  return S_OK;
}

HRESULT Form::SetCaption(const std::wstring& caption) {
  RETURN_IF_FAILED(Load());
  SetWindowTextW(window_, caption.c_str());
  return S_OK;
}

HRESULT Form::ShowModal() {
  const HRESULT hr = Load();
  if (FAILED(hr) || modal_) return hr;
  const std::shared_ptr<Form> keep = weak_from_this().lock();  // a handler may release the form
  const HWND window = window_;
  const HWND previous = GetActiveWindow();
  DisabledWindows disabled = {window, {}};
  EnumThreadWindows(GetCurrentThreadId(), DisableWindow, reinterpret_cast<LPARAM>(&disabled));
  modal_ = true;
  ShowWindow(window, SW_SHOWNORMAL);
  MSG message;
  while (window_ == window && IsWindowVisible(window)) {
    const BOOL got = GetMessageW(&message, nullptr, 0, 0);
    if (got == 0) {
      PostQuitMessage(static_cast<int>(message.wParam));  // the host's own loop must see it too
      Unload();
      break;
    }
    if (got == -1) break;
    if (!IsDialogMessageW(window, &message)) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }
  modal_ = false;
  for (HWND other : disabled.windows)
    if (IsWindow(other)) EnableWindow(other, TRUE);
  if (previous && IsWindow(previous)) SetActiveWindow(previous);
  return S_OK;
}

HRESULT Form::ShowModeless() {
  RETURN_IF_FAILED(Load());
  ShowWindow(window_, SW_SHOWNORMAL);
  return S_OK;
}

void Form::Unload() {
  if (!window_) return;
  OnUnload();
  if (window_) DestroyWindow(window_);
}

std::wstring Form::ItemText(int id) const {
  const HWND item = Item(id);
  std::wstring text(static_cast<size_t>(GetWindowTextLengthW(item)) + 1, L'\0');
  text.resize(static_cast<size_t>(GetWindowTextW(item, &text[0], static_cast<int>(text.size()))));
  return text;
}

void Form::SetItemText(int id, const std::wstring& text) { SetDlgItemTextW(window_, id, text.c_str()); }

void Form::ShowItem(int id, bool visible) { ShowWindow(Item(id), visible ? SW_SHOW : SW_HIDE); }

void Form::SetPicture(int id, ComPtr<IPictureDisp> picture) {
  pictures_[id] = std::move(picture);
  InvalidateRect(Item(id), nullptr, TRUE);
}

void Form::SetToolTip(int id, const std::wstring& text) {
  if (!toolTip_) {
    InitToolTips();
    toolTip_ = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP, CW_USEDEFAULT,
                               CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, window_, nullptr, ThisModule(), nullptr);
    if (!toolTip_) return;
  }
  TTTOOLINFOW tool = {};
  tool.cbSize = TTTOOLINFOW_V2_SIZE;
  tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
  tool.hwnd = window_;
  tool.uId = reinterpret_cast<UINT_PTR>(Item(id));
  tool.lpszText = const_cast<wchar_t*>(text.c_str());
  SendMessageW(toolTip_, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
  SendMessageW(toolTip_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

void Form::ForwardMouseMoves(int id) {
  SetWindowSubclass(Item(id), ItemProcedure, kItemSubclass, reinterpret_cast<DWORD_PTR>(this));
}

void Form::UseBoldFont(int id, int percent) {
  LOGFONTW font = {};
  const HGDIOBJ dialogFont = reinterpret_cast<HGDIOBJ>(SendMessageW(window_, WM_GETFONT, 0, 0));
  if (!dialogFont || !GetObjectW(dialogFont, sizeof(font), &font)) return;
  font.lfHeight = MulDiv(font.lfHeight, percent, 100);
  font.lfWeight = FW_BOLD;
  GdiObject bold(CreateFontIndirectW(&font));
  if (!bold) return;
  SendMessageW(Item(id), WM_SETFONT, reinterpret_cast<WPARAM>(bold.Get()), TRUE);
  fonts_[id] = std::move(bold);
}

INT_PTR CALLBACK Form::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  Form* form = nullptr;
  if (message == WM_INITDIALOG) {
    form = reinterpret_cast<Form*>(lParam);
    SetWindowLongPtrW(window, DWLP_USER, lParam);
    form->window_ = window;
    LockServer(true);  // the module stays while a window of its forms exists
  } else {
    form = reinterpret_cast<Form*>(GetWindowLongPtrW(window, DWLP_USER));
  }
  if (!form) return FALSE;
  // A handler may unload the form and release the last reference to it.
  const std::shared_ptr<Form> keep = form->weak_from_this().lock();
  // A load that failed fails the form's Load.
  HRESULT failure = S_OK;
  const INT_PTR result = GuardedMessage<INT_PTR>(message == WM_INITDIALOG ? TRUE : FALSE,
                                                 [&] { return form->Dispatch(message, wParam, lParam); }, &failure);
  if (message == WM_INITDIALOG && FAILED(failure)) form->loadResult_ = failure;
  return result;
}

INT_PTR Form::Dispatch(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      OnLoad();
      return TRUE;
    case WM_DRAWITEM:
      if (DrawPicture(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam))) return TRUE;
      break;
    case WM_COMMAND:
      OnCommand(LOWORD(wParam), HIWORD(wParam));
      return TRUE;
    case WM_CLOSE:  // the close box
      Unload();
      return TRUE;
    case WM_TIMER:
      if (wParam != kTimer1) break;
      Unload();
      if (release_) release_();
      return TRUE;
    case WM_NCDESTROY:
      Detach();
      return FALSE;
  }
  INT_PTR result = 0;
  if (!OnMessage(message, wParam, lParam, &result)) return FALSE;
  // Answers that are not TRUE or FALSE go back through the dialog's result.
  if (message == WM_CTLCOLORSTATIC || message == WM_CTLCOLORDLG) return result;
  if (window_) SetWindowLongPtrW(window_, DWLP_MSGRESULT, result);
  return TRUE;
}

bool Form::DrawPicture(const DRAWITEMSTRUCT& item) {
  const auto found = pictures_.find(static_cast<int>(item.CtlID));
  if (found == pictures_.end()) return false;
  FillRect(item.hDC, &item.rcItem, GetSysColorBrush(COLOR_BTNFACE));
  DrawPictureFitted(item.hDC, item.rcItem, found->second.Get());
  return true;
}

LRESULT CALLBACK Form::ItemProcedure(HWND item, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                     DWORD_PTR form) {
  if (message == WM_MOUSEMOVE) {
    // Hovering never fails the element's own handling.
    GuardedMessage(0, [&] {
      reinterpret_cast<Form*>(form)->OnItemMouseMove(GetDlgCtrlID(item));
      return 0;
    });
  } else if (message == WM_NCDESTROY) {
    RemoveWindowSubclass(item, ItemProcedure, kItemSubclass);
  }
  return DefSubclassProc(item, message, wParam, lParam);
}

// The window is gone: forget it and free what it drew with.
void Form::Detach() {
  // A modal loop asleep in GetMessage (the form closed by a sent message)
  // wakes up to see it gone.
  if (modal_) PostMessageW(nullptr, WM_NULL, 0, 0);
  SetWindowLongPtrW(window_, DWLP_USER, 0);
  window_ = nullptr;
  toolTip_ = nullptr;  // owned by the window, destroyed with it
  pictures_.clear();
  fonts_.clear();
  LockServer(false);
}

}  // namespace brevantis
