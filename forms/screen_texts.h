// The texts the information screens build from the store and the clock.
#pragma once

#include <string>

#include "control/store.h"

namespace brevantis {

// The current year, four digits.
std::wstring CurrentYearText();

// The program about box's copyright line. Trims both copyright years in the
// store and puts the current year into an empty one: the store keeps them so.
std::wstring ProgramCopyrightLine(Store& store);

// "Versione: " and the program's major, minor ("00") and revision ("0000").
std::wstring ProgramVersionLine(const Store& store);

// An author as the about box shows it: at most 50 characters.
std::wstring AuthorLine(const std::wstring& author);

extern const wchar_t kProgramLegalNotice[];

// The control about box's copyright line, up to the current year.
std::wstring ControlCopyrightLine();

// The control about box's legal notice: its design caption and the warning.
std::wstring ControlLegalNotice(const std::wstring& designCaption);

}  // namespace brevantis
