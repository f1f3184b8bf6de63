// Settings of the reachability probe: an HTTP request that only has to be
// answered. An administrator can point it at a server of the company's own
// network through a string value under HKEY_CURRENT_USER.
#pragma once

#include <windows.h>

namespace brevantis {

constexpr wchar_t kProbeSettingsKey[] = L"Software\\Ostrel\\Brevantis";
constexpr wchar_t kProbeUrlValue[] = L"ProbeUrl";

constexpr wchar_t kDefaultProbeUrl[] = L"http://www.msftconnecttest.com/connecttest.txt";

// IsInternetReachable answers within this bound, whatever the network does.
constexpr DWORD kReachabilityBoundMs = 2000;

}  // namespace brevantis
