// The dial-up (RAS phone-book) entries and the texts the connection
// assistant and its chooser share.
#pragma once

#include <windows.h>
#include <string>
#include <vector>

namespace brevantis {

struct DialUpEntries {
  bool libraryLoaded = false;       // false: the dial-up library is missing
  std::vector<std::wstring> names;  // in phone-book order, each cut before its first NUL
};

// Reads the entries through RasEnumEntriesA into 256 records of 264 bytes.
DialUpEntries EnumerateDialUpEntries();

// The caption of the assistant's message boxes; it carries ProgramName.
std::wstring AssistantCaption(const std::wstring& programName);

// "Attenzione! ..." with the exclamation icon: the machine cannot dial.
void WarnNotConfigured(const std::wstring& programName);

}  // namespace brevantis
