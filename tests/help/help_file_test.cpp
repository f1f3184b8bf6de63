// Brevantis.chm as a development environment meets it on F1: the type library
// of Brevantis.ocx names the file, the file lies beside the control, and each
// help context of the library leads to its member's topic, read back through
// the system's own reader of help files (itss.dll) and opened with HtmlHelp.
#include <gtest/gtest.h>

#include <windows.h>
#include <htmlhelp.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "com/raii.h"
#include "test_paths.h"

using namespace brevantis;

namespace {

// A help context of the library and the topic it should open: <Class>.htm for
// a class, <Class>.<Member>.htm for a member, the class of _X and __X being X.
struct HelpLink {
  DWORD context;
  std::wstring topic;
};

std::wstring ClassOf(const wchar_t* typeName) {
  std::wstring name(typeName);
  return name.substr(name.find_first_not_of(L'_'));
}

std::vector<HelpLink> LibraryHelpLinks(ITypeLib* lib) {
  std::vector<HelpLink> links;
  std::set<std::wstring> seen;
  for (UINT i = 0; i < lib->GetTypeInfoCount(); ++i) {
    ComPtr<ITypeInfo> info;
    EXPECT_EQ(S_OK, lib->GetTypeInfo(i, info.Out()));
    Bstr typeName;
    DWORD context = 0;
    info->GetDocumentation(MEMBERID_NIL, typeName.Out(), nullptr, &context, nullptr);
    TYPEATTR* attr = nullptr;
    EXPECT_EQ(S_OK, info->GetTypeAttr(&attr));
    if (attr->typekind == TKIND_COCLASS) links.push_back({context, ClassOf(typeName.Get()) + L".htm"});
    if (attr->typekind == TKIND_DISPATCH) {
      for (UINT f = 0; f < attr->cFuncs; ++f) {
        FUNCDESC* desc = nullptr;
        EXPECT_EQ(S_OK, info->GetFuncDesc(f, &desc));
        Bstr member;
        DWORD memberContext = 0;
        info->GetDocumentation(desc->memid, member.Out(), nullptr, &memberContext, nullptr);
        info->ReleaseFuncDesc(desc);
        const std::wstring topic = ClassOf(typeName.Get()) + L"." + member.Get() + L".htm";
        // IDispatch's own members carry no context; a property's get and put share one.
        if (memberContext != 0 && seen.insert(topic).second) links.push_back({memberContext, topic});
      }
    }
    info->ReleaseTypeAttr(attr);
  }
  return links;
}

// The help file storage of itss.dll, the system's own reader of help files.
// MinGW-w64 has no itss.h: its CLSID, IID and the one method used, by slot.
const CLSID kClsidITStorage = {0x5d02926a, 0x212e, 0x11d0, {0x9d, 0xf9, 0x00, 0xa0, 0xc9, 0x22, 0xe6, 0xec}};
const IID kIidITStorage = {0x88cc31de, 0x27ab, 0x11d0, {0x9d, 0xf9, 0x00, 0xa0, 0xc9, 0x22, 0xe6, 0xec}};
struct ITStorageVtbl {
  void* unknownAndCreate[7];  // IUnknown, StgCreateDocfile(OnILockBytes), StgIsStorage(File|ILockBytes)
  HRESULT(STDMETHODCALLTYPE* StgOpenStorage)(void*, const WCHAR*, IStorage*, DWORD, SNB, DWORD, IStorage**);
};

ComPtr<IStorage> OpenHelpFile(const std::wstring& chm) {
  ComPtr<IUnknown> itss;
  ComPtr<IStorage> storage;
  if (SUCCEEDED(CoCreateInstance(kClsidITStorage, nullptr, CLSCTX_INPROC_SERVER, kIidITStorage, itss.OutVoid()))) {
    const ITStorageVtbl* vtbl = *reinterpret_cast<ITStorageVtbl**>(itss.Get());
    vtbl->StgOpenStorage(itss.Get(), chm.c_str(), nullptr, STGM_READ | STGM_SHARE_DENY_WRITE, nullptr, 0,
                         storage.Out());
  }
  return storage;
}

std::string ReadInside(IStorage* chm, const wchar_t* name) {
  ComPtr<IStream> stream;
  if (FAILED(chm->OpenStream(name, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, stream.Out()))) return {};
  std::string data;
  char buffer[4096];
  ULONG read = 0;
  while (SUCCEEDED(stream->Read(buffer, sizeof buffer, &read)) && read > 0) data.append(buffer, read);
  return data;
}

// The file's context map: #IVB holds its byte length, then (context, offset
// into #STRINGS) pairs; #STRINGS the NUL-terminated topic paths.
std::map<DWORD, std::wstring> ContextMap(IStorage* chm) {
  const std::string ivb = ReadInside(chm, L"#IVB"), strings = ReadInside(chm, L"#STRINGS");
  std::map<DWORD, std::wstring> map;
  if (ivb.size() < 4) return map;
  const DWORD* words = reinterpret_cast<const DWORD*>(ivb.data());
  for (size_t i = 1; i + 1 < 1 + words[0] / 4 && 4 * (i + 2) <= ivb.size(); i += 2) {
    if (words[i + 1] >= strings.size()) continue;
    const std::string path(strings.c_str() + words[i + 1]);
    map[words[i]] = std::wstring(path.begin(), path.end());
  }
  return map;
}

class HelpFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
    ASSERT_EQ(S_OK, LoadTypeLibEx(BREVANTIS_OCX_PATH, REGKIND_NONE, lib_.Out()));
    Bstr helpFile;
    ASSERT_EQ(S_OK, lib_->GetDocumentation(-1, nullptr, nullptr, nullptr, helpFile.Out()));
    // The library stores a bare name; the help file ships beside the control.
    const std::wstring named(helpFile.Get()), ocx(BREVANTIS_OCX_PATH);
    helpName_ = named.substr(named.find_last_of(L"\\/") + 1);
    chmPath_ = ocx.substr(0, ocx.find_last_of(L'\\') + 1) + helpName_;
    links_ = LibraryHelpLinks(lib_.Get());
  }
  void TearDown() override {
    lib_.Reset();
    CoUninitialize();
  }

  ComPtr<ITypeLib> lib_;
  std::wstring helpName_, chmPath_;
  std::vector<HelpLink> links_;
};

TEST_F(HelpFileTest, BuildWritesTheHelpFileTheTypeLibraryNames) {
  EXPECT_NE(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(chmPath_.c_str())) << "no " << chmPath_.c_str();
}

TEST_F(HelpFileTest, EveryHelpContextLeadsToItsMembersTopic) {
  // Both classes, the control's members and its event, the crypto class's members.
  ASSERT_GE(links_.size(), 2u + 5 + 27 + 1 + 9);
  ComPtr<IStorage> chm = OpenHelpFile(chmPath_);
  ASSERT_TRUE(chm);
  const std::map<DWORD, std::wstring> map = ContextMap(chm.Get());
  for (const HelpLink& link : links_) {
    SCOPED_TRACE(testing::Message() << "context " << link.context << ", " << link.topic.c_str());
    const auto found = map.find(link.context);
    ASSERT_NE(map.end(), found);
    // The path a viewer opens inside the file: the topic at its root.
    EXPECT_EQ(L"/" + link.topic, found->second);
    EXPECT_NE(std::string::npos, ReadInside(chm.Get(), link.topic.c_str()).find("<title>"));
  }
}

// Wine has no HTML engine in these prefixes: the viewer opens its window and
// navigates to the topic's mk:@MSITStore: address, which nothing renders.
TEST_F(HelpFileTest, HtmlHelpOpensEveryContextAndNoOther) {
  using HtmlHelpFunction = HWND(WINAPI*)(HWND, const wchar_t*, UINT, DWORD_PTR);
  HMODULE hhctrl = LoadLibraryW(L"hhctrl.ocx");
  ASSERT_NE(nullptr, hhctrl);
  const auto htmlHelp = reinterpret_cast<HtmlHelpFunction>(reinterpret_cast<void*>(GetProcAddress(hhctrl, "HtmlHelpW")));
  ASSERT_NE(nullptr, htmlHelp);
  DWORD unused = 1;
  for (const HelpLink& link : links_) {
    EXPECT_NE(nullptr, htmlHelp(nullptr, chmPath_.c_str(), HH_HELP_CONTEXT, link.context))
        << "context " << link.context;
    unused = std::max(unused, link.context + 1);
  }
  EXPECT_EQ(nullptr, htmlHelp(nullptr, chmPath_.c_str(), HH_HELP_CONTEXT, unused));
  htmlHelp(nullptr, nullptr, HH_CLOSE_ALL, 0);
}

}  // namespace
