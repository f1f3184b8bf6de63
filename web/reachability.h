// Settings of the reachability probe: an HTTP request whose answer must be a
// known text. An administrator can point it at a server of the company's own
// network through two string values under HKEY_CURRENT_USER.
#pragma once

#include <windows.h>

namespace brevantis {

constexpr wchar_t kProbeSettingsKey[] = L"Software\\Ostrel\\Brevantis";
constexpr wchar_t kProbeUrlValue[] = L"ProbeUrl";
constexpr wchar_t kProbeExpectedTextValue[] = L"ProbeExpectedText";

constexpr wchar_t kDefaultProbeUrl[] = L"http://www.msftconnecttest.com/connecttest.txt";
constexpr wchar_t kDefaultProbeExpectedText[] = L"Microsoft Connect Test";

// IsInternetReachable answers within this bound, whatever the network does.
constexpr DWORD kReachabilityBoundMs = 2000;

}  // namespace brevantis
