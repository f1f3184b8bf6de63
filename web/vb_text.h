// The text functions the web and CD routines share: spaces trimmed as the
// routines define them (spaces only, never tabs or NULs) and case changes
// that keep the length.
#pragma once

#include <string>

namespace brevantis {

std::wstring TrimSpaces(const std::wstring& text);
std::wstring LowerCase(std::wstring text);
std::wstring UpperCase(std::wstring text);

}  // namespace brevantis
