// The control in the test process, its rules walked over the product's property table.
#include <gtest/gtest.h>

#include <olectl.h>

#include <string>
#include <vector>

#include "BrevantisLib_h.h"
#include "control/brevantis_control.h"
#include "test_paths.h"
#include "testkit/dispatch_client.h"
#include "testkit/recording_platform.h"
#include "testkit/test_container.h"

using namespace brevantis;
using namespace brevantis::testing;

namespace {

// A VARIANT of the given type: an object, or text converted as a host converts it.
Variant Value(VARTYPE type, const std::wstring& text, IUnknown* object = nullptr) {
  Variant v;
  V_VT(v.Get()) = object ? type : static_cast<VARTYPE>(VT_BSTR);
  if (object) (V_UNKNOWN(v.Get()) = object)->AddRef();
  if (!object) V_BSTR(v.Get()) = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  if (!object) VariantChangeType(v.Get(), v.Get(), 0, type);
  return v;
}

std::wstring FileVersion() {
  std::string data(GetFileVersionInfoSizeW(BREVANTIS_OCX_PATH, nullptr) + 1, '\0');
  VS_FIXEDFILEINFO* info = nullptr;
  UINT length = 0;
  wchar_t text[32] = L"none";
  if (GetFileVersionInfoW(BREVANTIS_OCX_PATH, 0, static_cast<DWORD>(data.size()), &data[0]) &&
      VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&info), &length))
    swprintf(text, 32, L"%u.%02u.%04u", HIWORD(info->dwFileVersionMS), LOWORD(info->dwFileVersionMS),
             LOWORD(info->dwFileVersionLS));
  return text;
}

LONG Pixels(LONG twips) { return MulDiv(twips, GetDeviceCaps(ScreenDc(GetDC(nullptr)).Get(), LOGPIXELSX), 1440); }
class ControlTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(SUCCEEDED(OleInitialize(nullptr)));
    ASSERT_EQ(S_OK, BrevantisControl::Create(IID_IDispatch, control_.OutVoid()));
    client_ = DispatchClient(control_.Get());
  }
  void TearDown() override {
    EXPECT_TRUE(platform_.unexpected.empty());
    client_ = DispatchClient();
    control_.Reset();
    OleUninitialize();
  }
  template <class I>
  ComPtr<I> As(IUnknown* object = nullptr) {
    ComPtr<I> itf;
    EXPECT_EQ(S_OK, (object ? object : control_.Get())->QueryInterface(__uuidof(I), itf.OutVoid()));
    return itf;
  }
  // The automation error of a call, or its HRESULT when it raised none.
  SCODE Call(const wchar_t* name, WORD flags, const Variant& arg = Variant()) {
    EXCEPINFO e = {};
    const HRESULT hr = client_.Call(name, flags, const_cast<VARIANT*>(arg.Get()), V_VT(arg.Get()) ? 1 : 0, nullptr, &e);
    for (BSTR text : {e.bstrSource, e.bstrDescription, e.bstrHelpFile}) SysFreeString(text);
    return hr == DISP_E_EXCEPTION ? e.scode : hr;
  }
  // Properties as text, a picture as "picture <width in pixels>"; a put converts the text as a host would.
  SCODE Put(int p, const std::wstring& text) {
    const wchar_t* name = kProperties[p].name;
    if (kProperties[p].type != PropType::Picture) return Call(name, DISPATCH_PROPERTYPUT, Value(VT_BSTR, text));
    PICTDESC desc = {sizeof(desc), PICTYPE_BITMAP, {}};
    const int side = std::stoi(text.substr(8));
    desc.bmp.hbitmap = CreateCompatibleBitmap(ScreenDc(GetDC(nullptr)).Get(), side, side);
    ComPtr<IPictureDisp> picture;
    EXPECT_EQ(S_OK, OleCreatePictureIndirect(&desc, IID_IPictureDisp, TRUE, picture.OutVoid()));
    return Call(name, DISPATCH_PROPERTYPUTREF, Value(VT_DISPATCH, L"", picture.Get()));
  }
  std::wstring Get(int p) {
    Variant v;
    if (kProperties[p].type != PropType::Picture || FAILED(client_.GetValue(kProperties[p].name, &v)))
      return client_.GetString(kProperties[p].name);
    const int width = _wtoi(DispatchClient(V_DISPATCH(v.Get())).GetString(L"Width").c_str());  // HIMETRIC
    return L"picture " + std::to_wstring(Pixels(MulDiv(width, 1440, 2540)));
  }
  // Puts, or expects, a value other than its default in each loaded property.
  void Everything(bool put) {
    for (int p = 0; p < kPropertyCount; ++p) {
      if (!kProperties[p].loaded) continue;
      const PropType type = kProperties[p].type;
      const std::wstring value = type == PropType::Long ? std::to_wstring(p) : type == PropType::Picture
          ? L"picture " + std::to_wstring(10 + p) : kProperties[p].name + std::wstring(L" \u00e8");
      EXPECT_EQ(value, put && Put(p, value) ? L"refused" : Get(p)) << kProperties[p].name;
    }
  }
  HRESULT InitNew() { return As<IPersistStreamInit>()->InitNew(); }
  HRESULT LoadBag(TestPropertyBag* bag) { return As<IPersistPropertyBag>()->Load(bag, nullptr); }

  RecordingPlatform platform_;
  ScopedPlatform scope_{&platform_};
  ComPtr<IDispatch> control_;
  DispatchClient client_;
};

// The machine's properties refuse a put with 387 at design time, 382 at run time (also without a site or an
// ambient answer); Version takes only its own value (383); strings are cut to their most characters.
TEST_F(ControlTest, EveryPropertyTakesOrRefusesAPutByItsAccessAndTheMode) {
  Owned<NotifySink> sink;
  Owned<SiteWithoutAmbient> plain;
  Owned<TestSite> design, run;
  design->userMode = false;
  ASSERT_NE(0u, Connect(control_.Get(), IID_IPropertyNotifySink, sink.As<IPropertyNotifySink>()));
  const std::pair<IOleClientSite*, bool> modes[] = {
      {nullptr, false}, {plain.As<IOleClientSite>(), false}, {design.Get(), true}, {run.Get(), false}};
  const wchar_t* const puts[] = {L"a string of more than fifty characters, cut to fifty by one", L"-7", L"True",
                                 L"picture 12"};  // by type
  for (const auto& [site, designTime] : modes) {
    ASSERT_EQ(S_OK, As<IOleObject>()->SetClientSite(site));
    for (int p = 0; p < kPropertyCount; ++p) {
      const PropertyDef& def = kProperties[p];
      SCOPED_TRACE(def.name + std::wstring(designTime ? L" at design time" : L" at run time"));
      ASSERT_EQ(S_OK, InitNew());
      sink->changed.clear();
      const std::wstring before = Get(p), put = puts[static_cast<int>(def.type)];
      const SCODE expected = def.access == Access::ReadWrite ? S_OK : def.access == Access::Version ? 0x800A017F
                             : designTime ? 0x800A0183 : 0x800A017E;
      EXPECT_EQ(expected, Put(p, put));
      EXPECT_EQ(expected ? before : def.maxLength ? put.substr(0, def.maxLength) : put, Get(p));
      EXPECT_EQ(expected ? S_FALSE : S_OK, As<IPersistStreamInit>()->IsDirty());
      EXPECT_EQ(S_OK, def.access == Access::Version ? Put(p, before) : S_OK);  // its own value
      const bool told = !expected || def.access == Access::Version;
      EXPECT_EQ(told ? std::vector<DISPID>{def.dispid} : std::vector<DISPID>{}, sink->changed);
    }
  }
}

// A load reads in table order, never the version or the machine; a save writes what differs from InitNew's values.
TEST_F(ControlTest, PersistenceFollowsTheTable) {
  Owned<TestPropertyBag> offered, initial, full;
  std::vector<std::wstring> pictures, differing, loaded;
  for (int p = 0; p < kPropertyCount; ++p) {
    if (kProperties[p].type == PropType::Picture) pictures.push_back(kProperties[p].name);
    if (kProperties[p].loaded) loaded.push_back(kProperties[p].name);
    if (!kProperties[p].loaded && kProperties[p].type == PropType::String) offered->SetText(kProperties[p].name, L"x");
  }
  const std::wstring temp = L"C:\\missing\\" + std::wstring(120, L't');  // longer than the first buffer
  SetEnvironmentVariableW(L"TMP", temp.c_str());
  ASSERT_EQ(S_OK, LoadBag(offered.Get()));
  EXPECT_EQ(loaded, offered->reads);
  wchar_t system[MAX_PATH], machine[64] = L"True ";
  DWORD bytes = sizeof(machine) - 10;
  GetSystemDirectoryW(system, MAX_PATH);
  RegGetValueW(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Windows NT\\CurrentVersion", L"ProductName", RRF_RT_REG_SZ,
               nullptr, machine + 5, &bytes);
  EXPECT_EQ((std::vector<std::wstring>{system, temp, machine, FileVersion()}),
            (std::vector<std::wstring>{Get(kWinSysDir), Get(kWinTempDir), Get(kIsWindowsNT) + L" " + Get(kOSName),
                                       Get(kVersion)}));
  Everything(true);
  for (int p = 0; p < kPropertyCount; ++p)  // all but a machine's empty or false answers
    if (Get(p) != L"" && Get(p) != L"False") differing.push_back(kProperties[p].name);
  ASSERT_EQ(S_OK, As<IPersistPropertyBag>()->Save(full.Get(), TRUE, FALSE));
  EXPECT_EQ(differing, full->writes);
  ASSERT_EQ(S_OK, InitNew());
  const VARTYPE types[] = {VT_BSTR, VT_I4, VT_BOOL, VT_DISPATCH, VT_EMPTY};  // by PropType, then absent
  for (int p = 0; p < kPropertyCount; ++p) {
    const PropertyDef& def = kProperties[p];
    const std::wstring number = def.type == PropType::Bool ? L"False" : std::to_wstring(def.defaultNumber);
    EXPECT_EQ(def.type == PropType::Picture ? L"picture 0" : def.defaultText ? def.defaultText : number, Get(p));
    EXPECT_EQ(types[full->Has(def.name) ? static_cast<int>(def.type) : 4], V_VT(&full->Value(def.name))) << def.name;
  }
  ASSERT_EQ(S_OK, As<IPersistPropertyBag>()->Save(initial.Get(), TRUE, FALSE));
  EXPECT_EQ(pictures, initial->writes);  // an empty picture is not Nothing
}

// A form no load would read again (a bitmap over the limit, or pictures that fit one by one but not together, at
// 24 bits) is not saved.
TEST_F(ControlTest, EveryPropertyRoundTripsThroughEachMediumAndAFormTooLargeIsNotSaved) {
  Owned<TestPropertyBag> bag;
  ComPtr<IStream> stream;
  ComPtr<IStorage> storage;
  ASSERT_EQ(S_OK, CreateStreamOnHGlobal(nullptr, TRUE, stream.Out()));
  ASSERT_EQ(S_OK, StgCreateDocfile(nullptr, STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE | STGM_DELETEONRELEASE,
                                   0, storage.Out()));
  for (int medium = 0; medium < 3; ++medium) {
    SCOPED_TRACE(medium);
    ULARGE_INTEGER size = {};
    STATSTG stat = {};
    Everything(true);
    ASSERT_EQ(S_OK, As<IPersistStreamInit>()->GetSizeMax(&size));
    ASSERT_EQ(S_OK, medium == 0   ? As<IPersistPropertyBag>()->Save(bag.Get(), TRUE, FALSE)
                    : medium == 1 ? As<IPersistStorage>()->Save(storage.Get(), FALSE)
                                  : As<IPersistStreamInit>()->Save(stream.Get(), TRUE));
    stream->Stat(&stat, STATFLAG_NONAME);
    EXPECT_EQ(medium == 2 ? size.QuadPart : stat.cbSize.QuadPart, stat.cbSize.QuadPart);  // the size it gave
    ASSERT_EQ(S_OK, InitNew());
    stream->Write("after", 6, nullptr);  // a container's own data may follow: the load reads only its own
    stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr);
    ASSERT_EQ(S_OK, medium == 0   ? LoadBag(bag.Get())
                    : medium == 1 ? As<IPersistStorage>()->Load(storage.Get())
                                  : As<IPersistStreamInit>()->Load(stream.Get()));
    Everything(false);
  }
  char after[6] = {};
  stream->Read(after, 6, nullptr);
  EXPECT_STREQ("after", after);
  for (const auto& [p, picture, saved] : {std::make_tuple(kProgramPicture, L"picture 3400", E_OUTOFMEMORY),
           std::make_tuple(kProgramPicture, L"picture 2900", S_OK), std::make_tuple(kProgramIcon, L"picture 2900",
           E_OUTOFMEMORY)}) {
    ASSERT_EQ(S_OK, Put(p, picture));
    EXPECT_EQ(saved, As<IPersistStreamInit>()->Save(stream.Get(), TRUE)) << picture;
  }
}

// A bag's values are converted; one that fails or holds a value of the wrong type fails the load, changing nothing.
TEST_F(ControlTest, ABagConvertsNumbersAndOneThatFailsOrIsIllTypedChangesNothing) {
  Owned<TestPropertyBag> notAPicture;
  const struct { const wchar_t* name; Variant value; HRESULT result; const wchar_t* reads; } rows[] = {
      {L"SplashScreenInterval", Value(VT_BSTR, L"2500"), S_OK, L"2500"}, {L"Author2", Value(VT_I2, L"42"), S_OK, L"42"},
      {L"ProgramMinor", Variant(), E_FAIL, L""}, {L"ProgramMajor", Value(VT_BSTR, L"abc"), DISP_E_TYPEMISMATCH, L""},
      {L"ProgramPicture", Value(VT_BSTR, L"abc"), DISP_E_TYPEMISMATCH, L""},
      {L"CompanyLogo", Value(VT_UNKNOWN, L"", notAPicture.As<IPropertyBag>()), DISP_E_TYPEMISMATCH, L""}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    Owned<TestPropertyBag> bag;
    ASSERT_EQ(S_OK, InitNew());
    ASSERT_EQ(S_OK, Put(kProgramName, L"kept"));
    bag->SetText(L"ProgramName", L"loaded");
    bag->Set(row.name, *row.value.Get());
    if (row.result == E_FAIL) bag->failingRead = row.name;  // the bag's read fails
    EXPECT_EQ(row.result, LoadBag(bag.Get()));
    const bool ok = row.result == S_OK;
    EXPECT_EQ((std::vector<std::wstring>{ok ? L"loaded" : L"kept", row.reads, ok ? FileVersion() : L""}),
              (std::vector<std::wstring>{Get(kProgramName), ok ? client_.GetString(row.name) : L"", Get(kVersion)}));
  }
}

// Each sink gets its own arguments whatever an earlier handler did; an Error raised inside a handler, on any
// instance, is dropped. On a control never loaded OpenCD finds no page and asks for the CD.
TEST_F(ControlTest, ErrorReachesEverySinkNestedErrorsAreDroppedAndOpenCdAsksForTheCd) {
  ComPtr<IDispatch> other;
  ASSERT_EQ(S_OK, BrevantisControl::Create(IID_IDispatch, other.OutVoid()));
  auto raise = [](IDispatch* control, short code) {
    static_cast<BrevantisControl*>(static_cast<_Brevantis*>(control))->RaiseErrorEvent(code, L"no browser");
  };
  Owned<ErrorEventSink> first, second, elsewhere;
  first->writeBack = true;
  first->result = E_FAIL;
  first->onError = [&] { raise(control_.Get(), 201), raise(other.Get(), 202); };
  for (auto [control, sink] : {std::pair{control_.Get(), first.Get()}, std::pair{control_.Get(), second.Get()},
                               std::pair{other.Get(), elsewhere.Get()}})
    ASSERT_NE(0u, Connect(control, DIID___Brevantis, static_cast<IDispatch*>(sink)));
  raise(control_.Get(), 200);
  raise(other.Get(), 203);
  for (ErrorEventSink* sink : {first.Get(), second.Get(), elsewhere.Get()}) {
    ASSERT_EQ(1u, sink->events.size());
    EXPECT_EQ((std::make_pair<short, std::wstring>(sink == elsewhere.Get() ? 203 : 200, L"no browser")),
              std::make_pair(sink->events[0].code, sink->events[0].text));
  }
  GUID events = {};
  ASSERT_EQ(S_OK, As<IProvideClassInfo2>()->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &events));
  EXPECT_TRUE(IsEqualGUID(DIID___Brevantis, events));
  platform_.expected = RecordingPlatform::kDrives | RecordingPlatform::kMci | RecordingPlatform::kMessage;
  EXPECT_EQ(S_OK, Call(L"OpenCD", DISPATCH_METHOD));
  EXPECT_EQ(std::vector<size_t>(2, 1), (std::vector<size_t>{platform_.mciCommands.size(), platform_.messages.size()}));
}

// In place the control tells a site insisting on another size its square, once; it shows at design time only,
// asking again when the user mode or an unknown ambient property changes.
TEST_F(ControlTest, TheControlKeepsItsSquareAndShowsItAtDesignTimeOnly) {
  ComPtr<IOleObject> ole = As<IOleObject>();
  for (auto [size, result] : {std::make_pair(SIZEL{1005, 1005}, S_OK), std::make_pair(SIZEL{5000, 300}, E_FAIL),
                              std::make_pair(SIZEL{1005, 300}, E_FAIL), std::make_pair(SIZEL{300, 1005}, E_FAIL)})
    EXPECT_EQ(result, ole->SetExtent(DVASPECT_CONTENT, &size)) << size.cx << "x" << size.cy;
  Owned<TestSite> site;
  site->userMode = false;
  ASSERT_EQ(S_OK, ole->SetClientSite(site.As<IOleClientSite>()));
  ASSERT_EQ(S_OK, ole->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, site.Get(), 0, GetDesktopWindow(), nullptr));
  ComPtr<IOleInPlaceObject> inPlace = As<IOleInPlaceObject>();
  const RECT stretched = {30, 40, 330, 90};
  int told = 0;
  site->onPosRectChange = [&] { if (++told < 3) inPlace->SetObjectRects(&stretched, &stretched); };  // it insists
  EXPECT_EQ(S_OK, inPlace->SetObjectRects(&stretched, &stretched));
  HWND window = nullptr;
  RECT client = {};
  ASSERT_EQ(S_OK, inPlace->GetWindow(&window));
  GetClientRect(window, &client);
  const LONG side = Pixels(570);
  EXPECT_EQ((std::vector<LONG>{1, 30, 40, 30 + side, 40 + side, side, side}),
            (std::vector<LONG>{told, site->position.left, site->position.top, site->position.right,
                               site->position.bottom, client.right, client.bottom}));
  for (const auto& [userMode, change, shown] : {std::make_tuple(true, DISPID_AMBIENT_BACKCOLOR, true),
           std::make_tuple(true, DISPID_AMBIENT_USERMODE, false),
           std::make_tuple(false, DISPID_AMBIENT_BACKCOLOR, false), std::make_tuple(false, DISPID_UNKNOWN, true)}) {
    site->userMode = userMode;
    EXPECT_EQ(S_OK, As<IOleControl>()->OnAmbientPropertyChange(change));
    EXPECT_EQ(shown, (GetWindowLongW(window, GWL_STYLE) & WS_VISIBLE) != 0) << change;
  }
  ole->Close(OLECLOSE_NOSAVE);
}

}  // namespace
