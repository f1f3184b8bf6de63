#include "platform/registry.h"

#include <string>

#include "com/raii.h"
#include "com/text.h"

namespace brevantis {

std::wstring ReadRegistryText(HKEY root, const std::wstring& key, const std::wstring& name, DWORD bufferBytes) {
  RegKey opened;
  if (RegOpenKeyExA(root, ToAnsi(key).c_str(), 0, KEY_QUERY_VALUE, opened.Out()) != ERROR_SUCCESS) return L"";
  std::string buffer(bufferBytes, ' ');
  DWORD count = bufferBytes;
  if (RegQueryValueExA(opened.Get(), ToAnsi(name).c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(&buffer[0]),
                       &count) != ERROR_SUCCESS ||
      count < 1 || count > bufferBytes)
    return L"";
  return FromAnsi(buffer.data(), count - 1);
}

}  // namespace brevantis
