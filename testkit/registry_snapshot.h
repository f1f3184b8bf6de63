// A registry subtree as sorted text lines, key paths and values, so two
// moments can be compared.
#pragma once

#include <windows.h>
#include <set>
#include <string>

namespace brevantis::testing {

// Every key under root\path and every value in them, as lines
// "path" and "path|name=type:data". Key names compare case-insensitively in
// the registry, so paths are folded to lower case.
std::set<std::wstring> SnapshotRegistry(HKEY root, const std::wstring& path);

}  // namespace brevantis::testing
