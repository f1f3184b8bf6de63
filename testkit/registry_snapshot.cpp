#include "testkit/registry_snapshot.h"

#include <vector>

#include "com/raii.h"

namespace brevantis::testing {
namespace {

std::wstring Lower(std::wstring text) {
  CharLowerBuffW(&text[0], static_cast<DWORD>(text.size()));
  return text;
}

void Walk(HKEY key, const std::wstring& path, std::set<std::wstring>* lines) {
  lines->insert(Lower(path));
  std::vector<wchar_t> name(16384);
  std::vector<BYTE> data(65536);
  for (DWORD i = 0;; ++i) {
    DWORD nameLength = static_cast<DWORD>(name.size());
    DWORD dataLength = static_cast<DWORD>(data.size());
    DWORD type = 0;
    if (RegEnumValueW(key, i, name.data(), &nameLength, nullptr, &type, data.data(), &dataLength) != ERROR_SUCCESS)
      break;
    std::wstring value(reinterpret_cast<const wchar_t*>(data.data()), dataLength / sizeof(wchar_t));
    lines->insert(Lower(path) + L"|" + std::wstring(name.data(), nameLength) + L"=" +
                  std::to_wstring(type) + L":" + value);
  }
  for (DWORD i = 0;; ++i) {
    DWORD nameLength = static_cast<DWORD>(name.size());
    if (RegEnumKeyExW(key, i, name.data(), &nameLength, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
      break;
    const std::wstring child(name.data(), nameLength);
    RegKey sub;
    if (RegOpenKeyExW(key, child.c_str(), 0, KEY_READ, sub.Out()) == ERROR_SUCCESS)
      Walk(sub.Get(), path.empty() ? child : path + L"\\" + child, lines);
  }
}

}  // namespace

std::set<std::wstring> SnapshotRegistry(HKEY root, const std::wstring& path) {
  std::set<std::wstring> lines;
  RegKey key;
  if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, key.Out()) == ERROR_SUCCESS) Walk(key.Get(), path, &lines);
  return lines;
}

}  // namespace brevantis::testing
