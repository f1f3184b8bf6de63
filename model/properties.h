// The control's properties, declared once. The table's order is the order of
// the interface, of initialisation and of saving; it drives initial values,
// persistence and the read-only checks.
#pragma once

#include <windows.h>
#include <oaidl.h>

namespace brevantis {

enum class PropType { String, Long, Bool, Picture };

enum class Access {
  ReadWrite,
  Environment,  // read-only: 387 at design time, 382 at run time
  Version,      // read-only: 383 unless the value is unchanged
};

struct PropertyDef {
  const wchar_t* name;           // also the name in the property bag
  DISPID dispid;
  PropType type;
  const wchar_t* defaultText;    // initial value and bag default (strings)
  LONG defaultNumber;            // initial value and bag default (numbers, booleans)
  Access access;
  bool loaded;                   // read back by a property load
  ULONG maxLength;               // a put keeps at most this many characters; 0 = no limit
};

enum Prop {
  kProgramName, kAuthor1, kAuthor2, kAuthor3, kWebSiteURL, kProgramPicture, kProgramIcon,
  kProgramMajor, kProgramMinor, kProgramRevision, kSplashScreenInterval, kCopyrightFromDate,
  kCopyrightToDate, kCompanyName, kCompanyEmail, kCompanyLogo, kAboutWavSound, kUpdatesURL,
  kDefaultProgramFolder, kCompanyPhoneNumber, kCompanyFaxNumber, kVersion, kCDIndexFile,
  kIsWindowsNT, kWinSysDir, kWinTempDir, kOSName,
  kPropertyCount
};

extern const PropertyDef kProperties[kPropertyCount];

}  // namespace brevantis
