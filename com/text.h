// Conversions between the control's UTF-16 strings and the ANSI text that the
// Windows "A" functions take, always through the system code page.
#pragma once

#include <windows.h>
#include <oleauto.h>
#include <string>

namespace brevantis {

// The text of a BSTR; NULL is the empty string. Embedded NULs are kept.
std::wstring FromBstr(BSTR value);

// A new BSTR holding text (never NULL for a valid argument pointer).
HRESULT ToBstr(const std::wstring& text, BSTR* out);

// ANSI bytes of text, one or more per character. The result is padded with NULs
// to at least text.size() bytes, so a byte count equal to the character count
// never reaches past the end.
std::string ToAnsi(const std::wstring& text);
// The same bytes appended to bytes, which can be sized beforehand.
void AppendAnsi(const std::wstring& text, std::string* bytes);

// UTF-8 bytes of text, for what is written to files and consoles.
std::string ToUtf8(const std::wstring& text);

// Characters of ANSI bytes; each byte of a single-byte code page gives one.
std::wstring FromAnsi(const char* bytes, size_t count);
inline std::wstring FromAnsi(const std::string& bytes) { return FromAnsi(bytes.data(), bytes.size()); }
// The same characters put in place of text's, in its storage where it fits.
void AssignFromAnsi(const char* bytes, size_t count, std::wstring* text);

// value in decimal with at least minDigits digits (zeros in front), a minus
// sign before a negative value: 12 with 4 digits is 0012.
std::wstring DecimalText(long long value, unsigned minDigits = 1);

// Spaces trimmed as the control's routines define them: spaces only, never
// tabs or NULs.
std::wstring TrimSpaces(const std::wstring& text);
// Case changes that keep the length.
std::wstring LowerCase(std::wstring text);
std::wstring UpperCase(std::wstring text);

}  // namespace brevantis
