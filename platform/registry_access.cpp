#include "platform/registry_access.h"

#include "com/text.h"

namespace brevantis {
namespace {

// Reads ask only to query: a host without administrator rights reads the
// machine's keys too.
constexpr REGSAM kReadAccess = KEY_QUERY_VALUE;
constexpr REGSAM kWriteAccess = KEY_ALL_ACCESS;
constexpr DWORD kReadBufferBytes = 255;

HKEY ChooseRoot(bool inClassesRoot, bool inCurrentUser, bool inLocalMachine, bool inUsers,
                bool inCurrentConfig, bool inDynData) {
  if (inClassesRoot) return HKEY_CLASSES_ROOT;
  if (inCurrentUser) return HKEY_CURRENT_USER;
  if (inLocalMachine) return HKEY_LOCAL_MACHINE;
  if (inUsers) return HKEY_USERS;
  if (inCurrentConfig) return HKEY_CURRENT_CONFIG;
  if (inDynData) return HKEY_DYN_DATA;
  return nullptr;
}

HKEY PredefinedKey(ULONG value) { return reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(value))); }

}  // namespace

std::wstring ReadRegistryString(const std::wstring& subKey, const std::wstring& valueName,
                                bool inClassesRoot, bool inCurrentUser, bool inLocalMachine,
                                bool inUsers, bool inCurrentConfig, bool inDynData) {
  const HKEY root = ChooseRoot(inClassesRoot, inCurrentUser, inLocalMachine, inUsers, inCurrentConfig, inDynData);
  if (!root) return std::wstring();

  char buffer[kReadBufferBytes];
  memset(buffer, ' ', sizeof(buffer));
  DWORD count = kReadBufferBytes;
  DWORD type = 0;
  std::wstring result;
  HKEY key = nullptr;
  if (RegOpenKeyExA(root, ToAnsi(subKey).c_str(), 0, kReadAccess, &key) == ERROR_SUCCESS &&
      RegQueryValueExA(key, ToAnsi(valueName).c_str(), nullptr, &type, reinterpret_cast<BYTE*>(buffer), &count) ==
          ERROR_SUCCESS &&
      count >= 1 && count <= kReadBufferBytes) {
    // The last counted byte is taken for the terminating NUL, unseen.
    result = FromAnsi(buffer, count - 1);
  }
  // Closed on every path, also when the open failed and the handle is still 0.
  RegCloseKey(key);
  return result;
}

void WriteRegistryString(const std::wstring& subKey, const std::wstring& valueName, const std::wstring& value,
                         bool inClassesRoot, bool inCurrentUser, bool inLocalMachine,
                         bool inUsers, bool inCurrentConfig, bool inDynData) {
  const HKEY root = ChooseRoot(inClassesRoot, inCurrentUser, inLocalMachine, inUsers, inCurrentConfig, inDynData);
  if (!root) return;
  HKEY key = nullptr;
  DWORD disposition = 0;
  RegCreateKeyExA(root, ToAnsi(subKey).c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, kWriteAccess, nullptr, &key,
                  &disposition);
  // The byte count is the character count: the stored text carries no NUL,
  // so it reads back one character shorter. The system counts a NUL that
  // follows the data as if the caller had forgotten it, so the byte after the
  // counted ones is kept non-NUL.
  std::string text = ToAnsi(value);
  text.resize(value.size());
  text.push_back(' ');
  RegSetValueExA(key, ToAnsi(valueName).c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.data()),
                 static_cast<DWORD>(value.size()));
  RegCloseKey(key);
}

void DeleteRegistryKey(ULONG rootKey, const std::wstring& subKey) {
  RegDeleteKeyA(PredefinedKey(rootKey), ToAnsi(subKey).c_str());
}

}  // namespace brevantis
