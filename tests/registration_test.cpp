// Registration through the control's entry points, in a prefix of its own.
#include <gtest/gtest.h>

#include "BrevantisLib_h.h"
#include "test_paths.h"
#include "testkit/registry_snapshot.h"

using brevantis::testing::SnapshotRegistry;

namespace {

template <class... Args>
HRESULT Call(const char* entry, Args... args) {
  const auto found = reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(BREVANTIS_OCX_PATH), entry));
  return found ? reinterpret_cast<HRESULT(STDAPICALLTYPE*)(Args...)>(found)(args...) : E_NOTIMPL;
}

std::wstring Guid(REFGUID guid) {
  wchar_t text[40] = {};
  return std::wstring(text, StringFromGUID2(guid, text, 40) - 1);
}

// The values a container reads under root\classes.
void ExpectContainerKeys(HKEY root, const std::wstring& classes) {
  const std::wstring path = BREVANTIS_OCX_PATH, libid = Guid(LIBID_BrevantisLib), clsid = Guid(CLSID_Brevantis);
  const std::wstring control = classes + L"CLSID\\" + clsid, progId = classes + L"BrevantisLib.Brevantis";
  const struct { std::wstring key; const wchar_t* name; std::wstring expected; } rows[] = {
      {control + L"\\InprocServer32", nullptr, path},
      {control + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
      {control + L"\\ProgID", nullptr, L"BrevantisLib.Brevantis.1"},
      {control + L"\\VersionIndependentProgID", nullptr, L"BrevantisLib.Brevantis"},
      {progId + L".1\\CLSID", nullptr, clsid},
      {progId + L"\\CLSID", nullptr, clsid},
      {control + L"\\Control", nullptr, L""},
      {control + L"\\ToolboxBitmap32", nullptr, path + L", 1"},
      {control + L"\\TypeLib", nullptr, libid},
      {control + L"\\Version", nullptr, L"1.3"},
      {classes + L"CLSID\\" + Guid(CLSID_clsCryptoFilterBox) + L"\\Control", nullptr, L"<missing>"},
      {classes + L"TypeLib\\" + libid + L"\\1.3\\409\\" BREVANTIS_TYPELIB_PLATFORM, nullptr, path},
      {classes + L"Interface\\" + Guid(IID__Brevantis) + L"\\TypeLib", nullptr, libid}};
  auto read = [&](const std::wstring& key, const wchar_t* name) {
    wchar_t data[1024] = {};
    DWORD bytes = sizeof(data) - sizeof(wchar_t);
    const LONG rc = RegGetValueW(root, key.c_str(), name, RRF_RT_REG_SZ, nullptr, data, &bytes);
    return std::wstring(rc == ERROR_SUCCESS ? data : L"<missing>");
  };
  for (const auto& row : rows) EXPECT_EQ(row.expected, read(row.key, row.name)) << row.key;
  const unsigned long misc = OLEMISC_INVISIBLEATRUNTIME | OLEMISC_SETCLIENTSITEFIRST;  // what containers need
  EXPECT_EQ(misc, std::wcstoul(read(control + L"\\MiscStatus\\1", nullptr).c_str(), nullptr, 10) & misc);
}

TEST(Registration, RegistersWhatContainersNeedAndUnregistersAllOfIt) {
  const auto before = SnapshotRegistry(HKEY_CLASSES_ROOT, L"");
  for (int time = 0; time < 2; ++time) {  // a second time is harmless, each time
    ASSERT_EQ(S_OK, Call("DllRegisterServer"));
    ExpectContainerKeys(HKEY_CLASSES_ROOT, L"");
  }
  for (int time = 0; time < 2; ++time) {
    EXPECT_EQ(S_OK, Call("DllUnregisterServer"));
    EXPECT_EQ(before, SnapshotRegistry(HKEY_CLASSES_ROOT, L""));
  }
}

TEST(Registration, PerUserRegistrationStaysWithTheUser) {
  const auto machine = SnapshotRegistry(HKEY_LOCAL_MACHINE, L"Software\\Classes");
  const auto user = SnapshotRegistry(HKEY_CURRENT_USER, L"Software");
  ASSERT_EQ(S_OK, Call("DllInstall", TRUE, L"user"));
  ExpectContainerKeys(HKEY_CURRENT_USER, L"Software\\Classes\\");
  ASSERT_EQ(S_OK, Call("DllInstall", FALSE, L"user"));
  EXPECT_EQ(user, SnapshotRegistry(HKEY_CURRENT_USER, L"Software"));
  EXPECT_EQ(machine, SnapshotRegistry(HKEY_LOCAL_MACHINE, L"Software\\Classes"));
}

}  // namespace
