#include "web/vb_text.h"

#include <windows.h>

namespace brevantis {

std::wstring TrimSpaces(const std::wstring& text) {
  const size_t first = text.find_first_not_of(L' ');
  if (first == std::wstring::npos) return std::wstring();
  return text.substr(first, text.find_last_not_of(L' ') - first + 1);
}

std::wstring LowerCase(std::wstring text) {
  if (!text.empty()) CharLowerBuffW(&text[0], static_cast<DWORD>(text.size()));
  return text;
}

std::wstring UpperCase(std::wstring text) {
  if (!text.empty()) CharUpperBuffW(&text[0], static_cast<DWORD>(text.size()));
  return text;
}

}  // namespace brevantis
