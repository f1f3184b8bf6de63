// Pictures as bytes in the standard OLE picture stream: the tag "lt", the
// data's length, then the picture file (a .bmp, .ico ...).
#pragma once

#include <windows.h>
#include <ocidl.h>
#include <string>

namespace brevantis {

HRESULT PictureToBytes(IUnknown* picture, std::string* bytes);
HRESULT BytesToPicture(const std::string& bytes, IPictureDisp** picture);

}  // namespace brevantis
