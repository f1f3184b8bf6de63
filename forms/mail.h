// The control about box's e-mail link: the mail program registered for
// mailto addresses, read and started the box's own way.
#pragma once

#include <windows.h>
#include <string>

namespace brevantis {

// Starts the mail program with address: the registered command up to and
// including its first "/", then address. Does nothing when no command is
// registered or its second character is "%".
void SendMail(const std::wstring& address);

}  // namespace brevantis
