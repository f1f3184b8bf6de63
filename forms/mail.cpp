#include "forms/mail.h"

#include "com/raii.h"
#include "com/text.h"
#include "platform/platform.h"

namespace brevantis {
namespace {

constexpr REGSAM kMailKeyAccess = 0xF0063;
constexpr DWORD kValueBufferLength = 256;

}  // namespace

std::wstring ReadRegistryValue(HKEY root, const std::wstring& keyPath, const std::wstring& valueName) {
  RegKey key;
  if (RegOpenKeyExA(root, ToAnsi(keyPath).c_str(), 0, kMailKeyAccess, key.Out()) != ERROR_SUCCESS) return L"";
  char buffer[kValueBufferLength] = {};
  DWORD size = kValueBufferLength;
  if (RegQueryValueExA(key.Get(), ToAnsi(valueName).c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(buffer),
                       &size) != ERROR_SUCCESS || size == 0)
    return L"";
  // The size counts the terminating NUL.
  return FromAnsi(buffer, kValueBufferLength).substr(0, size - 1);
}

void SendMail(const std::wstring& address) {
  std::wstring command = ReadRegistryValue(HKEY_CLASSES_ROOT, L"mailto\\shell\\open\\command", L"");
  if (command.empty() || (command.size() > 1 && command[1] == L'%')) return;
  // Keeps the program and the start of its first switch (such as "/mail:%1"),
  // which the address completes. Without a "/" only the address is left,
  // which cannot start: the link then does nothing.
  const size_t slash = command.find(L'/');
  command.resize(slash == std::wstring::npos ? 0 : slash + 1);
  CurrentPlatform().StartProcess(command + address, SW_SHOWNORMAL);
}

}  // namespace brevantis
