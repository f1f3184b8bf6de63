#include "model/picture_stream.h"

#include <olectl.h>

#include <cstdint>

#include "com/failure.h"
#include "com/raii.h"
#include "model/property_codec.h"

namespace brevantis {
namespace {

constexpr DWORD kPictureTag = 0x0000746C;  // "lt"

// A bitmap as a 24-bit .bmp file. Written here rather than by the picture
// object, whose own writer on some systems produces 32-bit files with
// bit-field compression but no masks, which no reader accepts.
HRESULT BitmapFile(HBITMAP bitmap, std::string* file) {
  BITMAP info = {};
  if (!GetObjectW(bitmap, sizeof(info), &info)) return E_FAIL;
  BITMAPINFOHEADER header = {};
  header.biSize = sizeof(header);
  header.biWidth = info.bmWidth;
  header.biHeight = info.bmHeight;
  header.biPlanes = 1;
  header.biBitCount = 24;
  header.biCompression = BI_RGB;
  // No bitmap larger than a saved form may hold; counted in 64 bits, where
  // width and height cannot overflow.
  const std::uint64_t stride = (static_cast<std::uint64_t>(info.bmWidth) * 3 + 3) & ~std::uint64_t(3);
  const std::uint64_t size = stride * static_cast<std::uint64_t>(info.bmHeight);
  if (size > kCodecMaxBodyBytes) return E_OUTOFMEMORY;
  header.biSizeImage = static_cast<DWORD>(size);
  std::string pixels(header.biSizeImage, '\0');
  const int lines = GetDIBits(ScreenDc(GetDC(nullptr)).Get(), bitmap, 0, info.bmHeight, &pixels[0],
                              reinterpret_cast<BITMAPINFO*>(&header), DIB_RGB_COLORS);
  if (lines != info.bmHeight) return E_FAIL;
  BITMAPFILEHEADER fileHeader = {};
  fileHeader.bfType = 0x4D42;  // "BM"
  fileHeader.bfOffBits = sizeof(fileHeader) + sizeof(header);
  fileHeader.bfSize = fileHeader.bfOffBits + header.biSizeImage;
  file->assign(reinterpret_cast<const char*>(&fileHeader), sizeof(fileHeader));
  file->append(reinterpret_cast<const char*>(&header), sizeof(header));
  file->append(pixels);
  return S_OK;
}

}  // namespace

HRESULT PictureToBytes(IUnknown* picture, std::string* bytes) {
  ComPtr<IPicture> pic;
  RETURN_IF_FAILED(picture->QueryInterface(IID_IPicture, pic.OutVoid()));
  SHORT type = PICTYPE_UNINITIALIZED;
  OLE_HANDLE handle = 0;
  if (SUCCEEDED(pic->get_Type(&type)) && type == PICTYPE_BITMAP && SUCCEEDED(pic->get_Handle(&handle))) {
    std::string file;
    RETURN_IF_FAILED(BitmapFile(reinterpret_cast<HBITMAP>(static_cast<UINT_PTR>(handle)), &file));
    const DWORD header[2] = {kPictureTag, static_cast<DWORD>(file.size())};
    bytes->assign(reinterpret_cast<const char*>(header), sizeof(header));
    bytes->append(file);
    return S_OK;
  }
  ComPtr<IPersistStream> persist;
  RETURN_IF_FAILED(picture->QueryInterface(IID_IPersistStream, persist.OutVoid()));
  ComPtr<IStream> stream;
  RETURN_IF_FAILED(CreateStreamOnHGlobal(nullptr, TRUE, stream.Out()));
  RETURN_IF_FAILED(persist->Save(stream.Get(), TRUE));
  HGLOBAL memory = nullptr;
  STATSTG stat = {};
  RETURN_IF_FAILED(GetHGlobalFromStream(stream.Get(), &memory));
  RETURN_IF_FAILED(stream->Stat(&stat, STATFLAG_NONAME));
  const void* data = GlobalLock(memory);
  RETURN_HR_IF(E_OUTOFMEMORY, !data);
  bytes->assign(static_cast<const char*>(data), static_cast<size_t>(stat.cbSize.QuadPart));
  GlobalUnlock(memory);
  return S_OK;
}

HRESULT BytesToPicture(const std::string& bytes, IPictureDisp** picture) {
  *picture = nullptr;
  ComPtr<IStream> stream;
  RETURN_IF_FAILED(CreateStreamOnHGlobal(nullptr, TRUE, stream.Out()));
  RETURN_IF_FAILED(stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr));
  const LARGE_INTEGER start = {};
  stream->Seek(start, STREAM_SEEK_SET, nullptr);
  ComPtr<IPersistStream> persist;
  RETURN_IF_FAILED(
      CoCreateInstance(CLSID_StdPicture, nullptr, CLSCTX_INPROC_SERVER, IID_IPersistStream, persist.OutVoid()));
  RETURN_IF_FAILED(persist->Load(stream.Get()));
  return persist->QueryInterface(IID_IPictureDisp, reinterpret_cast<void**>(picture));
}

}  // namespace brevantis
