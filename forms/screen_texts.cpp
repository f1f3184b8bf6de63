#include "forms/screen_texts.h"

#include <windows.h>

#include "com/text.h"
#include "control/environment.h"
#include "forms/maker.h"
#include "web/vb_text.h"

namespace brevantis {
namespace {

constexpr size_t kAuthorLength = 50;

}  // namespace

const wchar_t kProgramLegalNotice[] =
    L"Questo programma è tutelato dalle leggi sul copyright, dalle leggi sul diritto di autore e dalle "
    L"disposizioni internazionali nonchè dal D.P.R. n. 518 del 29.12.1992. "
    L"La riproduzione o distribuzione non autorizzata di questo programma, o di parte di esso, sarà "
    L"perseguita penalmente e civilmente.";

std::wstring CurrentYearText() {
  SYSTEMTIME now;
  GetLocalTime(&now);
  return DecimalText(now.wYear, 4);
}

std::wstring ProgramCopyrightLine(Store& store) {
  std::wstring& from = store[kCopyrightFromDate].text;
  std::wstring& to = store[kCopyrightToDate].text;
  from = TrimSpaces(from);
  to = TrimSpaces(to);
  if (from.empty()) from = CurrentYearText();
  if (to.empty()) to = CurrentYearText();
  std::wstring line = L"© Copyright " + from;
  if (from != to) line += L" - " + to;
  return line;
}

std::wstring ProgramVersionLine(const Store& store) {
  return L"Versione: " +
         FormatVersion(store[kProgramMajor].number, store[kProgramMinor].number, store[kProgramRevision].number);
}

std::wstring AuthorLine(const std::wstring& author) { return author.substr(0, kAuthorLength); }

std::wstring ControlCopyrightLine() {
  return L"© Copyright 2001/" + CurrentYearText() + L", " MAKER_NAME L" - EU";
}

std::wstring ControlLegalNotice(const std::wstring& designCaption) {
  return designCaption +
         L"\rWarning: this computer program is protected by copyright law and international treaties."
         L"\rUnauthorized reproduction or distribution of this program, or any portion of it, may result in civil "
         L"and criminal penalties, and will be prosecuted to the maximum extent possible under law.";
}

}  // namespace brevantis
