// Default browser discovery and URL opening.
#pragma once

#include <windows.h>
#include <string>

#include "web/facts.h"

namespace brevantis {

// Whether the Internet can be reached now. Never fails; false only when there
// is surely no way out, since false keeps the page from opening.
bool IsInternetReachable();

// The full path of the program that opens .htm files, or "" when there is
// none, asked with a probe file in tempFolder (the system's when ""). Fails (with the file error a host sees, such as path not found) only
// when the probe file cannot be written or deleted.
HRESULT FindDefaultBrowser(const std::wstring& tempFolder, std::wstring* browser);

// Opens url in the default browser when the Internet is reachable; otherwise
// offers the connection assistant and opens nothing. An address starting with
// "-" or "/", which a browser would read as an option, opens nothing. opened tells whether
// the browser was started. Fails only as FindDefaultBrowser does.
HRESULT OpenUrlInBrowser(const std::wstring& url, const WebFacts& facts, bool* opened);

// The address WebConnect opens for its argument: the argument without
// leading and trailing spaces, or webSite when nothing is left.
std::wstring WebConnectAddress(const std::wstring& argument, const std::wstring& webSite);

// An address as one command-line argument that cannot end or add to itself:
// blanks, control characters, quotes and whatever the ANSI code page cannot
// hold exactly (so no full-width quote turns into a quote) are
// percent-encoded as UTF-8. Blanks around it stay, and so does a well-formed
// address.
std::wstring AddressArgument(const std::wstring& url);

// The command line that starts browser with argument: the two joined by one
// space, the path quoted only when it holds a space, the argument as given.
std::wstring BrowserCommandLine(const std::wstring& browser, const std::wstring& argument);

}  // namespace brevantis
