// The control's one registry reader: string values as the ANSI functions
// give them.
#pragma once

#include <windows.h>
#include <string>

namespace brevantis {

// The value name of key under root, read into bufferBytes bytes; the last
// byte the system counts is taken for the terminating NUL, unseen. The key is
// opened for query only, so a host without administrator rights reads the
// machine's keys too. "" when the key or the value is missing, longer than
// the buffer or unreadable.
std::wstring ReadRegistryText(HKEY root, const std::wstring& key, const std::wstring& name, DWORD bufferBytes = 255);

}  // namespace brevantis
