#include "screens_fixture.h"

#include <commctrl.h>
#include <olectl.h>

#include <vector>

#include "form_probe.h"

namespace brevantis::testing {
namespace {

constexpr char kProbeAnswer[] = "Brevantis online";

}  // namespace

void ScreensTest::SetUp() {
  ASSERT_TRUE(SUCCEEDED(OleInitialize(nullptr)));
  Store& s = store();
  s.Initialise();
  s[kProgramName].text = L"Atlante Stradale";
  s[kAuthor1].text = L"Giulia Bianchi";
  s[kAuthor2].text = L"Marco Ferri";
  s[kAuthor3].text = L"Elena Conti";
  s[kWebSiteURL].text = L"";
}

void ScreensTest::TearDown() {
  // Forms first, while OLE still holds the pictures they show.
  CurrentScreens() = ThreadScreens();
  store().Initialise();
  OleUninitialize();
}

ComPtr<IPictureDisp> SolidPicture(int width, int height, COLORREF colour) {
  const HDC screen = GetDC(nullptr);
  const HDC memory = CreateCompatibleDC(screen);
  PICTDESC desc = {};
  desc.cbSizeofstruct = sizeof(desc);
  desc.picType = PICTYPE_BITMAP;
  desc.bmp.hbitmap = CreateCompatibleBitmap(screen, width, height);
  const HGDIOBJ old = SelectObject(memory, desc.bmp.hbitmap);
  GdiObject brush(CreateSolidBrush(colour));
  const RECT all = {0, 0, width, height};
  FillRect(memory, &all, static_cast<HBRUSH>(brush.Get()));
  SelectObject(memory, old);
  DeleteDC(memory);
  ReleaseDC(nullptr, screen);
  ComPtr<IPictureDisp> picture;
  EXPECT_EQ(S_OK, OleCreatePictureIndirect(&desc, IID_IPictureDisp, TRUE, picture.OutVoid()));
  return picture;
}

ComPtr<IPictureDisp> IconPicture() {
  PICTDESC desc = {};
  desc.cbSizeofstruct = sizeof(desc);
  desc.picType = PICTYPE_ICON;
  desc.icon.hicon = CopyIcon(LoadIconW(nullptr, IDI_INFORMATION));
  ComPtr<IPictureDisp> picture;
  EXPECT_EQ(S_OK, OleCreatePictureIndirect(&desc, IID_IPictureDisp, TRUE, picture.OutVoid()));
  return picture;
}

void WriteBitmapFile(const std::wstring& path, int width, int height, COLORREF colour) {
  const DWORD rowBytes = static_cast<DWORD>((width * 3 + 3) & ~3);
  BITMAPFILEHEADER file = {};
  BITMAPINFOHEADER info = {};
  info.biSize = sizeof(info);
  info.biWidth = width;
  info.biHeight = height;
  info.biPlanes = 1;
  info.biBitCount = 24;
  info.biSizeImage = rowBytes * height;
  file.bfType = 0x4D42;  // "BM"
  file.bfOffBits = sizeof(file) + sizeof(info);
  file.bfSize = file.bfOffBits + info.biSizeImage;
  std::vector<BYTE> pixels(info.biSizeImage);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      BYTE* pixel = &pixels[y * rowBytes + x * 3];
      pixel[0] = GetBValue(colour);
      pixel[1] = GetGValue(colour);
      pixel[2] = GetRValue(colour);
    }
  FileHandle out(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  ASSERT_TRUE(out);
  DWORD written = 0;
  WriteFile(out.Get(), &file, sizeof(file), &written, nullptr);
  WriteFile(out.Get(), &info, sizeof(info), &written, nullptr);
  WriteFile(out.Get(), pixels.data(), static_cast<DWORD>(pixels.size()), &written, nullptr);
}

std::wstring ModuleFolder() {
  wchar_t path[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  std::wstring folder(path);
  return folder.substr(0, folder.rfind(L'\\') + 1);
}

COLORREF DrawnPixel(HWND form, int id, int x, int y) {
  const HWND item = GetDlgItem(form, id);
  RECT box;
  GetClientRect(item, &box);
  const HDC screen = GetDC(nullptr);
  const HDC memory = CreateCompatibleDC(screen);
  GdiObject bitmap(CreateCompatibleBitmap(screen, box.right, box.bottom));
  ReleaseDC(nullptr, screen);
  const HGDIOBJ old = SelectObject(memory, bitmap.Get());
  FillRect(memory, &box, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  DRAWITEMSTRUCT draw = {};
  draw.CtlType = ODT_STATIC;
  draw.CtlID = static_cast<UINT>(id);
  draw.itemAction = ODA_DRAWENTIRE;
  draw.hwndItem = item;
  draw.hDC = memory;
  draw.rcItem = box;
  SendMessageW(form, WM_DRAWITEM, static_cast<WPARAM>(id), reinterpret_cast<LPARAM>(&draw));
  const COLORREF pixel = GetPixel(memory, x, y);
  SelectObject(memory, old);
  DeleteDC(memory);
  return pixel;
}

COLORREF TextColour(HWND form, int id) {
  const HDC memory = CreateCompatibleDC(nullptr);
  SetTextColor(memory, RGB(0, 0, 0));
  SendMessageW(form, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(memory),
               reinterpret_cast<LPARAM>(GetDlgItem(form, id)));
  const COLORREF colour = GetTextColor(memory);
  DeleteDC(memory);
  return colour;
}

std::wstring ToolTipText(HWND form, int id) {
  HWND tip = FindWindowExW(nullptr, nullptr, TOOLTIPS_CLASSW, nullptr);
  while (tip && GetWindow(tip, GW_OWNER) != form) tip = FindWindowExW(nullptr, tip, TOOLTIPS_CLASSW, nullptr);
  if (!tip) return L"";
  std::wstring text(1024, L'\0');
  TTTOOLINFOW tool = {};
  tool.cbSize = TTTOOLINFOW_V2_SIZE;
  tool.hwnd = form;
  tool.uId = reinterpret_cast<UINT_PTR>(GetDlgItem(form, id));
  tool.lpszText = &text[0];
  SendMessageW(tip, TTM_GETTEXTW, text.size(), reinterpret_cast<LPARAM>(&tool));
  text.resize(wcslen(text.c_str()));
  return text;
}

OnlineWithBrowser::OnlineWithBrowser(RecordingPlatform& platform)
    : server_(LocalHttpServer::Behaviour::Answer, kProbeAnswer), settings_(server_.Url()) {
  platform.connected = true;
  platform.executable = L"C:\\B\\b.exe";
  CurrentStore()[kWinTempDir].text = temp_.Path();
}

}  // namespace brevantis::testing
