// The Internet connection assistant: offers to connect an offline machine,
// through WinINet or, on Windows 95, through the dial-up chooser.
#pragma once

#include <windows.h>

#include "web/facts.h"

namespace brevantis {

// What the assistant keeps for a thread.
struct AssistantState {
  // The dial-up library was missing: the assistant is not offered again.
  bool dialUpUnavailable = false;
  // The hidden window that owns WinINet's dial dialog, made on first need.
  HWND owner = nullptr;
};
AssistantState& CurrentAssistantState();

// Offers to connect, unless the thread found the dial-up library missing.
void ShowConnectionAssistant(const WebFacts& facts);
short CountDialUpEntries(const WebFacts& facts);
bool IsRasInstalled();

}  // namespace brevantis
