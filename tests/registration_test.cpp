// Registration by the real regsvr32 in a prefix of its own: the keys that
// containers and script hosts look for, and nothing left behind afterwards.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "BrevantisLib_h.h"
#include "com/raii.h"
#include "test_paths.h"
#include "testkit/registry_snapshot.h"

using namespace brevantis;
using brevantis::testing::SnapshotRegistry;

namespace {

DWORD Run(const std::wstring& commandLine) {
  std::wstring line = commandLine;
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION process = {};
  if (!CreateProcessW(nullptr, &line[0], nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
    return GetLastError();
  KernelHandle thread(process.hThread), handle(process.hProcess);
  WaitForSingleObject(handle.Get(), 60000);
  DWORD code = 1;
  GetExitCodeProcess(handle.Get(), &code);
  return code;
}

DWORD Regsvr32(const wchar_t* options) {
  return Run(std::wstring(L"regsvr32.exe ") + options + L" \"" + BREVANTIS_OCX_PATH + L"\"");
}

std::wstring Guid(REFGUID guid) {
  wchar_t text[40] = {};
  StringFromGUID2(guid, text, 40);
  return text;
}

// The default value (name nullptr) or a named value of an HKCR key; "<missing>" when absent.
std::wstring Value(const std::wstring& key, const wchar_t* name = nullptr) {
  wchar_t data[1024] = {};
  DWORD bytes = sizeof(data) - sizeof(wchar_t);
  if (RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), name, RRF_RT_REG_SZ, nullptr, data, &bytes) != ERROR_SUCCESS)
    return L"<missing>";
  return data;
}

std::wstring Lower(std::wstring text) {
  std::transform(text.begin(), text.end(), text.begin(), towlower);
  return text;
}

std::set<std::wstring> Difference(const std::set<std::wstring>& a, const std::set<std::wstring>& b) {
  std::set<std::wstring> result;
  std::set_difference(a.begin(), a.end(), b.begin(), b.end(), std::inserter(result, result.end()));
  return result;
}

TEST(Registration, RegistersWhatContainersNeedAndUnregistersAllOfIt) {
  const std::set<std::wstring> before = SnapshotRegistry(HKEY_CLASSES_ROOT, L"");
  ASSERT_FALSE(before.empty());

  ASSERT_EQ(0u, Regsvr32(L"/s"));
  const std::wstring control = L"CLSID\\" + Guid(CLSID_Brevantis);
  const std::wstring crypto = L"CLSID\\" + Guid(CLSID_clsCryptoFilterBox);
  const std::wstring libid = Guid(LIBID_BrevantisLib);

  EXPECT_EQ(Lower(BREVANTIS_OCX_PATH), Lower(Value(control + L"\\InprocServer32")));
  EXPECT_EQ(L"Apartment", Value(control + L"\\InprocServer32", L"ThreadingModel"));
  EXPECT_EQ(L"BrevantisLib.Brevantis.1", Value(control + L"\\ProgID"));
  EXPECT_EQ(L"BrevantisLib.Brevantis", Value(control + L"\\VersionIndependentProgID"));
  EXPECT_EQ(libid, Value(control + L"\\TypeLib"));
  EXPECT_EQ(L"1.3", Value(control + L"\\Version"));
  EXPECT_EQ(L"", Value(control + L"\\Control"));
  EXPECT_EQ(Lower(BREVANTIS_OCX_PATH) + L", 1", Lower(Value(control + L"\\ToolboxBitmap32")));
  const unsigned long misc = std::stoul(Value(control + L"\\MiscStatus\\1"));
  EXPECT_TRUE(misc & OLEMISC_INVISIBLEATRUNTIME);
  EXPECT_TRUE(misc & OLEMISC_SETCLIENTSITEFIRST);
  EXPECT_EQ(L"", Value(control + L"\\Implemented Categories\\{40FC6ED4-2438-11CF-A3DB-080036F12502}"));

  EXPECT_EQ(Lower(BREVANTIS_OCX_PATH), Lower(Value(crypto + L"\\InprocServer32")));
  EXPECT_EQ(L"BrevantisLib.clsCryptoFilterBox.1", Value(crypto + L"\\ProgID"));
  EXPECT_EQ(L"<missing>", Value(crypto + L"\\Control"));
  EXPECT_EQ(L"<missing>", Value(crypto + L"\\Implemented Categories\\{40FC6ED4-2438-11CF-A3DB-080036F12502}"));

  for (const wchar_t* progId : {L"BrevantisLib.Brevantis", L"BrevantisLib.clsCryptoFilterBox"}) {
    SCOPED_TRACE(progId);
    const std::wstring versioned = std::wstring(progId) + L".1";
    EXPECT_EQ(versioned, Value(std::wstring(progId) + L"\\CurVer"));
    EXPECT_EQ(Value(std::wstring(progId) + L"\\CLSID"), Value(versioned + L"\\CLSID"));
  }
  EXPECT_EQ(Guid(CLSID_Brevantis), Value(L"BrevantisLib.Brevantis\\CLSID"));

  EXPECT_EQ(L"Ostrel Brevantis ActiveX Control", Value(L"TypeLib\\" + libid + L"\\1.3"));
  EXPECT_EQ(Lower(BREVANTIS_OCX_PATH), Lower(Value(L"TypeLib\\" + libid + L"\\1.3\\409\\" BREVANTIS_TYPELIB_PLATFORM)));
  EXPECT_NE(L"<missing>", Value(L"Interface\\" + Guid(IID__Brevantis)));

  const std::set<std::wstring> registered = SnapshotRegistry(HKEY_CLASSES_ROOT, L"");
  ASSERT_EQ(0u, Regsvr32(L"/s"));  // registering twice changes nothing
  EXPECT_EQ(registered, SnapshotRegistry(HKEY_CLASSES_ROOT, L""));

  ASSERT_EQ(0u, Regsvr32(L"/u /s"));
  const std::set<std::wstring> after = SnapshotRegistry(HKEY_CLASSES_ROOT, L"");
  const std::set<std::wstring> left = Difference(after, before), lost = Difference(before, after);
  for (const std::wstring& line : left) ADD_FAILURE() << "left behind: " << std::string(line.begin(), line.end());
  for (const std::wstring& line : lost) ADD_FAILURE() << "removed: " << std::string(line.begin(), line.end());

  EXPECT_EQ(0u, Regsvr32(L"/u /s"));  // unregistering what is not registered is harmless
  EXPECT_EQ(before, SnapshotRegistry(HKEY_CLASSES_ROOT, L""));
}

TEST(Registration, PerUserRegistrationStaysWithTheUser) {
  // Another version of the library the user registered stays.
  const std::wstring user = L"Software\\Classes\\";
  const std::wstring libid = Guid(LIBID_BrevantisLib);
  const std::wstring older = user + L"TypeLib\\" + libid + L"\\1.2";
  ASSERT_EQ(ERROR_SUCCESS, RegSetKeyValueW(HKEY_CURRENT_USER, older.c_str(), nullptr, REG_SZ, L"1.2", 8));
  const std::set<std::wstring> machineBefore = SnapshotRegistry(HKEY_LOCAL_MACHINE, L"Software\\Classes");
  const std::set<std::wstring> userBefore = SnapshotRegistry(HKEY_CURRENT_USER, L"Software\\Classes");

  ASSERT_EQ(0u, Regsvr32(L"/s /n /i:user"));
  auto userValue = [&](const std::wstring& key) {
    wchar_t data[1024] = {};
    DWORD bytes = sizeof(data) - sizeof(wchar_t);
    if (RegGetValueW(HKEY_CURRENT_USER, (user + key).c_str(), nullptr, RRF_RT_REG_SZ, nullptr, data, &bytes) !=
        ERROR_SUCCESS)
      return std::wstring(L"<missing>");
    return std::wstring(data);
  };
  EXPECT_EQ(Lower(BREVANTIS_OCX_PATH), Lower(userValue(L"CLSID\\" + Guid(CLSID_Brevantis) + L"\\InprocServer32")));
  EXPECT_EQ(Guid(CLSID_clsCryptoFilterBox), userValue(L"BrevantisLib.clsCryptoFilterBox\\CLSID"));
  EXPECT_EQ(Lower(BREVANTIS_OCX_PATH), Lower(userValue(L"TypeLib\\" + libid + L"\\1.3\\409\\" BREVANTIS_TYPELIB_PLATFORM)));
  EXPECT_EQ(libid, userValue(L"Interface\\" + Guid(IID__Brevantis) + L"\\TypeLib"));
  EXPECT_EQ(machineBefore, SnapshotRegistry(HKEY_LOCAL_MACHINE, L"Software\\Classes"));

  ASSERT_EQ(0u, Regsvr32(L"/u /s /n /i:user"));
  EXPECT_EQ(userBefore, SnapshotRegistry(HKEY_CURRENT_USER, L"Software\\Classes"));
  EXPECT_EQ(machineBefore, SnapshotRegistry(HKEY_LOCAL_MACHINE, L"Software\\Classes"));
  RegDeleteTreeW(HKEY_CURRENT_USER, (user + L"TypeLib\\" + libid).c_str());
}

}  // namespace
