// The CD catalogue opener.
#pragma once

#include <windows.h>
#include <string>

#include "web/facts.h"

namespace brevantis {

// The root of the first CD-ROM drive in upper case, as the drive list gives
// it (with its NUL), else the last root examined, else "".
std::wstring FindCdRomDrive();

enum class CdOutcome {
  Opened,        // the catalogue page was started in the browser
  AskedForCd,    // the page was missing: tray opened, user asked for the CD
  NoBrowser,     // the page is there but no browser was found, or CDIndexFile is no path below the root
};

// Opens the catalogue page index (CDIndexFile) on the CD. Fails only as
// FindDefaultBrowser does.
HRESULT OpenCatalogueOnCd(const std::wstring& index, const WebFacts& facts, CdOutcome* outcome);

}  // namespace brevantis
