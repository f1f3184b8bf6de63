#include "forms/screen_texts.h"

#include <windows.h>

#include "com/text.h"
#include "forms/maker.h"
#include "model/environment.h"

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

std::wstring CopyrightYearShown(const std::wstring& year) {
  const std::wstring trimmed = TrimSpaces(year);
  return trimmed.empty() ? CurrentYearText() : trimmed;
}

std::wstring ProgramCopyrightLine(const std::wstring& from, const std::wstring& to) {
  std::wstring line = L"© Copyright " + from;
  if (from != to) line += L" - " + to;
  return line;
}

std::wstring ProgramVersionLine(LONG major, LONG minor, LONG revision) {
  return L"Versione: " + FormatVersion(major, minor, revision);
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
