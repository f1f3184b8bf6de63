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
  if (!text.empty() && text.size() < INT_MAX / 2) {
    const int length = static_cast<int>(text.size());
    const int needed = WideCharToMultiByte(CP_ACP, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    if (needed > 0) {
      bytes.resize(needed);
      WideCharToMultiByte(CP_ACP, 0, text.data(), length, &bytes[0], needed, nullptr, nullptr);
    }
  }
  if (bytes.size() < text.size()) bytes.resize(text.size(), '\0');
  return bytes;
}

std::wstring FromAnsi(const char* bytes, size_t count) {
  std::wstring text;
  if (count == 0 || count >= INT_MAX) return text;
  const int length = static_cast<int>(count);
  const int needed = MultiByteToWideChar(CP_ACP, 0, bytes, length, nullptr, 0);
  if (needed > 0) {
    text.resize(needed);
    MultiByteToWideChar(CP_ACP, 0, bytes, length, &text[0], needed);
  }
  return text;
}

}  // namespace brevantis

namespace brevantis {

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

}  // namespace brevantis
