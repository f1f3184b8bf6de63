// Pictures on the forms: OLE picture objects drawn into an element, loaded
// from a file or from this module's bitmaps.
#pragma once

#include <windows.h>
#include <ocidl.h>
#include <string>

#include "com/raii.h"

namespace brevantis {

// Draws picture at its own size in the top left corner of box, or scaled
// down, keeping its proportions, when it is larger than box. An empty or
// missing picture draws nothing.
void DrawPictureFitted(HDC dc, const RECT& box, IPictureDisp* picture);

// The picture in a file (bitmap, icon, metafile, GIF or JPEG); empty when the
// file is missing, empty or not a picture.
ComPtr<IPictureDisp> LoadPictureFile(const std::wstring& path);

// A bitmap of this module as a picture that owns its bitmap. Its light grey,
// RGB(192, 192, 192), turns into the system's face colour, so that the
// picture lies on the form without a frame.
ComPtr<IPictureDisp> LoadBitmapPicture(int resourceId);

}  // namespace brevantis
