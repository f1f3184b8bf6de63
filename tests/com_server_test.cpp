// The server as clients see it through the test prefix's registry; in process its registry reader and failures.
#include <gtest/gtest.h>

#include "BrevantisLib_h.h"
#include "com/failure.h"
#include "control/brevantis_control.h"
#include "platform/registry.h"
#include "test_paths.h"
#include "testkit/dispatch_client.h"
#include "testkit/message_box_watcher.h"

static std::atomic<long> allocationsUntilFailure{0};  // operator new fails the n-th allocation from setting n

void* operator new(std::size_t size) {
  const bool fail = allocationsUntilFailure > 0 && --allocationsUntilFailure == 0;
  void* block = fail ? nullptr : HeapAlloc(GetProcessHeap(), 0, size ? size : 1);
  return block ? block : throw std::bad_alloc();
}
void operator delete(void* block) noexcept { HeapFree(GetProcessHeap(), 0, block); }
void operator delete(void* block, std::size_t) noexcept { HeapFree(GetProcessHeap(), 0, block); }

using namespace brevantis;

namespace {

const wchar_t kControl[] = L"BrevantisLib.Brevantis";

class ComTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr))); }
  void TearDown() override { CoUninitialize(); }

  // A put as a script host makes it: S_OK, or the error the object raised.
  static HRESULT Put(DispatchClient& client, const wchar_t* name, BSTR value) {
    VARIANT arg;
    V_VT(&arg) = VT_BSTR, V_BSTR(&arg) = value;
    EXCEPINFO error = {};
    const HRESULT hr = client.Put(name, arg, &error);
    SysFreeString(error.bstrSource), SysFreeString(error.bstrDescription), SysFreeString(error.bstrHelpFile);
    return hr == DISP_E_EXCEPTION ? error.scode : hr;
  }
};

// Both classes by each ProgID, and every string property their type information lists, by its lower-case name:
// a NUL-embedded and a huge string come back whole (ProgramName keeps 50 characters), a null one reads as empty.
TEST_F(ComTest, EveryStringPropertyTakesNullHugeAndNulEmbeddedStrings) {
  brevantis::testing::MessageBoxWatcher cryptoSetupMessages{L"Brevantis"};  // a new crypto box tells of its keys
  const struct { const wchar_t* progId; const CLSID* clsid; } classes[] = {
      {kControl, &CLSID_Brevantis}, {L"BrevantisLib.Brevantis.1", &CLSID_Brevantis},
      {L"BrevantisLib.clsCryptoFilterBox", &CLSID_clsCryptoFilterBox},
      {L"BrevantisLib.clsCryptoFilterBox.1", &CLSID_clsCryptoFilterBox}};
  const std::wstring nulEmbedded(L"a\0b\u00e8\u4e2d", 5), huge(1 << 20, L'z');
  for (const auto& created : classes) {
    SCOPED_TRACE(created.progId);
    CLSID clsid = {};
    DispatchClient object;
    ComPtr<ITypeInfo> info;
    EXPECT_TRUE(SUCCEEDED(CLSIDFromProgID(created.progId, &clsid)) && IsEqualCLSID(*created.clsid, clsid));
    ASSERT_EQ(S_OK, object.Create(created.progId));
    ASSERT_EQ(S_OK, object.Get()->GetTypeInfo(0, 0, info.Out()));
    const bool control = created.clsid == &CLSID_Brevantis;  // refuses the put: 382; the box has no such name
    EXPECT_EQ(control ? MAKE_HRESULT(1, FACILITY_CONTROL, 382) : DISP_E_UNKNOWNNAME, Put(object, L"OSName", nullptr));
    FUNCDESC* f = nullptr;
    for (UINT i = 0; SUCCEEDED(info->GetFuncDesc(i, &f)); info->ReleaseFuncDesc(f), ++i) {
      Bstr name;
      info->GetDocumentation(f->memid, name.Out(), nullptr, nullptr, nullptr);
      if (f->invkind != INVOKE_PROPERTYPUT || f->lprgelemdescParam[0].tdesc.vt != VT_BSTR) continue;
      SCOPED_TRACE(name.Get());
      const size_t limit = std::wstring(name.Get()) == L"ProgramName" ? 50 : std::wstring::npos;
      DISPID id = 0;
      LPOLESTR lowerCase = CharLowerW(name.Get());
      EXPECT_TRUE(SUCCEEDED(object.Get()->GetIDsOfNames(IID_NULL, &lowerCase, 1, 0, &id)) && id == f->memid);
      const std::wstring before = object.GetString(name.Get());
      for (const std::wstring* text : {&nulEmbedded, &huge, static_cast<const std::wstring*>(nullptr)}) {
        const HRESULT hr = Put(object, name.Get(), text ? Bstr(text->data(), UINT(text->size())).Get() : nullptr);
        EXPECT_EQ(hr == S_OK ? (text ? text->substr(0, limit) : L"") : before, object.GetString(name.Get()));
        if (hr != S_OK) break;  // refused: the value is as it was
      }
    }
  }
}

TEST_F(ComTest, InstancesShareValuesOnAThreadAndHaveTheirOwnOnAnother) {
  DispatchClient first, second;
  ASSERT_TRUE(SUCCEEDED(first.Create(kControl)) && SUCCEEDED(second.Create(kControl)));
  ASSERT_EQ(S_OK, first.PutString(L"ProgramName", L"Qui"));
  std::wstring there;
  std::thread([&] {
    CoInitialize(nullptr);
    DispatchClient other;
    if (SUCCEEDED(other.Create(kControl)) && SUCCEEDED(other.PutString(L"Author1", L"Altrove")))
      there = other.GetString(L"ProgramName") + L"|" + other.GetString(L"Author1");
    other = DispatchClient();
    CoUninitialize();
  }).join();
  EXPECT_EQ(L"|Altrove", there);
  EXPECT_EQ(L"Qui|", second.GetString(L"ProgramName") + L"|" + first.GetString(L"Author1"));
}

// A host may load the OCX and unload it: it serves its classes only, may unload only with no object or lock
// left, and gives back the thread-local slot its stores took.
TEST_F(ComTest, TheOcxServesItsClassesAndUnloadsClean) {
  const auto freeSlot = [] { const DWORD slot = TlsAlloc(); return TlsFree(slot), slot; };
  const DWORD freeBefore = freeSlot();
  const HMODULE ocx = LoadLibraryW(BREVANTIS_OCX_PATH);
  const auto entry = [ocx](const char* name) { return reinterpret_cast<void*>(GetProcAddress(ocx, name)); };
  const auto getClassObject = reinterpret_cast<HRESULT(WINAPI*)(REFCLSID, REFIID, void**)>(entry("DllGetClassObject"));
  const auto canUnload = reinterpret_cast<HRESULT(WINAPI*)()>(entry("DllCanUnloadNow"));
  ASSERT_TRUE(getClassObject && canUnload);  // and the OCX loaded
  ComPtr<IClassFactory> factory;
  ComPtr<_Brevantis> control;
  EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, getClassObject(IID_IDispatch, IID_IClassFactory, factory.OutVoid()));
  ASSERT_EQ(S_OK, getClassObject(CLSID_Brevantis, IID_IClassFactory, factory.OutVoid()));
  EXPECT_EQ(CLASS_E_NOAGGREGATION, factory->CreateInstance(factory.Get(), IID_IUnknown, control.OutVoid()));
  EXPECT_EQ(E_NOINTERFACE, factory->CreateInstance(nullptr, IID_IClassFactory, control.OutVoid()));
  ASSERT_EQ(S_OK, factory->CreateInstance(nullptr, IID__Brevantis, control.OutVoid()));
  ASSERT_EQ(S_OK, control->put_ProgramName(Bstr(L"Atlante").Get()));  // the thread's store is made
  ASSERT_EQ(S_OK, factory->LockServer(TRUE));
  factory.Reset();
  EXPECT_EQ(S_FALSE, canUnload());  // an object and a lock
  control.Reset();
  EXPECT_EQ(S_FALSE, canUnload());  // the lock
  ASSERT_EQ(S_OK, getClassObject(CLSID_Brevantis, IID_IClassFactory, factory.OutVoid()));
  ASSERT_EQ(S_OK, factory->LockServer(FALSE));
  factory.Reset();
  EXPECT_EQ(S_OK, canUnload());
  FreeLibrary(ocx);
  EXPECT_EQ(freeBefore, freeSlot());
}

// A type's members in slot order as "Name dispid kinds parameters, ...": ~ marks one kept out of the property
// browser; kinds are m (method), g, p, r (get, put, putref); parameters, of all but the gets, are VARTYPEs
// (8 BSTR, 3 long, 11 bool, 2 short, 29 user-defined), * a pointer, ? optional, & out.
std::wstring Contract(ITypeInfo* info) {
  std::wstring out, last;
  FUNCDESC* f = nullptr;
  for (UINT i = 0; SUCCEEDED(info->GetFuncDesc(i, &f)); info->ReleaseFuncDesc(f), ++i) {
    Bstr name;
    if (f->memid >= 0x60000000) continue;  // IDispatch's own, in a dual interface
    info->GetDocumentation(f->memid, name.Out(), nullptr, nullptr, nullptr);
    if (last != name.Get())
      out += (out.empty() ? L"" : L", ") + std::wstring(name.Get()) +
             (f->wFuncFlags & FUNCFLAG_FNONBROWSABLE ? L"~ " : L" ") + std::to_wstring(f->memid) + L" ";
    last = name.Get();
    out += L"?mg?p???r"[f->invkind];
    for (SHORT p = 0; p < f->cParams && f->invkind != INVOKE_PROPERTYGET; ++p) {
      const TYPEDESC& t = f->lprgelemdescParam[p].tdesc;
      const USHORT flags = f->lprgelemdescParam[p].paramdesc.wParamFlags;
      out += L" " + std::to_wstring(t.vt == VT_PTR ? t.lptdesc->vt : t.vt) + (t.vt == VT_PTR ? L"*" : L"") +
             (flags & PARAMFLAG_FOPT ? L"?" : L"") + (flags & PARAMFLAG_FOUT ? L"&" : L"");
    }
  }
  return out;
}

TEST_F(ComTest, TypesKeepTheirContractAndHelpStringsTheirText) {
  ComPtr<ITypeLib> lib;
  ASSERT_EQ(S_OK, LoadTypeLibEx(BREVANTIS_OCX_PATH, REGKIND_NONE, lib.Out()));
  const WORD dual = TYPEFLAG_FHIDDEN | TYPEFLAG_FDUAL | TYPEFLAG_FNONEXTENSIBLE | TYPEFLAG_FDISPATCHABLE;
  // Flags, version, members, and part of a help string that passed the build's code-page and line-break step.
  const struct { const GUID* guid; WORD flags, version; MEMBERID id; const wchar_t *members, *help; } types[] = {
      {&IID__Brevantis, dual, 0x102, -552,
       L"About -552 m, OpenCD 1 m, ShowAbout 2 m, ShowSplashScreen 3 m, WebConnect 4 m 8?, ProgramName 10 gp 8, "
       L"Author1 11 gp 8, Author2 12 gp 8, Author3 13 gp 8, WebSiteURL~ 14 gp 8, ProgramPicture 15 gr 29*, "
       L"ProgramIcon 16 gr 29*, ProgramMajor~ 17 gp 3, ProgramMinor~ 18 gp 3, ProgramRevision~ 19 gp 3, "
       L"SplashScreenInterval 20 gp 3, CopyrightFromDate 21 gp 8, CopyrightToDate 22 gp 8, CompanyName 23 gp 8, "
       L"CompanyEmail 24 gp 8, CompanyLogo 25 gr 29*, AboutWavSound 26 gp 8, UpdatesURL~ 27 gp 8, "
       L"DefaultProgramFolder 28 gp 8, CompanyPhoneNumber 29 gp 8, CompanyFaxNumber 30 gp 8, Version 31 gp 8, "
       L"CDIndexFile~ 32 gp 8, IsWindowsNT~ 33 gp 11, WinSysDir~ 34 gp 8, WinTempDir~ 35 gp 8, OSName~ 36 gp 8",
       L"Da essa \u00e8 possibile"},
      {&DIID___Brevantis, TYPEFLAG_FHIDDEN | TYPEFLAG_FDISPATCHABLE, 0x102, 1, L"Error 1 m 2*& 8*&",
       L"errore\r\nnon bloccante"},
      {&IID__clsCryptoFilterBox, dual, 0x100, 1,
       L"InBuffer 1 gp 8, OutBuffer 2 g, Signature 3 gp 8, Sign 4 m, Validate 5 m, Encrypt 6 m, Decrypt 7 m, "
       L"Status 8 g, Password 9 gp 8", L""},
      {&CLSID_Brevantis, TYPEFLAG_FCANCREATE | TYPEFLAG_FCONTROL, 0, -1, L"", L""},
      {&CLSID_clsCryptoFilterBox, TYPEFLAG_FCANCREATE, 0, -1, L"", L""}};
  for (const auto& type : types) {
    SCOPED_TRACE(type.members);
    ComPtr<ITypeInfo> info;
    TYPEATTR* attr = nullptr;
    Bstr help;
    ASSERT_EQ(S_OK, lib->GetTypeInfoOfGuid(*type.guid, info.Out()));
    ASSERT_EQ(S_OK, info->GetTypeAttr(&attr));
    EXPECT_EQ(type.flags, attr->wTypeFlags);
    EXPECT_EQ(type.version, attr->wMajorVerNum << 8 | attr->wMinorVerNum);
    info->ReleaseTypeAttr(attr);
    EXPECT_EQ(type.members, Contract(info.Get()));
    ASSERT_EQ(S_OK, info->GetDocumentation(type.id, nullptr, help.Out(), nullptr, nullptr));
    EXPECT_NE(std::wstring::npos, std::wstring(help.Get() ? help.Get() : L"").find(type.help)) << help.Get();
  }
}

// The last counted byte is taken for the NUL, whatever the stored type: a string is stored with its NUL,
// values without one as binary (the system would add it to a string).
TEST_F(ComTest, RegistryValuesReadAsAnsiTextAndTooLongOrMissingOnesAsEmpty) {
  const std::wstring path = L"Software\\BrevantisTests\\Registry";
  const std::string x255(255, 'x');
  const struct { DWORD type; std::string bytes; DWORD buffer; std::wstring read; } rows[] = {
      {REG_SZ, "abc", 255, L"abc"}, {REG_BINARY, "abc", 255, L"ab"}, {REG_BINARY, "", 255, L""},
      {REG_DWORD, {"abc", 4}, 255, L"abc"}, {REG_BINARY, "\xE0X", 255, L"\u00e0"},  // through the ANSI code page
      {REG_BINARY, x255, 255, std::wstring(254, L'x')}, {REG_SZ, x255, 255, L""},
      {REG_SZ, x255, 256, std::wstring(255, L'x')}};
  RegKey key;
  ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyW(HKEY_CURRENT_USER, path.c_str(), key.Out()));
  for (const auto& row : rows) {
    SCOPED_TRACE(row.bytes.size());
    const DWORD count = static_cast<DWORD>(row.bytes.size() + (row.type == REG_SZ));
    ASSERT_EQ(0, RegSetValueExA(key.Get(), "v", 0, row.type, reinterpret_cast<const BYTE*>(row.bytes.data()), count));
    EXPECT_EQ(row.read, ReadRegistryText(HKEY_CURRENT_USER, path, L"v", row.buffer));
  }
  EXPECT_EQ(L"", ReadRegistryText(HKEY_CURRENT_USER, path, L"missing"));
  EXPECT_EQ(L"", ReadRegistryText(HKEY_CURRENT_USER, path + L"\\Missing", L"v"));
  RegDeleteTreeW(HKEY_CURRENT_USER, path.c_str());
}

const int kFirstLine = __LINE__ + 1;
HRESULT Inner(HRESULT hr) { RETURN_HR_IF(hr, FAILED(hr)); return S_OK; }
HRESULT Outer(HRESULT hr) { RETURN_IF_FAILED(Inner(hr)); return S_FALSE; }

TEST_F(ComTest, TheFirstPlaceAFailureIsSeenIsKept) {
  ForgetFailure();
  EXPECT_EQ(E_ACCESSDENIED, Outer(E_ACCESSDENIED));
  const FailureOrigin origin = LastFailure();
  EXPECT_EQ(E_ACCESSDENIED, origin.hr);
  ASSERT_NE(nullptr, origin.site);
  EXPECT_EQ(kFirstLine, origin.site->line) << "the caller it passed through is not the origin";
  EXPECT_STREQ(__FILE__, origin.site->file);
  EXPECT_EQ(E_FAIL, Outer(E_FAIL));
  EXPECT_EQ(E_FAIL, LastFailure().hr) << "another failure is noted afresh";
  EXPECT_EQ(E_OUTOFMEMORY, Guarded([]() -> HRESULT { throw std::bad_alloc(); }));
  EXPECT_EQ(nullptr, LastFailure().site) << "entering the server forgets the last failure";
}

// Creating, saving and loading a control, each allocation failing in turn: S_OK or a failure, never a crash.
TEST_F(ComTest, RunningOutOfMemoryEndsAnOperationInAnErrorOrLetsItSucceed) {
  ComPtr<IStream> stream;
  ASSERT_EQ(S_OK, CreateStreamOnHGlobal(nullptr, TRUE, stream.Out()));
  const auto createSaveAndLoad = [&] {
    ComPtr<IPersistStreamInit> control;
    HRESULT hr = BrevantisControl::Create(IID_IPersistStreamInit, control.OutVoid());
    hr = FAILED(hr) ? hr : control->InitNew();
    hr = FAILED(hr) ? hr : (stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr), control->Save(stream.Get(), TRUE));
    return FAILED(hr) ? hr : (stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr), control->Load(stream.Get()));
  };
  long n = 0;
  for (bool planted = true; planted && !HasFailure();) {
    allocationsUntilFailure = ++n;
    const HRESULT hr = createSaveAndLoad();
    planted = allocationsUntilFailure.exchange(0) == 0;
    EXPECT_TRUE(hr == S_OK || (planted && FAILED(hr))) << "allocation " << n << ": " << std::hex << hr;
  }
  EXPECT_GT(n, 50);  // the failures landed in the control's code
}

}  // namespace
