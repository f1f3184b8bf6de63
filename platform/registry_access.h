// RegistryAccess: the control's procedures for string values in the registry.
// The root key is chosen by six flags; the first flag that is true wins and
// with none set nothing is done. Failures are silent: a read that fails for
// any reason gives the empty string.
#pragma once

#include <windows.h>
#include <string>

namespace brevantis {

std::wstring ReadRegistryString(const std::wstring& subKey, const std::wstring& valueName,
                                bool inClassesRoot, bool inCurrentUser, bool inLocalMachine,
                                bool inUsers, bool inCurrentConfig, bool inDynData);

void WriteRegistryString(const std::wstring& subKey, const std::wstring& valueName, const std::wstring& value,
                         bool inClassesRoot, bool inCurrentUser, bool inLocalMachine,
                         bool inUsers, bool inCurrentConfig, bool inDynData);

// rootKey is a predefined handle value such as 0x80000001 (HKEY_CURRENT_USER).
void DeleteRegistryKey(ULONG rootKey, const std::wstring& subKey);

}  // namespace brevantis
