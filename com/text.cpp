#include "com/text.h"

#include <climits>

namespace brevantis {

std::wstring FromBstr(BSTR value) {
  return value ? std::wstring(value, SysStringLen(value)) : std::wstring();
}

HRESULT ToBstr(const std::wstring& text, BSTR* out) {
  if (!out) return E_POINTER;
  *out = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  return *out ? S_OK : E_OUTOFMEMORY;
}

std::string ToAnsi(const std::wstring& text) {
  std::string bytes;
  AppendAnsi(text, &bytes);
  return bytes;
}

void AppendAnsi(const std::wstring& text, std::string* bytes) {
  const size_t start = bytes->size();
  size_t written = 0;
  if (!text.empty() && text.size() < INT_MAX / 2) {
    const int length = static_cast<int>(text.size());
    const int needed = WideCharToMultiByte(CP_ACP, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    if (needed > 0) {
      bytes->resize(start + needed);
      WideCharToMultiByte(CP_ACP, 0, text.data(), length, &(*bytes)[start], needed, nullptr, nullptr);
      written = static_cast<size_t>(needed);
    }
  }
  if (written < text.size()) bytes->resize(start + text.size(), '\0');
}

std::string ToUtf8(const std::wstring& text) {
  const int length = text.size() < INT_MAX / 4 ? static_cast<int>(text.size()) : 0;
  std::string bytes(length ? WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr) : 0, '\0');
  if (!bytes.empty()) WideCharToMultiByte(CP_UTF8, 0, text.data(), length, &bytes[0], static_cast<int>(bytes.size()), nullptr, nullptr);
  return bytes;
}

std::wstring FromAnsi(const char* bytes, size_t count) {
  std::wstring text;
  AssignFromAnsi(bytes, count, &text);
  return text;
}

void AssignFromAnsi(const char* bytes, size_t count, std::wstring* text) {
  const int length = count < INT_MAX ? static_cast<int>(count) : 0;
  const int needed = length ? MultiByteToWideChar(CP_ACP, 0, bytes, length, nullptr, 0) : 0;
  if (needed <= 0) {
    text->clear();
    return;
  }
  // Characters already there are overwritten, not cleared first: on large
  // texts filling them would cost as much as the conversion.
  text->resize(needed);
  MultiByteToWideChar(CP_ACP, 0, bytes, length, &(*text)[0], needed);
}

std::wstring DecimalText(long long value, unsigned minDigits) {
  unsigned long long magnitude = value < 0 ? 0ull - static_cast<unsigned long long>(value)
                                           : static_cast<unsigned long long>(value);
  std::wstring digits;
  do {
    digits.insert(digits.begin(), static_cast<wchar_t>(L'0' + magnitude % 10));
    magnitude /= 10;
  } while (magnitude);
  if (digits.size() < minDigits) digits.insert(0, minDigits - digits.size(), L'0');
  if (value < 0) digits.insert(digits.begin(), L'-');
  return digits;
}

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
