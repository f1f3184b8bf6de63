// Saving and loading the control through a property bag, a stream and a
// storage, with the container's own objects on the other side.
#include "control_fixture.h"

#include <algorithm>
#include <vector>

using namespace brevantis;
using namespace brevantis::testing;

namespace {

// The order in which the control saves its values: every property.
const std::vector<std::wstring> kSaveOrder = {
    L"ProgramName", L"Author1", L"Author2", L"Author3", L"WebSiteURL", L"ProgramPicture", L"ProgramIcon",
    L"ProgramMajor", L"ProgramMinor", L"ProgramRevision", L"SplashScreenInterval", L"CopyrightFromDate",
    L"CopyrightToDate", L"CompanyName", L"CompanyEmail", L"CompanyLogo", L"AboutWavSound", L"UpdatesURL",
    L"DefaultProgramFolder", L"CompanyPhoneNumber", L"CompanyFaxNumber", L"Version", L"CDIndexFile",
    L"IsWindowsNT", L"WinSysDir", L"WinTempDir", L"OSName"};

// The order in which it reads them back: never the version or the machine.
const std::vector<std::wstring> kLoadOrder = {
    L"ProgramName", L"Author1", L"Author2", L"Author3", L"WebSiteURL", L"ProgramPicture", L"ProgramIcon",
    L"ProgramMajor", L"ProgramMinor", L"ProgramRevision", L"SplashScreenInterval", L"CopyrightFromDate",
    L"CopyrightToDate", L"CompanyName", L"CompanyEmail", L"CompanyLogo", L"AboutWavSound", L"UpdatesURL",
    L"DefaultProgramFolder", L"CompanyPhoneNumber", L"CompanyFaxNumber", L"CDIndexFile"};

const wchar_t* const kStrings[] = {L"ProgramName", L"Author1", L"Author2", L"Author3", L"WebSiteURL",
                                   L"CopyrightFromDate", L"CopyrightToDate", L"CompanyName", L"CompanyEmail",
                                   L"AboutWavSound", L"UpdatesURL", L"DefaultProgramFolder", L"CompanyPhoneNumber",
                                   L"CompanyFaxNumber", L"CDIndexFile"};
const wchar_t* const kLongs[] = {L"ProgramMajor", L"ProgramMinor", L"ProgramRevision", L"SplashScreenInterval"};
const wchar_t* const kPictures[] = {L"ProgramPicture", L"ProgramIcon", L"CompanyLogo"};

class PersistenceTest : public ControlTest {
 protected:
  // Gives every saved property a value other than its default; pictures get
  // bitmaps of different sizes.
  void SetEverything(IDispatch* control) {
    for (const wchar_t* name : kStrings)
      ASSERT_EQ(S_OK, Put(control, name, (std::wstring(name) + L" \u00e8 value").c_str())) << name;
    LONG n = 7;
    for (const wchar_t* name : kLongs) ASSERT_EQ(S_OK, PutLong(control, name, n++)) << name;
    ComPtr<_Brevantis> typed = As<_Brevantis>(control);
    ASSERT_EQ(S_OK, typed->putref_ProgramPicture(NewBitmapPicture(10, 20).Get()));
    ASSERT_EQ(S_OK, typed->putref_ProgramIcon(NewBitmapPicture(30, 40).Get()));
    ASSERT_EQ(S_OK, typed->putref_CompanyLogo(NewBitmapPicture(50, 60).Get()));
  }

  void ExpectEverything(IDispatch* control) {
    for (const wchar_t* name : kStrings) EXPECT_EQ(std::wstring(name) + L" \u00e8 value", Get(control, name)) << name;
    LONG n = 7;
    for (const wchar_t* name : kLongs) EXPECT_EQ(std::to_wstring(n++), Get(control, name)) << name;
    ComPtr<_Brevantis> typed = As<_Brevantis>(control);
    const struct { HRESULT (STDMETHODCALLTYPE _Brevantis::*get)(IPictureDisp**); OLE_XSIZE_HIMETRIC width; } pictures[] = {
        {&_Brevantis::get_ProgramPicture, 10}, {&_Brevantis::get_ProgramIcon, 30}, {&_Brevantis::get_CompanyLogo, 50}};
    for (const auto& p : pictures) {
      ComPtr<IPictureDisp> picture;
      ASSERT_EQ(S_OK, (typed.Get()->*p.get)(picture.Out()));
      ASSERT_EQ(PICTYPE_BITMAP, PictureType(picture.Get()));
      ComPtr<IPicture> pic = As<IPicture>(picture.Get());
      OLE_XSIZE_HIMETRIC width = 0;
      pic->get_Width(&width);
      const HDC screen = GetDC(nullptr);
      const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
      ReleaseDC(nullptr, screen);
      EXPECT_EQ(p.width, MulDiv(width, dpi, 2540));
    }
  }

  // Resets the shared store the way a newly placed control does.
  static void Reset(IDispatch* control) { ASSERT_EQ(S_OK, As<IPersistStreamInit>(control)->InitNew()); }
};

TEST_F(PersistenceTest, InitNewSetsTheInitialValues) {
  ComPtr<IDispatch> control = NewControl();
  Put(control.Get(), L"ProgramName", L"left over");
  ASSERT_EQ(S_OK, As<IPersistStreamInit>(control.Get())->InitNew());
  const struct { const wchar_t* name; const wchar_t* value; } expected[] = {
      {L"ProgramName", L""}, {L"Author1", L""}, {L"Author2", L""}, {L"Author3", L""},
      {L"WebSiteURL", L"http://www.ostrel-edizioni.example"}, {L"ProgramMajor", L"0"}, {L"ProgramMinor", L"0"},
      {L"ProgramRevision", L"0"}, {L"SplashScreenInterval", L"1000"}, {L"CopyrightFromDate", L""},
      {L"CopyrightToDate", L""}, {L"CompanyName", L"Ostrel Edizioni"}, {L"CompanyEmail", L"info@ostrel-edizioni.example"},
      {L"AboutWavSound", L""}, {L"UpdatesURL", L"http://www.ostrel-edizioni.example/aggiornamenti"},
      {L"DefaultProgramFolder", L"Pellandra"}, {L"CompanyPhoneNumber", L"+39 0123 456789"},
      {L"CompanyFaxNumber", L"+39 0123 456790"}, {L"Version", L""}, {L"CDIndexFile", L"zo\\index.htm"},
      {L"IsWindowsNT", L"False"}, {L"WinSysDir", L""}, {L"WinTempDir", L""}, {L"OSName", L""}};
  for (const auto& e : expected) EXPECT_EQ(e.value, Get(control.Get(), e.name)) << e.name;
  ComPtr<_Brevantis> typed = As<_Brevantis>(control.Get());
  ComPtr<IPictureDisp> logo;
  ASSERT_EQ(S_OK, typed->get_CompanyLogo(logo.Out()));
  EXPECT_EQ(PICTYPE_NONE, PictureType(logo.Get()));
}

TEST_F(PersistenceTest, SavesOnlyWhatDiffersFromTheDefaultsInTableOrder) {
  ComPtr<IDispatch> control = NewControl();
  Reset(control.Get());
  Owned<TestPropertyBag> bag;
  ASSERT_EQ(S_OK, As<IPersistPropertyBag>(control.Get())->Save(bag.As<IPropertyBag>(), TRUE, FALSE));
  // A new control differs from the defaults only in its empty pictures.
  EXPECT_EQ((std::vector<std::wstring>{L"ProgramPicture", L"ProgramIcon", L"CompanyLogo"}), bag->writes);

  SetEverything(control.Get());
  Owned<TestPropertyBag> full;
  ASSERT_EQ(S_OK, As<IPersistPropertyBag>(control.Get())->Load(bag.As<IPropertyBag>(), nullptr));  // fills Version and the machine
  SetEverything(control.Get());
  ASSERT_EQ(S_OK, As<IPersistPropertyBag>(control.Get())->Save(full.As<IPropertyBag>(), TRUE, FALSE));
  std::vector<std::wstring> expected;
  // A machine's answers that are empty or false equal their defaults.
  for (const std::wstring& name : kSaveOrder) {
    const std::wstring value = Get(control.Get(), name.c_str());
    if (value != L"" && value != L"False") expected.push_back(name);
  }
  EXPECT_EQ(kSaveOrder.size(), expected.size() + 0) << "every value differs from its default on this machine";
  EXPECT_EQ(expected, full->writes);
  EXPECT_EQ(VT_BSTR, V_VT(&full->Value(L"Version")));
}

TEST_F(PersistenceTest, LoadsInItsOrderAndNeverReadsTheMachine) {
  ComPtr<IDispatch> control = NewControl();
  Owned<TestPropertyBag> bag;
  bag->SetText(L"Version", L"9.99.9999");
  bag->SetText(L"OSName", L"Another system");
  bag->SetText(L"WinSysDir", L"Q:\\Elsewhere");
  ASSERT_EQ(S_OK, As<IPersistPropertyBag>(control.Get())->Load(bag.As<IPropertyBag>(), nullptr));
  EXPECT_EQ(kLoadOrder, bag->reads);

  EXPECT_EQ(L"1.03.0001", Get(control.Get(), L"Version"));
  EXPECT_NE(L"Another system", Get(control.Get(), L"OSName"));
  EXPECT_NE(L"Q:\\Elsewhere", Get(control.Get(), L"WinSysDir"));
}

TEST_F(PersistenceTest, EveryPropertyRoundTripsThroughABag) {
  ComPtr<IDispatch> control = NewControl();
  Reset(control.Get());
  SetEverything(control.Get());
  Owned<TestPropertyBag> bag;
  ASSERT_EQ(S_OK, As<IPersistPropertyBag>(control.Get())->Save(bag.As<IPropertyBag>(), TRUE, FALSE));
  Reset(control.Get());
  ASSERT_EQ(S_OK, As<IPersistPropertyBag>(control.Get())->Load(bag.As<IPropertyBag>(), nullptr));
  ExpectEverything(control.Get());
}

TEST_F(PersistenceTest, EveryPropertyRoundTripsThroughAStream) {
  ComPtr<IDispatch> control = NewControl();
  Reset(control.Get());
  SetEverything(control.Get());
  ComPtr<IStream> stream;
  ASSERT_EQ(S_OK, CreateStreamOnHGlobal(nullptr, TRUE, stream.Out()));
  ComPtr<IPersistStreamInit> persist = As<IPersistStreamInit>(control.Get());
  ULARGE_INTEGER max = {};
  ASSERT_EQ(S_OK, persist->GetSizeMax(&max));
  ASSERT_EQ(S_OK, persist->Save(stream.Get(), TRUE));
  EXPECT_EQ(S_FALSE, persist->IsDirty());
  STATSTG stat = {};
  stream->Stat(&stat, STATFLAG_NONAME);
  EXPECT_EQ(max.QuadPart, stat.cbSize.QuadPart);
  const char trailer[] = "after";
  stream->Write(trailer, sizeof(trailer), nullptr);  // a container's own data may follow

  Reset(control.Get());
  const LARGE_INTEGER start = {};
  stream->Seek(start, STREAM_SEEK_SET, nullptr);
  ASSERT_EQ(S_OK, persist->Load(stream.Get()));
  ExpectEverything(control.Get());
  char after[sizeof(trailer)] = {};
  ULONG read = 0;
  stream->Read(after, sizeof(after), &read);
  EXPECT_STREQ(trailer, after);  // the load read exactly its own bytes
}

TEST_F(PersistenceTest, EveryPropertyRoundTripsThroughAStorage) {
  ComPtr<IDispatch> control = NewControl();
  Reset(control.Get());
  SetEverything(control.Get());
  ComPtr<ILockBytes> bytes;
  ComPtr<IStorage> storage;
  ASSERT_EQ(S_OK, CreateILockBytesOnHGlobal(nullptr, TRUE, bytes.Out()));
  ASSERT_EQ(S_OK, StgCreateDocfileOnILockBytes(bytes.Get(), STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0,
                                              storage.Out()));
  ComPtr<IPersistStorage> persist = As<IPersistStorage>(control.Get());
  ASSERT_EQ(S_OK, persist->Save(storage.Get(), FALSE));
  ASSERT_EQ(S_OK, persist->SaveCompleted(nullptr));
  Reset(control.Get());
  ASSERT_EQ(S_OK, persist->Load(storage.Get()));
  ExpectEverything(control.Get());
}

TEST_F(PersistenceTest, ASecondInstanceLoadingOverwritesTheFirst) {
  ComPtr<IDispatch> first = NewControl(), second = NewControl();
  Owned<TestPropertyBag> firstBag, secondBag;
  firstBag->SetText(L"ProgramName", L"Primo");
  secondBag->SetText(L"ProgramName", L"Secondo");
  ASSERT_EQ(S_OK, As<IPersistPropertyBag>(first.Get())->Load(firstBag.As<IPropertyBag>(), nullptr));
  EXPECT_EQ(L"Primo", Get(second.Get(), L"ProgramName"));
  ASSERT_EQ(S_OK, As<IPersistPropertyBag>(second.Get())->Load(secondBag.As<IPropertyBag>(), nullptr));
  EXPECT_EQ(L"Secondo", Get(first.Get(), L"ProgramName"));
}

TEST_F(PersistenceTest, ABagThatFailsOrHoldsWrongTypesFailsTheLoadAndChangesNothing) {
  ComPtr<IDispatch> control = NewControl();
  Reset(control.Get());
  Put(control.Get(), L"ProgramName", L"Intatto");

  Owned<TestPropertyBag> failing;
  failing->SetText(L"Author1", L"would be read first");
  failing->failingRead = L"ProgramMinor";
  EXPECT_EQ(E_FAIL, As<IPersistPropertyBag>(control.Get())->Load(failing.As<IPropertyBag>(), nullptr));

  Owned<TestPropertyBag> wrongNumber;
  wrongNumber->SetText(L"ProgramName", L"Sovrascritto");
  wrongNumber->SetText(L"ProgramMajor", L"abc");
  EXPECT_EQ(DISP_E_TYPEMISMATCH, As<IPersistPropertyBag>(control.Get())->Load(wrongNumber.As<IPropertyBag>(), nullptr));

  Owned<TestPropertyBag> wrongPicture;
  wrongPicture->SetText(L"ProgramPicture", L"not a picture");
  EXPECT_EQ(DISP_E_TYPEMISMATCH, As<IPersistPropertyBag>(control.Get())->Load(wrongPicture.As<IPropertyBag>(), nullptr));

  Owned<TestPropertyBag> objectNotPicture;
  VARIANT object;
  VariantInit(&object);
  V_VT(&object) = VT_UNKNOWN;
  V_UNKNOWN(&object) = objectNotPicture.As<IPropertyBag>();
  objectNotPicture->Set(L"CompanyLogo", object);
  EXPECT_EQ(DISP_E_TYPEMISMATCH, As<IPersistPropertyBag>(control.Get())->Load(objectNotPicture.As<IPropertyBag>(), nullptr));

  EXPECT_EQ(L"Intatto", Get(control.Get(), L"ProgramName"));
  EXPECT_EQ(L"", Get(control.Get(), L"Author1"));
  EXPECT_EQ(L"", Get(control.Get(), L"Version"));
}

TEST_F(PersistenceTest, NumbersInABagAreConvertedAsAHostWouldConvertThem) {
  ComPtr<IDispatch> control = NewControl();
  Owned<TestPropertyBag> bag;
  bag->SetText(L"SplashScreenInterval", L"2500");
  VARIANT number;
  VariantInit(&number);
  V_VT(&number) = VT_I2;
  V_I2(&number) = 42;
  bag->Set(L"Author2", number);
  ASSERT_EQ(S_OK, As<IPersistPropertyBag>(control.Get())->Load(bag.As<IPropertyBag>(), nullptr));
  EXPECT_EQ(L"2500", Get(control.Get(), L"SplashScreenInterval"));
  EXPECT_EQ(L"42", Get(control.Get(), L"Author2"));
}

// Loads bytes as a stream; the result of the load.
HRESULT LoadBytes(IPersistStreamInit* persist, const std::string& bytes) {
  ComPtr<IStream> stream;
  CreateStreamOnHGlobal(nullptr, TRUE, stream.Out());
  stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr);
  const LARGE_INTEGER start = {};
  stream->Seek(start, STREAM_SEEK_SET, nullptr);
  return persist->Load(stream.Get());
}

// A form no load would read again is not saved: neither a bitmap over the
// limit nor pictures that fit one by one but not together (at 24 bits,
// 3,400 squared is 35 MB, 2,900 squared 25 MB).
TEST_F(PersistenceTest, AFormTooLargeToLoadAgainIsNotSaved) {
  ComPtr<IDispatch> control = NewControl();
  Reset(control.Get());
  ComPtr<_Brevantis> typed = As<_Brevantis>(control.Get());
  ComPtr<IPersistStreamInit> persist = As<IPersistStreamInit>(control.Get());
  ComPtr<IStream> stream;
  ASSERT_EQ(S_OK, CreateStreamOnHGlobal(nullptr, TRUE, stream.Out()));
  ASSERT_EQ(S_OK, typed->putref_ProgramPicture(NewBitmapPicture(3400, 3400).Get()));
  EXPECT_EQ(E_OUTOFMEMORY, persist->Save(stream.Get(), TRUE));
  ASSERT_EQ(S_OK, typed->putref_ProgramPicture(NewBitmapPicture(2900, 2900).Get()));
  EXPECT_EQ(S_OK, persist->Save(stream.Get(), TRUE));
  ASSERT_EQ(S_OK, typed->putref_ProgramIcon(NewBitmapPicture(2900, 2900).Get()));
  EXPECT_EQ(E_OUTOFMEMORY, persist->Save(stream.Get(), TRUE));
}

TEST_F(PersistenceTest, TruncatedAndCorruptStreamsFailCleanly) {
  ComPtr<IDispatch> control = NewControl();
  Reset(control.Get());
  SetEverything(control.Get());
  ComPtr<IPersistStreamInit> persist = As<IPersistStreamInit>(control.Get());
  ComPtr<IStream> stream;
  ASSERT_EQ(S_OK, CreateStreamOnHGlobal(nullptr, TRUE, stream.Out()));
  ASSERT_EQ(S_OK, persist->Save(stream.Get(), TRUE));
  HGLOBAL memory = nullptr;
  GetHGlobalFromStream(stream.Get(), &memory);
  STATSTG stat = {};
  stream->Stat(&stat, STATFLAG_NONAME);
  const std::string saved(static_cast<const char*>(GlobalLock(memory)), static_cast<size_t>(stat.cbSize.QuadPart));
  GlobalUnlock(memory);

  Reset(control.Get());
  Put(control.Get(), L"ProgramName", L"Intatto");
  for (size_t cut = 0; cut < saved.size(); cut += (cut < 64 ? 1 : 97))
    EXPECT_TRUE(FAILED(LoadBytes(persist.Get(), saved.substr(0, cut)))) << "cut at " << cut;

  std::string corrupt = saved;
  corrupt[6] = '\xff';  // a body length far beyond the data
  corrupt[7] = '\xff';
  corrupt[8] = '\xff';
  corrupt[9] = '\x7f';
  EXPECT_TRUE(FAILED(LoadBytes(persist.Get(), corrupt)));
  corrupt = saved;
  corrupt[0] = 'X';  // not ours
  EXPECT_TRUE(FAILED(LoadBytes(persist.Get(), corrupt)));
  corrupt = saved;
  corrupt[14] = '\x40';  // the first name's length runs past its record
  EXPECT_TRUE(FAILED(LoadBytes(persist.Get(), corrupt)));
  unsigned seed = 12345;
  for (int round = 0; round < 200; ++round) {
    std::string noise = saved;
    for (int flips = 0; flips < 8; ++flips) {
      seed = seed * 1103515245u + 12345u;
      noise[10 + seed % (noise.size() - 10)] = static_cast<char>(seed >> 16);
    }
    LoadBytes(persist.Get(), noise);  // any outcome but a crash; a success loads valid values
  }
  Reset(control.Get());
  Put(control.Get(), L"ProgramName", L"Intatto");
  EXPECT_TRUE(FAILED(LoadBytes(persist.Get(), std::string("BRVP\x01\x00\x04\x00\x00\x00\xff\xff\xff\xff", 14))));
  EXPECT_EQ(L"Intatto", Get(control.Get(), L"ProgramName"));
}

}  // namespace
