// A form of the information screens: a dialog window made from a template of
// this module, loaded on first need, shown modally or modelessly, and
// unloaded. Unloading destroys the window and what the form drew with; the
// object stays and loads afresh from its template when it is next needed.
#pragma once

#include <windows.h>
#include <ocidl.h>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "com/raii.h"

namespace brevantis {

class Form : public std::enable_shared_from_this<Form> {
 public:
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;
  virtual ~Form();

  // Creates the window, hidden, and runs OnLoad. S_OK when the form is
  // loaded, also when it already was.
  HRESULT Load();
  bool IsLoaded() const { return window_ != nullptr; }
  HWND Window() const { return window_; }

  // Loads the form when needed, then sets its caption.
  HRESULT SetCaption(const std::wstring& caption);

  // Shows the form with every other window of the thread disabled and runs
  // the messages until the form is unloaded or hidden. A form already
  // showing modally returns at once.
  HRESULT ShowModal();
  HRESULT ShowModeless();

  // Runs OnUnload and destroys the window; nothing when not loaded.
  void Unload();

 protected:
  // Timer1 of a form unloads it when it ticks and calls release, which lets
  // go of the reference that keeps the form.
  static constexpr UINT_PTR kTimer1 = 1;

  Form(const wchar_t* className, int templateId, std::function<void()> release);

  virtual void OnLoad() = 0;
  virtual void OnUnload() {}
  // A button or clickable element (BN_CLICKED is STN_CLICKED).
  virtual void OnCommand(int id, int code) {}
  // A message other than the load; true when the form answered it.
  virtual bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, INT_PTR* result) { return false; }
  // The mouse moved over an element that forwards its mouse moves.
  virtual void OnItemMouseMove(int id) {}

  HWND Item(int id) const { return GetDlgItem(window_, id); }
  std::wstring ItemText(int id) const;
  void SetItemText(int id, const std::wstring& text);
  void ShowItem(int id, bool visible);
  // The element draws picture, scaled down to fit when larger (see picture.h).
  void SetPicture(int id, ComPtr<IPictureDisp> picture);
  void SetToolTip(int id, const std::wstring& text);
  // The element tells OnItemMouseMove when the mouse moves over it.
  void ForwardMouseMoves(int id);
  // The dialog's font made bold and scaled; owned by the form until unload.
  void UseBoldFont(int id, int percent);

 private:
  static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  static LRESULT CALLBACK ItemProcedure(HWND item, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                        DWORD_PTR form);
  INT_PTR Dispatch(UINT message, WPARAM wParam, LPARAM lParam);
  bool DrawPicture(const DRAWITEMSTRUCT& item);
  void Detach();

  const wchar_t* className_;
  int templateId_;
  std::function<void()> release_;
  HWND window_ = nullptr;
  HRESULT loadResult_ = S_OK;
  bool modal_ = false;
  HWND toolTip_ = nullptr;
  std::map<int, ComPtr<IPictureDisp>> pictures_;
  std::map<int, GdiObject> fonts_;
};

}  // namespace brevantis
