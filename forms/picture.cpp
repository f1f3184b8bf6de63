#include "forms/picture.h"

#include <olectl.h>
#include <shlwapi.h>

#include "com/module.h"

namespace brevantis {
namespace {

constexpr LONG kHimetricPerInch = 2540;

}  // namespace

void DrawPictureFitted(HDC dc, const RECT& box, IPictureDisp* picture) {
  ComPtr<IPicture> pic;
  if (!picture || FAILED(picture->QueryInterface(IID_IPicture, pic.OutVoid()))) return;
  SHORT type = PICTYPE_NONE;
  OLE_XSIZE_HIMETRIC width = 0;
  OLE_YSIZE_HIMETRIC height = 0;
  if (FAILED(pic->get_Type(&type)) || type == PICTYPE_NONE || type == PICTYPE_UNINITIALIZED) return;
  if (FAILED(pic->get_Width(&width)) || FAILED(pic->get_Height(&height)) || width <= 0 || height <= 0) return;
  // Sizes in pixels of dc, in 64 bits: a huge picture must not overflow.
  long long cx = static_cast<long long>(width) * GetDeviceCaps(dc, LOGPIXELSX) / kHimetricPerInch;
  long long cy = static_cast<long long>(height) * GetDeviceCaps(dc, LOGPIXELSY) / kHimetricPerInch;
  const long long boxWidth = box.right - box.left;
  const long long boxHeight = box.bottom - box.top;
  if (cx <= 0 || cy <= 0 || boxWidth <= 0 || boxHeight <= 0) return;
  if (cx > boxWidth || cy > boxHeight) {
    // Whichever side is tighter decides the scale.
    if (cx * boxHeight > cy * boxWidth) {
      cy = cy * boxWidth / cx;
      cx = boxWidth;
    } else {
      cx = cx * boxHeight / cy;
      cy = boxHeight;
    }
    if (cx < 1) cx = 1;
    if (cy < 1) cy = 1;
  }
  const int saved = SaveDC(dc);
  IntersectClipRect(dc, box.left, box.top, box.right, box.bottom);
  SetStretchBltMode(dc, HALFTONE);
  // The source rectangle runs upwards in HIMETRIC, so it starts at the bottom.
  pic->Render(dc, box.left, box.top, static_cast<LONG>(cx), static_cast<LONG>(cy), 0, height, width, -height,
              nullptr);
  RestoreDC(dc, saved);
}

ComPtr<IPictureDisp> LoadPictureFile(const std::wstring& path) {
  ComPtr<IPictureDisp> picture;
  ComPtr<IStream> stream;
  if (FAILED(SHCreateStreamOnFileW(path.c_str(), STGM_READ | STGM_SHARE_DENY_WRITE, stream.Out()))) return picture;
  STATSTG status = {};
  if (FAILED(stream->Stat(&status, STATFLAG_NONAME)) || status.cbSize.QuadPart == 0 ||
      status.cbSize.QuadPart > MAXLONG)
    return picture;
  if (FAILED(OleLoadPicture(stream.Get(), static_cast<LONG>(status.cbSize.QuadPart), FALSE, IID_IPictureDisp,
                            picture.OutVoid())))
    picture.Reset();
  return picture;
}

ComPtr<IPictureDisp> LoadBitmapPicture(int resourceId) {
  ComPtr<IPictureDisp> picture;
  GdiObject bitmap(LoadImageW(ThisModule(), MAKEINTRESOURCEW(resourceId), IMAGE_BITMAP, 0, 0, LR_LOADMAP3DCOLORS));
  if (!bitmap) return picture;
  PICTDESC desc = {};
  desc.cbSizeofstruct = sizeof(desc);
  desc.picType = PICTYPE_BITMAP;
  desc.bmp.hbitmap = static_cast<HBITMAP>(bitmap.Get());
  if (SUCCEEDED(OleCreatePictureIndirect(&desc, IID_IPictureDisp, TRUE, picture.OutVoid())))
    bitmap.Release();  // the picture owns it now
  return picture;
}

}  // namespace brevantis
