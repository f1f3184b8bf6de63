// The texts the information screens build from the program's facts and the
// clock.
#pragma once

#include <windows.h>
#include <string>

namespace brevantis {

// The current year, four digits.
std::wstring CurrentYearText();

// A copyright year as the program's about box shows it, and as the control
// keeps it once the box has been opened: trimmed, the current year when empty.
std::wstring CopyrightYearShown(const std::wstring& year);

// The program about box's copyright line for years as shown.
std::wstring ProgramCopyrightLine(const std::wstring& from, const std::wstring& to);

// "Versione: " and the program's major, minor ("00") and revision ("0000").
std::wstring ProgramVersionLine(LONG major, LONG minor, LONG revision);

// An author as the about box shows it: at most 50 characters.
std::wstring AuthorLine(const std::wstring& author);

extern const wchar_t kProgramLegalNotice[];

// The control about box's copyright line, up to the current year.
std::wstring ControlCopyrightLine();

// The control about box's legal notice: its design caption and the warning.
std::wstring ControlLegalNotice(const std::wstring& designCaption);

}  // namespace brevantis
