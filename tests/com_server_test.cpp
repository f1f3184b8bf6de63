// The COM server as clients see it: objects created through the registry of
// the test prefix, the class factory and unload counts of the OCX itself, and
// the control's properties through its interfaces.
#include <gtest/gtest.h>

#include <vector>

#include <ocidl.h>
#include <olectl.h>
#include <string>
#include <thread>

#include "BrevantisLib_h.h"
#include "com/raii.h"
#include "test_paths.h"
#include "testkit/dispatch_client.h"
#include "testkit/message_box_watcher.h"

using namespace brevantis;

namespace {

class ComTest : public ::testing::Test {
 protected:
  // A new crypto filter box tells in a message box how its key set-up went.
  brevantis::testing::MessageBoxWatcher cryptoSetupMessages_{L"Brevantis"};

  void SetUp() override { ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr))); }
  void TearDown() override { CoUninitialize(); }

  static ComPtr<_Brevantis> NewControl() {
    ComPtr<_Brevantis> control;
    EXPECT_EQ(S_OK, CoCreateInstance(CLSID_Brevantis, nullptr, CLSCTX_INPROC_SERVER, IID__Brevantis,
                                     control.OutVoid()));
    return control;
  }

  static std::wstring Text(BSTR value) { return value ? std::wstring(value, SysStringLen(value)) : L""; }

  static std::wstring ProgramName(_Brevantis* control) {
    Bstr value;
    EXPECT_EQ(S_OK, control->get_ProgramName(value.Out()));
    return Text(value.Get());
  }
};

TEST_F(ComTest, BothClassesAreCreatedByProgId) {
  for (const wchar_t* progId : {L"BrevantisLib.Brevantis", L"BrevantisLib.clsCryptoFilterBox"}) {
    SCOPED_TRACE(progId);
    DispatchClient client;
    ASSERT_EQ(S_OK, client.Create(progId));
    ComPtr<IUnknown> viaDispatch, viaErrorInfo;
    ComPtr<ISupportErrorInfo> errorInfo;
    ASSERT_EQ(S_OK, client.Get()->QueryInterface(IID_IUnknown, viaDispatch.OutVoid()));
    ASSERT_EQ(S_OK, client.Get()->QueryInterface(IID_ISupportErrorInfo, errorInfo.OutVoid()));
    ASSERT_EQ(S_OK, errorInfo->QueryInterface(IID_IUnknown, viaErrorInfo.OutVoid()));
    EXPECT_EQ(viaDispatch.Get(), viaErrorInfo.Get());  // one identity
    ComPtr<IUnknown> none;
    EXPECT_EQ(E_NOINTERFACE, client.Get()->QueryInterface(IID_IClassFactory, none.OutVoid()));
    UINT count = 0;
    EXPECT_EQ(S_OK, client.Get()->GetTypeInfoCount(&count));
    EXPECT_EQ(1u, count);
  }
}

TEST_F(ComTest, VersionIndependentProgIdsPointAtTheCurrentVersion) {
  CLSID plain, versioned;
  ASSERT_EQ(S_OK, CLSIDFromProgID(L"BrevantisLib.Brevantis", &plain));
  ASSERT_EQ(S_OK, CLSIDFromProgID(L"BrevantisLib.Brevantis.1", &versioned));
  EXPECT_TRUE(IsEqualCLSID(CLSID_Brevantis, plain));
  EXPECT_TRUE(IsEqualCLSID(CLSID_Brevantis, versioned));
  ASSERT_EQ(S_OK, CLSIDFromProgID(L"BrevantisLib.clsCryptoFilterBox.1", &versioned));
  EXPECT_TRUE(IsEqualCLSID(CLSID_clsCryptoFilterBox, versioned));
}

TEST_F(ComTest, NamesResolveToTheirDispatchIds) {
  DispatchClient client;
  ASSERT_EQ(S_OK, client.Create(L"BrevantisLib.Brevantis"));
  const struct { const wchar_t* name; DISPID id; } names[] = {
      {L"About", DISPID_ABOUTBOX}, {L"WebConnect", 4}, {L"programname", 10}, {L"OSName", 36}};
  for (const auto& n : names) {
    DISPID id = 0;
    LPOLESTR name = const_cast<LPOLESTR>(n.name);
    EXPECT_EQ(S_OK, client.Get()->GetIDsOfNames(IID_NULL, &name, 1, 0, &id)) << n.name;
    EXPECT_EQ(n.id, id) << n.name;
  }
  DISPID id = 0;
  LPOLESTR unknown = const_cast<LPOLESTR>(L"NoSuchMember");
  EXPECT_EQ(DISP_E_UNKNOWNNAME, client.Get()->GetIDsOfNames(IID_NULL, &unknown, 1, 0, &id));
}

TEST_F(ComTest, ProgramNameKeepsAtMostFiftyCharacters) {
  ComPtr<_Brevantis> control = NewControl();
  const std::wstring fifty(50, L'n');
  ASSERT_EQ(S_OK, control->put_ProgramName(Bstr((fifty + L"X").c_str()).Get()));
  EXPECT_EQ(fifty, ProgramName(control.Get()));
  ASSERT_EQ(S_OK, control->put_ProgramName(Bstr(fifty.c_str()).Get()));
  EXPECT_EQ(fifty, ProgramName(control.Get()));
}

TEST_F(ComTest, ANullStringIsTheEmptyString) {
  ComPtr<_Brevantis> control = NewControl();
  ASSERT_EQ(S_OK, control->put_Author2(nullptr));
  Bstr value;
  ASSERT_EQ(S_OK, control->get_Author2(value.Out()));
  ASSERT_NE(nullptr, value.Get());
  EXPECT_EQ(0u, value.Length());
}

TEST_F(ComTest, EveryStringPropertyTakesNullHugeAndNulEmbeddedStrings) {
  DispatchClient client;
  ASSERT_EQ(S_OK, client.Create(L"BrevantisLib.Brevantis"));
  const std::wstring odd(L"a\0b\u00e8\u4e2d", 5);
  const std::wstring big(1 << 20, L'z');
  for (const wchar_t* name : {L"ProgramName", L"Author1", L"Author2", L"Author3", L"WebSiteURL", L"CopyrightFromDate",
                              L"CopyrightToDate", L"CompanyName", L"CompanyEmail", L"AboutWavSound", L"UpdatesURL",
                              L"DefaultProgramFolder", L"CompanyPhoneNumber", L"CompanyFaxNumber", L"CDIndexFile"}) {
    SCOPED_TRACE(name);
    const size_t limit = std::wstring(name) == L"ProgramName" ? 50 : std::wstring::npos;
    for (const std::wstring& text : {odd, big}) {
      Bstr value(text.data(), static_cast<UINT>(text.size()));
      VARIANT arg;
      VariantInit(&arg);
      V_VT(&arg) = VT_BSTR;
      V_BSTR(&arg) = value.Get();
      ASSERT_EQ(S_OK, client.Put(name, arg));
      Variant back;
      ASSERT_EQ(S_OK, client.GetValue(name, &back));
      EXPECT_EQ(text.substr(0, limit), Text(V_BSTR(back.Get())));
    }
    VARIANT null;
    VariantInit(&null);
    V_VT(&null) = VT_BSTR;
    V_BSTR(&null) = nullptr;
    ASSERT_EQ(S_OK, client.Put(name, null));
    EXPECT_EQ(L"", client.GetString(name));
  }
}

TEST_F(ComTest, InstancesOnOneThreadShareTheirValues) {
  ComPtr<_Brevantis> first = NewControl(), second = NewControl();
  ASSERT_EQ(S_OK, first->put_ProgramName(Bstr(L"Atlante").Get()));
  EXPECT_EQ(L"Atlante", ProgramName(second.Get()));
  ASSERT_EQ(S_OK, second->put_SplashScreenInterval(2500));
  LONG interval = 0;
  ASSERT_EQ(S_OK, first->get_SplashScreenInterval(&interval));
  EXPECT_EQ(2500, interval);
}

TEST_F(ComTest, InstancesOnAnotherThreadHaveTheirOwnValues) {
  ComPtr<_Brevantis> here = NewControl();
  ASSERT_EQ(S_OK, here->put_ProgramName(Bstr(L"Qui").Get()));
  std::wstring thereBefore, thereAfter;
  std::thread([&] {
    CoInitialize(nullptr);
    {
      ComPtr<_Brevantis> there = NewControl();
      thereBefore = ProgramName(there.Get());
      there->put_ProgramName(Bstr(L"Altrove").Get());
      thereAfter = ProgramName(there.Get());
    }
    CoUninitialize();
  }).join();
  EXPECT_EQ(L"", thereBefore);
  EXPECT_EQ(L"Altrove", thereAfter);
  EXPECT_EQ(L"Qui", ProgramName(here.Get()));
}

TEST_F(ComTest, EnvironmentPropertiesRefuseAPutAtRunTime) {
  DispatchClient client;
  ASSERT_EQ(S_OK, client.Create(L"BrevantisLib.Brevantis"));
  const std::wstring before = client.GetString(L"OSName");
  VARIANT yes;
  VariantInit(&yes);
  V_VT(&yes) = VT_BOOL;
  V_BOOL(&yes) = VARIANT_TRUE;
  for (const wchar_t* name : {L"OSName", L"WinSysDir", L"WinTempDir", L"IsWindowsNT"}) {
    SCOPED_TRACE(name);
    EXCEPINFO error = {};
    EXPECT_EQ(DISP_E_EXCEPTION, name[0] == L'I' ? client.Put(name, yes, &error) : client.PutString(name, L"x", &error));
    EXPECT_EQ(static_cast<SCODE>(0x800A017E), error.scode);  // 382
    EXPECT_NE(nullptr, error.bstrDescription);
    SysFreeString(error.bstrSource);
    SysFreeString(error.bstrDescription);
    SysFreeString(error.bstrHelpFile);
  }
  EXPECT_EQ(before, client.GetString(L"OSName"));
}

TEST_F(ComTest, VersionAcceptsOnlyItsOwnValue) {
  ComPtr<_Brevantis> control = NewControl();
  Bstr current;
  ASSERT_EQ(S_OK, control->get_Version(current.Out()));
  EXPECT_EQ(S_OK, control->put_Version(current.Get()));

  SetErrorInfo(0, nullptr);
  EXPECT_EQ(static_cast<HRESULT>(0x800A017F), control->put_Version(Bstr(L"9.99.9999").Get()));  // 383
  ComPtr<IErrorInfo> info;
  ASSERT_EQ(S_OK, GetErrorInfo(0, info.Out()));
  Bstr description;
  info->GetDescription(description.Out());
  EXPECT_NE(0u, description.Length());

  Bstr after;
  ASSERT_EQ(S_OK, control->get_Version(after.Out()));
  EXPECT_EQ(Text(current.Get()), Text(after.Get()));
}

TEST_F(ComTest, EmptyPicturesArePictureObjectsOfTypeNone) {
  ComPtr<_Brevantis> control = NewControl();
  for (auto get : {&_Brevantis::get_ProgramPicture, &_Brevantis::get_ProgramIcon, &_Brevantis::get_CompanyLogo}) {
    ComPtr<IPictureDisp> picture;
    ASSERT_EQ(S_OK, (control.Get()->*get)(picture.Out()));
    ASSERT_TRUE(picture);
    ComPtr<IPicture> pic;
    ASSERT_EQ(S_OK, picture.As(&pic));
    SHORT type = -1;
    ASSERT_EQ(S_OK, pic->get_Type(&type));
    EXPECT_EQ(PICTYPE_NONE, type);
  }
}

TEST_F(ComTest, PicturesAreStoredAsTheReferencePassed) {
  ComPtr<_Brevantis> control = NewControl();
  PICTDESC desc = {};
  desc.cbSizeofstruct = sizeof(desc);
  desc.picType = PICTYPE_NONE;
  ComPtr<IPictureDisp> mine;
  ASSERT_EQ(S_OK, OleCreatePictureIndirect(&desc, IID_IPictureDisp, TRUE, mine.OutVoid()));
  ASSERT_EQ(S_OK, control->putref_CompanyLogo(mine.Get()));
  ComPtr<IPictureDisp> back;
  ASSERT_EQ(S_OK, control->get_CompanyLogo(back.Out()));
  EXPECT_EQ(mine.Get(), back.Get());
}

TEST_F(ComTest, CryptoPropertiesRoundTrip) {
  ComPtr<_clsCryptoFilterBox> box;
  ASSERT_EQ(S_OK, CoCreateInstance(CLSID_clsCryptoFilterBox, nullptr, CLSCTX_INPROC_SERVER, IID__clsCryptoFilterBox,
                                   box.OutVoid()));
  LONG status = -1;
  ASSERT_EQ(S_OK, box->get_Status(&status));
  EXPECT_EQ(0, status);
  ASSERT_EQ(S_OK, box->put_Password(Bstr(L"segreto").Get()));
  ASSERT_EQ(S_OK, box->put_Signature(nullptr));
  Bstr password, signature, out;
  ASSERT_EQ(S_OK, box->get_Password(password.Out()));
  ASSERT_EQ(S_OK, box->get_Signature(signature.Out()));
  ASSERT_EQ(S_OK, box->get_OutBuffer(out.Out()));
  EXPECT_EQ(L"segreto", Text(password.Get()));
  EXPECT_EQ(L"", Text(signature.Get()));
  EXPECT_EQ(L"", Text(out.Get()));
}

// The OCX's own entry points, loaded as a client library would load them.
class ServerEntryPoints : public ::testing::Test {
 protected:
  using GetClassObjectFn = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
  using CanUnloadFn = HRESULT(WINAPI*)();

  brevantis::testing::MessageBoxWatcher cryptoSetupMessages_{L"Brevantis"};

  void SetUp() override {
    CoInitialize(nullptr);
    module_ = LoadLibraryW(BREVANTIS_OCX_PATH);
    ASSERT_NE(nullptr, module_);
    getClassObject_ = reinterpret_cast<GetClassObjectFn>(reinterpret_cast<void*>(GetProcAddress(module_, "DllGetClassObject")));
    canUnload_ = reinterpret_cast<CanUnloadFn>(reinterpret_cast<void*>(GetProcAddress(module_, "DllCanUnloadNow")));
    ASSERT_NE(nullptr, getClassObject_);
    ASSERT_NE(nullptr, canUnload_);
  }
  void TearDown() override {
    if (module_) FreeLibrary(module_);
    CoUninitialize();
  }

  HMODULE module_ = nullptr;
  GetClassObjectFn getClassObject_ = nullptr;
  CanUnloadFn canUnload_ = nullptr;
};

TEST_F(ServerEntryPoints, UnknownClassesAndAggregationAreRefused) {
  ComPtr<IClassFactory> factory;
  EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, getClassObject_(IID_IDispatch, IID_IClassFactory, factory.OutVoid()));
  EXPECT_FALSE(factory);
  ASSERT_EQ(S_OK, getClassObject_(CLSID_Brevantis, IID_IClassFactory, factory.OutVoid()));
  ComPtr<IUnknown> object;
  IUnknown* outer = factory.Get();  // any object will do: aggregation is refused before it is used
  EXPECT_EQ(CLASS_E_NOAGGREGATION, factory->CreateInstance(outer, IID_IUnknown, object.OutVoid()));
  EXPECT_EQ(E_NOINTERFACE, factory->CreateInstance(nullptr, IID_IClassFactory, object.OutVoid()));
}

TEST_F(ServerEntryPoints, CanUnloadOnlyWithoutObjectsOrLocks) {
  ComPtr<IClassFactory> factory;
  ASSERT_EQ(S_OK, getClassObject_(CLSID_clsCryptoFilterBox, IID_IClassFactory, factory.OutVoid()));
  ComPtr<IDispatch> object;
  ASSERT_EQ(S_OK, factory->CreateInstance(nullptr, IID_IDispatch, object.OutVoid()));
  ASSERT_EQ(S_OK, factory->LockServer(TRUE));
  factory.Reset();
  EXPECT_EQ(S_FALSE, canUnload_());  // an object and a lock
  object.Reset();
  EXPECT_EQ(S_FALSE, canUnload_());  // the lock
  ASSERT_EQ(S_OK, getClassObject_(CLSID_clsCryptoFilterBox, IID_IClassFactory, factory.OutVoid()));
  ASSERT_EQ(S_OK, factory->LockServer(FALSE));
  factory.Reset();
  EXPECT_EQ(S_OK, canUnload_());
}

// A host may load and unload the control again and again: each load takes a
// thread-local slot for its stores and gives it back when it unloads, so
// every load leaves the same slots free.
TEST(ServerModule, UnloadingGivesBackItsThreadSlot) {
  CoInitialize(nullptr);
  const auto nextFreeSlot = [] {
    const DWORD slot = TlsAlloc();
    TlsFree(slot);
    return slot;
  };
  std::vector<DWORD> freeWhileLoaded;
  for (int load = 0; load < 3; ++load) {
    const HMODULE module = LoadLibraryW(BREVANTIS_OCX_PATH);
    ASSERT_NE(nullptr, module);
    const auto getClassObject = reinterpret_cast<HRESULT(WINAPI*)(REFCLSID, REFIID, void**)>(
        reinterpret_cast<void*>(GetProcAddress(module, "DllGetClassObject")));
    const auto canUnload =
        reinterpret_cast<HRESULT(WINAPI*)()>(reinterpret_cast<void*>(GetProcAddress(module, "DllCanUnloadNow")));
    {
      ComPtr<IClassFactory> factory;
      ASSERT_EQ(S_OK, getClassObject(CLSID_Brevantis, IID_IClassFactory, factory.OutVoid()));
      ComPtr<_Brevantis> control;
      ASSERT_EQ(S_OK, factory->CreateInstance(nullptr, IID__Brevantis, control.OutVoid()));
      ASSERT_EQ(S_OK, control->put_ProgramName(Bstr(L"Atlante").Get()));  // the thread's store is made
    }
    freeWhileLoaded.push_back(nextFreeSlot());
    ASSERT_EQ(S_OK, canUnload());
    FreeLibrary(module);
  }
  EXPECT_EQ(std::vector<DWORD>(3, freeWhileLoaded[0]), freeWhileLoaded);
  CoUninitialize();
}

}  // namespace
