// Default browser discovery and URL opening.
#pragma once

#include <windows.h>
#include <string>

namespace brevantis {

// Whether the Internet can be reached now. Never fails: any doubt is false.
bool IsInternetReachable();

// The full path of the program that opens .htm files, or "" when there is
// none. Fails (with the file error a host sees, such as path not found) only
// when the probe file cannot be written or deleted.
HRESULT FindDefaultBrowser(std::wstring* browser);

// Opens url in the default browser when the Internet is reachable; otherwise
// offers the connection assistant and opens nothing. opened tells whether
// the browser was started. Fails only as FindDefaultBrowser does.
HRESULT OpenUrlInBrowser(const std::wstring& url, bool* opened);

}  // namespace brevantis
