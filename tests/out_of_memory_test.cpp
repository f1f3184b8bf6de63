// Running out of memory anywhere in an operation ends it with a failure
// HRESULT or lets it succeed: never a crash, never a leak, and the object
// works afterwards. This program replaces operator new so that the n-th
// allocation from a given moment fails, and sweeps n = 1, 2, ... over each
// operation until it runs with no failure planted. The test's own doubles
// (bag, sink, platform) allocate nothing while an operation runs, so every
// failure lands in the control's code.
#include <gtest/gtest.h>

#include <olectl.h>
#include <shellapi.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "BrevantisLib_h.h"
#include "com/raii.h"
#include "com/text.h"
#include "control/brevantis_control.h"
#include "crypto/filter_box.h"
#include "platform/platform.h"
#include "testkit/recording_platform.h"
#include "testkit/test_container.h"

namespace {

std::atomic<long> allocationsUntilFailure{0};  // 0: none planted
std::atomic<long> plantedFailures{0};
std::atomic<long> liveAllocations{0};

bool PlantedFailureNow() {
  long left = allocationsUntilFailure.load();
  while (left > 0 && !allocationsUntilFailure.compare_exchange_weak(left, left - 1)) {
  }
  if (left != 1) return false;
  ++plantedFailures;
  return true;
}

}  // namespace

void* operator new(std::size_t size) {
  if (PlantedFailureNow()) throw std::bad_alloc();
  void* block = std::malloc(size ? size : 1);
  if (!block) throw std::bad_alloc();
  ++liveAllocations;
  return block;
}

void operator delete(void* block) noexcept {
  if (!block) return;
  --liveAllocations;
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept { operator delete(block); }

namespace brevantis::testing {
namespace {

// Offline, no browser, no dial-up entries, every box answered: allocates nothing.
class QuietPlatform : public Platform {
 public:
  int ShowMessage(HWND, const std::wstring&, const std::wstring&, UINT) override { return IDOK; }
  bool StartProcess(const std::wstring&, int) override { return false; }
  bool PlaySoundFile(const std::wstring&, UINT) override { return true; }
  DWORD SendMciCommand(const std::wstring&) override { return 0; }
  bool GetInternetConnectedState(DWORD* flags) override {
    *flags = 0;
    return false;
  }
  DWORD DialInternet(HWND, const std::wstring&, DWORD, DWORD_PTR* connection) override {
    *connection = 0;
    return ERROR_CANCELLED;
  }
  bool EnumDialUpEntries(void*, DWORD*, DWORD* entries, DWORD* result) override {
    *entries = 0;
    *result = 0;
    return true;
  }
  UINT_PTR LookUpExecutable(const std::wstring&, std::wstring*) override { return SE_ERR_NOASSOC; }
  DWORD ListDriveRoots(std::wstring*) override { return 0; }
  UINT DriveKind(const std::wstring&) override { return DRIVE_FIXED; }
};

// A property bag of fixed names: reads copy out, writes copy into a name it
// already holds; no allocation through operator new once filled.
class FixedBag : public ComClassBase, public IPropertyBag {
 public:
  static const InterfaceEntry* Interfaces();
  std::vector<std::pair<std::wstring, Variant>> values;

  STDMETHODIMP Read(LPCOLESTR name, VARIANT* value, IErrorLog*) override {
    for (auto& entry : values)
      if (entry.first == name && V_VT(entry.second.Get()) != VT_EMPTY) return VariantCopy(value, entry.second.Get());
    return E_INVALIDARG;
  }
  STDMETHODIMP Write(LPCOLESTR name, VARIANT* value) override {
    for (auto& entry : values)
      if (entry.first == name) return VariantCopy(entry.second.Get(), value);
    return S_OK;
  }
};
const InterfaceEntry kFixedBagInterfaces[] = {BREVANTIS_INTERFACE(FixedBag, IPropertyBag), BREVANTIS_INTERFACE_END};
const InterfaceEntry* FixedBag::Interfaces() { return kFixedBagInterfaces; }

// Counts the Error events it receives.
class CountingSink : public ComClassBase, public IDispatch {
 public:
  static const InterfaceEntry* Interfaces();
  long events = 0;
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    ++events;
    return S_OK;
  }
};
const InterfaceEntry kCountingSinkInterfaces[] = {BREVANTIS_INTERFACE(CountingSink, IDispatch),
                                                  BREVANTIS_INTERFACE_AS(CountingSink, __Brevantis, IDispatch),
                                                  BREVANTIS_INTERFACE_END};
const InterfaceEntry* CountingSink::Interfaces() { return kCountingSinkInterfaces; }

class OutOfMemory : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(SUCCEEDED(OleInitialize(nullptr)));
    ASSERT_EQ(S_OK, BrevantisControl::Create(IID__Brevantis, control_.OutVoid()));
    ASSERT_EQ(S_OK, control_->QueryInterface(IID_IDispatch, dispatch_.OutVoid()));
    ReadPropertyNames();
    // Values unlike the defaults, so that a save writes them all.
    ASSERT_EQ(S_OK, control_->put_ProgramName(Bstr(L"Atlante").Get()));
    ASSERT_EQ(S_OK, control_->put_Author1(Bstr(L"Giulia Rinaldi").Get()));
    ASSERT_EQ(S_OK, control_->put_ProgramMajor(2));
    ASSERT_EQ(S_OK, control_->put_CDIndexFile(Bstr(L"cat\\index.htm").Get()));
    PICTDESC desc = {sizeof(desc), PICTYPE_BITMAP};
    const HDC screen = GetDC(nullptr);
    desc.bmp.hbitmap = CreateCompatibleBitmap(screen, 8, 8);
    ReleaseDC(nullptr, screen);
    ComPtr<IPictureDisp> picture;
    ASSERT_EQ(S_OK, OleCreatePictureIndirect(&desc, IID_IPictureDisp, TRUE, picture.OutVoid()));
    ASSERT_EQ(S_OK, control_->putref_ProgramPicture(picture.Get()));
    ASSERT_EQ(S_OK, Persist<IPersistPropertyBag>()->Save(full_.As<IPropertyBag>(), TRUE, TRUE));
    ASSERT_EQ(S_OK, CreateStreamOnHGlobal(nullptr, TRUE, stream_.Out()));
  }
  void TearDown() override {
    dispatch_.Reset();
    control_.Reset();
    OleUninitialize();
  }

  template <class I>
  ComPtr<I> Persist() {
    ComPtr<I> persist;
    EXPECT_EQ(S_OK, control_->QueryInterface(__uuidof(I), persist.OutVoid()));
    return persist;
  }

  // Every property of the control, and a bag with a place for each.
  void ReadPropertyNames() {
    ComPtr<ITypeInfo> info;
    ASSERT_EQ(S_OK, dispatch_->GetTypeInfo(0, 0, info.Out()));
    TYPEATTR* attr = nullptr;
    ASSERT_EQ(S_OK, info->GetTypeAttr(&attr));
    for (UINT i = 0; i < attr->cFuncs; ++i) {
      FUNCDESC* func = nullptr;
      if (FAILED(info->GetFuncDesc(i, &func))) continue;
      if (func->invkind == INVOKE_PROPERTYGET) {
        Bstr name;
        info->GetDocumentation(func->memid, name.Out(), nullptr, nullptr, nullptr);
        properties_.push_back({func->memid, name.Get()});
        full_->values.emplace_back(name.Get(), Variant());
      }
      info->ReleaseFuncDesc(func);
    }
    info->ReleaseTypeAttr(attr);
    ASSERT_FALSE(properties_.empty());
  }

  // A property read through IDispatch and, with put, written back.
  HRESULT GetAndPut(size_t property, bool put) {
    Variant value;
    DISPPARAMS none = {};
    const DISPID id = properties_[property].first;
    HRESULT hr = dispatch_->Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, value.Get(), nullptr, nullptr);
    if (FAILED(hr) || !put) return hr;
    DISPID named = DISPID_PROPERTYPUT;
    DISPPARAMS args = {value.Get(), &named, 1, 1};
    const WORD kind = V_VT(value.Get()) == VT_DISPATCH ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT;
    return dispatch_->Invoke(id, IID_NULL, 0, kind, &args, nullptr, nullptr, nullptr);
  }

  // Runs operation with the n-th allocation failing for n = 1, 2, ... until
  // no failure was planted; then it must give S_OK. After every run the
  // operation succeeds again, with as many allocations live as after the
  // first run: a failure path that leaks shows as growth.
  void Sweep(const char* what, const std::function<HRESULT()>& operation) {
    SCOPED_TRACE(what);
    EXPECT_EQ(S_OK, operation());
    const long steady = liveAllocations;
    for (long n = 1; n < 100000; ++n) {
      plantedFailures = 0;
      allocationsUntilFailure = n;
      const HRESULT hr = operation();
      allocationsUntilFailure = 0;
      if (plantedFailures == 0) {
        EXPECT_EQ(S_OK, hr);
        planted_ += n - 1;
        return;
      }
      EXPECT_TRUE(hr == S_OK || FAILED(hr)) << "allocation " << n << ": " << std::hex << hr;
      EXPECT_EQ(S_OK, operation()) << "unusable after allocation " << n << " failed";
      EXPECT_EQ(steady, liveAllocations.load()) << "leak after allocation " << n << " failed";
      if (::testing::Test::HasFailure()) return;
    }
    ADD_FAILURE() << "never ran out of planted failures";
  }

  long planted_ = 0;  // failures planted by every sweep of a test
  QuietPlatform platform_;
  ScopedPlatform scoped_{&platform_};
  ComPtr<_Brevantis> control_;
  ComPtr<IDispatch> dispatch_;
  std::vector<std::pair<DISPID, std::wstring>> properties_;
  Owned<FixedBag> full_;
  ComPtr<IStream> stream_;
};

TEST_F(OutOfMemory, PersistenceEndsInAnErrorOrSucceeds) {
  Sweep("create and InitNew", [] {
    ComPtr<IPersistStreamInit> created;
    const HRESULT hr = BrevantisControl::Create(IID_IPersistStreamInit, created.OutVoid());
    return FAILED(hr) ? hr : created->InitNew();
  });
  Sweep("load a bag", [&] { return Persist<IPersistPropertyBag>()->Load(full_.As<IPropertyBag>(), nullptr); });
  Sweep("save a bag", [&] { return Persist<IPersistPropertyBag>()->Save(full_.As<IPropertyBag>(), TRUE, TRUE); });
  const LARGE_INTEGER start = {};
  Sweep("save a stream", [&] {
    stream_->Seek(start, STREAM_SEEK_SET, nullptr);
    return Persist<IPersistStreamInit>()->Save(stream_.Get(), TRUE);
  });
  Sweep("load a stream", [&] {
    stream_->Seek(start, STREAM_SEEK_SET, nullptr);
    return Persist<IPersistStreamInit>()->Load(stream_.Get());
  });
  EXPECT_GT(planted_, 100);
}

TEST_F(OutOfMemory, EveryPropertyEndsInAnErrorOrSucceeds) {
  for (size_t i = 0; i < properties_.size(); ++i) {
    // Read-only ones (Version, the machine's values) are only read.
    const bool writable = SUCCEEDED(GetAndPut(i, true));
    Sweep(ToAnsi(properties_[i].second).c_str(), [&] { return GetAndPut(i, writable); });
  }
  EXPECT_GT(planted_, 0);
}

TEST_F(OutOfMemory, CryptoMethodsAndTheErrorEventEndInAnErrorOrSucceed) {
  ComPtr<_clsCryptoFilterBox> box;
  ASSERT_EQ(S_OK, CryptoFilterBox::Create(IID__clsCryptoFilterBox, box.OutVoid()));
  ASSERT_EQ(S_OK, box->put_InBuffer(Bstr(L"Testo da firmare e cifrare").Get()));
  ASSERT_EQ(S_OK, box->put_Password(Bstr(L"segreto").Get()));
  Sweep("Sign", [&] { return box->Sign(); });
  Sweep("Validate", [&] { return box->Validate(); });
  Sweep("Encrypt", [&] { return box->Encrypt(); });
  Sweep("Decrypt", [&] { return box->Decrypt(); });

  Owned<CountingSink> sink;
  ASSERT_NE(0u, Connect(control_.Get(), DIID___Brevantis, sink.As<IDispatch>()));
  ASSERT_EQ(S_OK, Persist<IPersistPropertyBag>()->Load(full_.As<IPropertyBag>(), nullptr));
  Sweep("WebConnect offline, raising Error",
                  [&] { return control_->WebConnect(Bstr(L"http://example.com/").Get()); });
  EXPECT_GT(sink->events, 0);
  EXPECT_GT(planted_, 0);
}

}  // namespace
}  // namespace brevantis::testing
