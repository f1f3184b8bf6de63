// The Brevantis control: its automation interface over the shared store.
#pragma once

#include <windows.h>
#include <ocidl.h>

#include "BrevantisLib_h.h"
#include "com/error_info.h"
#include "com/object.h"
#include "control/properties.h"

namespace brevantis {

class BrevantisControl : public ComClassBase,
                         public DispatchImpl<_Brevantis>,
                         public SupportErrorInfoFor<_Brevantis> {
 public:
  static const InterfaceEntry* Interfaces();
  static HRESULT Create(REFIID iid, void** out);

  // Methods.
  STDMETHODIMP About() override;
  STDMETHODIMP OpenCD() override;
  STDMETHODIMP ShowAbout() override;
  STDMETHODIMP ShowSplashScreen() override;
  STDMETHODIMP WebConnect(BSTR url) override;

#define BREVANTIS_STRING_PROPERTY(Name)                                                  \
  STDMETHODIMP get_##Name(BSTR* value) override { return GetString(k##Name, value); } \
  STDMETHODIMP put_##Name(BSTR value) override { return PutString(k##Name, value); }
#define BREVANTIS_LONG_PROPERTY(Name)                                                    \
  STDMETHODIMP get_##Name(LONG* value) override { return GetLong(k##Name, value); }   \
  STDMETHODIMP put_##Name(LONG value) override { return PutLong(k##Name, value); }
#define BREVANTIS_PICTURE_PROPERTY(Name)                                                          \
  STDMETHODIMP get_##Name(IPictureDisp** value) override { return GetPicture(k##Name, value); } \
  STDMETHODIMP putref_##Name(IPictureDisp* value) override { return PutPicture(k##Name, value); }

  BREVANTIS_STRING_PROPERTY(ProgramName)
  BREVANTIS_STRING_PROPERTY(Author1)
  BREVANTIS_STRING_PROPERTY(Author2)
  BREVANTIS_STRING_PROPERTY(Author3)
  BREVANTIS_STRING_PROPERTY(WebSiteURL)
  BREVANTIS_PICTURE_PROPERTY(ProgramPicture)
  BREVANTIS_PICTURE_PROPERTY(ProgramIcon)
  BREVANTIS_LONG_PROPERTY(ProgramMajor)
  BREVANTIS_LONG_PROPERTY(ProgramMinor)
  BREVANTIS_LONG_PROPERTY(ProgramRevision)
  BREVANTIS_LONG_PROPERTY(SplashScreenInterval)
  BREVANTIS_STRING_PROPERTY(CopyrightFromDate)
  BREVANTIS_STRING_PROPERTY(CopyrightToDate)
  BREVANTIS_STRING_PROPERTY(CompanyName)
  BREVANTIS_STRING_PROPERTY(CompanyEmail)
  BREVANTIS_PICTURE_PROPERTY(CompanyLogo)
  BREVANTIS_STRING_PROPERTY(AboutWavSound)
  BREVANTIS_STRING_PROPERTY(UpdatesURL)
  BREVANTIS_STRING_PROPERTY(DefaultProgramFolder)
  BREVANTIS_STRING_PROPERTY(CompanyPhoneNumber)
  BREVANTIS_STRING_PROPERTY(CompanyFaxNumber)
  BREVANTIS_STRING_PROPERTY(Version)
  BREVANTIS_STRING_PROPERTY(CDIndexFile)
  BREVANTIS_STRING_PROPERTY(WinSysDir)
  BREVANTIS_STRING_PROPERTY(WinTempDir)
  BREVANTIS_STRING_PROPERTY(OSName)
  STDMETHODIMP get_IsWindowsNT(VARIANT_BOOL* value) override;
  STDMETHODIMP put_IsWindowsNT(VARIANT_BOOL value) override;

#undef BREVANTIS_STRING_PROPERTY
#undef BREVANTIS_LONG_PROPERTY
#undef BREVANTIS_PICTURE_PROPERTY

 private:
  HRESULT GetString(Prop p, BSTR* value);
  HRESULT PutString(Prop p, BSTR value);
  HRESULT GetLong(Prop p, LONG* value);
  HRESULT PutLong(Prop p, LONG value);
  HRESULT GetPicture(Prop p, IPictureDisp** value);
  HRESULT PutPicture(Prop p, IPictureDisp* value);

  // The read-only rules; S_OK when the put may go ahead.
  HRESULT CheckWritable(Prop p, const std::wstring* newText);
  bool IsDesignTime();
  void Changed(Prop p);
};

}  // namespace brevantis
