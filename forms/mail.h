// The control about box's e-mail link: the mail program registered for
// mailto addresses, read and started the box's own way.
#pragma once

#include <windows.h>
#include <string>

namespace brevantis {

// A string value read with access mask 0xF0063 into 256 characters; "" when
// the key or value is missing, longer or unreadable.
std::wstring ReadRegistryValue(HKEY root, const std::wstring& keyPath, const std::wstring& valueName);

// Starts the mail program with address: the registered command up to and
// including its first "/", then address. Does nothing when no command is
// registered or its second character is "%".
void SendMail(const std::wstring& address);

}  // namespace brevantis
