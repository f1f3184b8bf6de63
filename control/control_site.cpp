// The control in its container: client site, in-place window, drawing and
// extent. The control shows nothing at run time; at design time it draws its
// toolbox picture in a fixed square of 570 twips, whatever size it is given.
#include "control/brevantis_control.h"

#include <olectl.h>

#include <algorithm>

#include "com/failure.h"
#include "com/module.h"

namespace brevantis {
namespace {

constexpr LONG kSideTwips = 570;
constexpr LONG kSideHimetric = kSideTwips * 2540 / 1440;  // 1005
constexpr wchar_t kWindowClass[] = L"BrevantisControlWindow";

// The square in device pixels of dc (the screen when dc is null).
LONG SidePixels(HDC dc) {
  const ScreenDc screen(dc ? nullptr : GetDC(nullptr));
  const int dpi = GetDeviceCaps(dc ? dc : screen.Get(), LOGPIXELSX);
  return MulDiv(kSideTwips, dpi, 1440);
}

void DrawToolboxPicture(HDC dc, const RECT& bounds) {
  GdiObject bitmap(LoadImageW(ThisModule(), MAKEINTRESOURCEW(1), IMAGE_BITMAP, 0, 0, 0));
  FillRect(dc, &bounds, reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1));
  if (bitmap) {
    const MemoryDc memory(CreateCompatibleDC(dc));
    const HGDIOBJ old = SelectObject(memory.Get(), bitmap.Get());
    BITMAP info = {};
    GetObjectW(bitmap.Get(), sizeof(info), &info);
    const int left = bounds.left + (bounds.right - bounds.left - info.bmWidth) / 2;
    const int top = bounds.top + (bounds.bottom - bounds.top - info.bmHeight) / 2;
    BitBlt(dc, left, top, info.bmWidth, info.bmHeight, memory.Get(), 0, 0, SRCCOPY);
    SelectObject(memory.Get(), old);
  }
  RECT edge = bounds;
  DrawEdge(dc, &edge, EDGE_RAISED, BF_RECT);
}

LRESULT CALLBACK ControlWindowProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == WM_PAINT) {
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(window, &paint);
    RECT client;
    GetClientRect(window, &client);
    DrawToolboxPicture(dc, client);
    EndPaint(window, &paint);
    return 0;
  }
  return DefWindowProcW(window, message, wparam, lparam);
}

bool RegisterWindowClass() {
  WNDCLASSW existing;
  if (GetClassInfoW(ThisModule(), kWindowClass, &existing)) return true;
  WNDCLASSW wc = {};
  wc.lpfnWndProc = ControlWindowProc;
  wc.hInstance = ThisModule();
  wc.hCursor = LoadCursor(nullptr, IDC_ARROW);
  wc.lpszClassName = kWindowClass;
  return RegisterClassW(&wc) != 0;
}

}  // namespace

STDMETHODIMP BrevantisControl::SetClientSite(IOleClientSite* site) {
  site_ = ComPtr<IOleClientSite>(site);
  ShowForMode();
  return S_OK;
}

STDMETHODIMP BrevantisControl::GetClientSite(IOleClientSite** site) {
  if (!site) return E_POINTER;
  *site = ComPtr<IOleClientSite>(site_).Detach();
  return S_OK;
}

STDMETHODIMP BrevantisControl::Close(DWORD) {
  InPlaceDeactivate();
  if (oleAdvise_) oleAdvise_->SendOnClose();
  return S_OK;
}

STDMETHODIMP BrevantisControl::DoVerb(LONG verb, LPMSG, IOleClientSite* site, LONG, HWND parent,
                                      LPCRECT position) {
  switch (verb) {
    case OLEIVERB_PRIMARY:
    case OLEIVERB_SHOW:
    case OLEIVERB_INPLACEACTIVATE:
    case OLEIVERB_UIACTIVATE:
      return ActivateInPlace(site ? site : site_.Get(), parent, position);
    case OLEIVERB_HIDE:
      if (window_) ShowWindow(window_, SW_HIDE);
      return S_OK;
    default:
      return verb < 0 ? E_NOTIMPL : OLEOBJ_S_INVALIDVERB;
  }
}

HRESULT BrevantisControl::ActivateInPlace(IOleClientSite* site, HWND parent, LPCRECT position) {
  if (window_) return S_OK;
  if (!site) return E_UNEXPECTED;
  return Guarded([&] {
    ComPtr<IOleInPlaceSite> inPlace;
    RETURN_IF_FAILED(site->QueryInterface(IID_IOleInPlaceSite, inPlace.OutVoid()));
    if (inPlace->CanInPlaceActivate() != S_OK) return E_FAIL;
    RETURN_IF_FAILED(inPlace->OnInPlaceActivate());
    HWND container = parent;
    if (!container) RETURN_IF_FAILED(inPlace->GetWindow(&container));
    RECT rect = position ? *position : RECT{0, 0, 0, 0};
    if (!position) {
      ComPtr<IOleInPlaceFrame> frame;
      ComPtr<IOleInPlaceUIWindow> document;
      RECT clip;
      OLEINPLACEFRAMEINFO info = {};
      info.cb = sizeof(info);
      inPlace->GetWindowContext(frame.Out(), document.Out(), &rect, &clip, &info);
    }
    if (!RegisterWindowClass()) return HRESULT_FROM_WIN32(GetLastError());
    window_ = CreateWindowExW(0, kWindowClass, L"", WS_CHILD | WS_CLIPSIBLINGS, rect.left, rect.top, 0, 0, container,
                              nullptr, ThisModule(), nullptr);
    if (!window_) return HRESULT_FROM_WIN32(GetLastError());
    inPlaceSite_ = inPlace;
    SetObjectRects(&rect, &rect);
    ShowForMode();
    return S_OK;
  });
}

// Visible in the container only at design time.
void BrevantisControl::ShowForMode() {
  if (window_) ShowWindow(window_, IsDesignTime() ? SW_SHOWNA : SW_HIDE);
}

STDMETHODIMP BrevantisControl::InPlaceDeactivate() {
  if (window_) {
    DestroyWindow(window_);
    window_ = nullptr;
  }
  if (inPlaceSite_) {
    inPlaceSite_->OnInPlaceDeactivate();
    inPlaceSite_.Reset();
  }
  return S_OK;
}

STDMETHODIMP BrevantisControl::GetWindow(HWND* window) {
  if (!window) return E_POINTER;
  *window = window_;
  return window_ ? S_OK : E_FAIL;
}

// The square stays where the container put it; a container that asked for
// another size is told the square, so that its site keeps the control's size.
STDMETHODIMP BrevantisControl::SetObjectRects(LPCRECT position, LPCRECT) {
  if (!position) return E_POINTER;
  const LONG side = SidePixels(nullptr);
  const RECT square = {position->left, position->top, position->left + side, position->top + side};
  if (window_) SetWindowPos(window_, nullptr, square.left, square.top, side, side, SWP_NOZORDER | SWP_NOACTIVATE);
  if (inPlaceSite_ && !tellingSiteItsSquare_ && !EqualRect(position, &square)) {
    tellingSiteItsSquare_ = true;
    inPlaceSite_->OnPosRectChange(&square);  // the site answers with SetObjectRects(square)
    tellingSiteItsSquare_ = false;
  }
  return S_OK;
}

STDMETHODIMP BrevantisControl::OnAmbientPropertyChange(DISPID id) {
  if (id == DISPID_AMBIENT_USERMODE || id == DISPID_UNKNOWN) ShowForMode();
  return S_OK;
}

STDMETHODIMP BrevantisControl::EnumVerbs(IEnumOLEVERB** verbs) { return OleRegEnumVerbs(CLSID_Brevantis, verbs); }

STDMETHODIMP BrevantisControl::GetUserClassID(CLSID* clsid) { return GetClassID(clsid); }

STDMETHODIMP BrevantisControl::GetUserType(DWORD form, LPOLESTR* type) {
  return OleRegGetUserType(CLSID_Brevantis, form, type);
}

// A fixed-size object refuses any other extent with E_FAIL: containers then
// keep, or ask GetExtent for, the square.
STDMETHODIMP BrevantisControl::SetExtent(DWORD aspect, SIZEL* size) {
  if (!size) return E_POINTER;
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  return size->cx == kSideHimetric && size->cy == kSideHimetric ? S_OK : E_FAIL;
}

STDMETHODIMP BrevantisControl::GetExtent(DWORD aspect, SIZEL* size) {
  if (!size) return E_POINTER;
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  size->cx = size->cy = kSideHimetric;
  return S_OK;
}

STDMETHODIMP BrevantisControl::GetExtent(DWORD aspect, LONG, DVTARGETDEVICE*, LPSIZEL size) {
  return GetExtent(aspect, size);
}

STDMETHODIMP BrevantisControl::Advise(IAdviseSink* sink, DWORD* cookie) {
  if (!oleAdvise_) {
    RETURN_IF_FAILED(CreateOleAdviseHolder(oleAdvise_.Out()));
  }
  return oleAdvise_->Advise(sink, cookie);
}

STDMETHODIMP BrevantisControl::Unadvise(DWORD cookie) {
  return oleAdvise_ ? oleAdvise_->Unadvise(cookie) : OLE_E_NOCONNECTION;
}

STDMETHODIMP BrevantisControl::EnumAdvise(IEnumSTATDATA** advise) {
  if (!advise) return E_POINTER;
  *advise = nullptr;
  return oleAdvise_ ? oleAdvise_->EnumAdvise(advise) : E_FAIL;
}

STDMETHODIMP BrevantisControl::GetMiscStatus(DWORD aspect, DWORD* status) {
  return OleRegGetMiscStatus(CLSID_Brevantis, aspect, status);
}

STDMETHODIMP BrevantisControl::Draw(DWORD aspect, LONG, void*, DVTARGETDEVICE*, HDC, HDC draw, LPCRECTL bounds,
                                    LPCRECTL, BOOL(STDMETHODCALLTYPE*)(ULONG_PTR), ULONG_PTR) {
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  if (!draw || !bounds) return E_INVALIDARG;
  if (IsDesignTime()) {
    // The square at the corner of bounds, never more than bounds.
    const LONG side = SidePixels(draw);
    const RECT rect = {bounds->left, bounds->top, std::min(bounds->right, bounds->left + side),
                       std::min(bounds->bottom, bounds->top + side)};
    DrawToolboxPicture(draw, rect);
  }
  return S_OK;
}

STDMETHODIMP BrevantisControl::SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) {
  viewAspects_ = aspects;
  viewFlags_ = flags;
  viewSink_ = ComPtr<IAdviseSink>(sink);
  return S_OK;
}

STDMETHODIMP BrevantisControl::GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) {
  if (aspects) *aspects = viewAspects_;
  if (flags) *flags = viewFlags_;
  if (sink) *sink = ComPtr<IAdviseSink>(viewSink_).Detach();
  return S_OK;
}

}  // namespace brevantis
