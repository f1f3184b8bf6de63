// The help file as F1 meets it, read with the system's reader of help files
// (itss.dll): beside the control under the name its type library gives, its
// context map leading each help context to a topic at the file's root.
#include <gtest/gtest.h>

#include "com/raii.h"
#include "test_paths.h"

using namespace brevantis;

namespace {

// itss.dll's storage of help files (MinGW-w64 has no header): StgOpenStorage is its method 7.
const CLSID kItss = {0x5d02926a, 0x212e, 0x11d0, {0x9d, 0xf9, 0x00, 0xa0, 0xc9, 0x22, 0xe6, 0xec}};
const IID kIidItss = {0x88cc31de, 0x27ab, 0x11d0, {0x9d, 0xf9, 0x00, 0xa0, 0xc9, 0x22, 0xe6, 0xec}};
using OpenStorageFn = HRESULT(STDMETHODCALLTYPE*)(void*, const WCHAR*, IStorage*, DWORD, SNB, DWORD, IStorage**);

std::string ReadInside(IStorage* chm, const std::string& name) {
  ComPtr<IStream> stream;
  std::string data(1 << 20, '\0');
  ULONG read = 0;
  const std::wstring wide(name.begin(), name.end());
  if (SUCCEEDED(chm->OpenStream(wide.c_str(), nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, stream.Out())))
    stream->Read(&data[0], static_cast<ULONG>(data.size()), &read);
  return data.substr(0, read);
}

TEST(HelpFile, EachHelpContextLeadsToATopicAtTheRoot) {
  ComPtr<ITypeLib> lib;
  ComPtr<IUnknown> itss;
  ComPtr<IStorage> chm;
  Bstr named;
  ASSERT_EQ(S_OK, CoInitialize(nullptr));
  ASSERT_EQ(S_OK, LoadTypeLibEx(BREVANTIS_OCX_PATH, REGKIND_NONE, lib.Out()));
  ASSERT_EQ(S_OK, lib->GetDocumentation(-1, nullptr, nullptr, nullptr, named.Out()));
  const std::wstring ocx(BREVANTIS_OCX_PATH), name(named.Get());
  const std::wstring chmPath = ocx.substr(0, ocx.rfind(L'\\') + 1) + name.substr(name.find_last_of(L"\\/") + 1);
  ASSERT_EQ(S_OK, CoCreateInstance(kItss, nullptr, CLSCTX_INPROC_SERVER, kIidItss, itss.OutVoid()));
  const OpenStorageFn open = (*reinterpret_cast<OpenStorageFn**>(itss.Get()))[7];
  ASSERT_EQ(S_OK, open(itss.Get(), chmPath.c_str(), nullptr, STGM_READ | STGM_SHARE_DENY_WRITE, nullptr, 0, chm.Out()));
  // #IVB: its byte length, then pairs of a context and the offset of its topic's path in #STRINGS.
  const std::string ivb = ReadInside(chm.Get(), "#IVB"), strings = ReadInside(chm.Get(), "#STRINGS") + '\0';
  const DWORD* words = reinterpret_cast<const DWORD*>(ivb.data());
  ASSERT_GE(ivb.size(), 4u);
  EXPECT_GE(words[0] / 8, 2u + 5 + 27 + 1 + 9);  // both classes, the control's members and event, the crypto's
  for (size_t i = 1; i + 1 <= words[0] / 4 && 4 * (i + 2) <= ivb.size(); i += 2) {
    // The path a viewer opens: /<Class>.htm or /<Class>.<Member>.htm, a topic with a title.
    const std::string topic = strings.c_str() + std::min<size_t>(words[i + 1], strings.size() - 1);
    EXPECT_EQ(0u, topic.rfind('/')) << "context " << words[i] << ": " << topic;
    EXPECT_NE(std::string::npos, ReadInside(chm.Get(), topic.substr(1)).find("<title>")) << topic;
  }
}

}  // namespace
