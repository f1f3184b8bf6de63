#include "forms/mail.h"

#include "platform/platform.h"
#include "platform/registry.h"

namespace brevantis {

void SendMail(const std::wstring& address) {
  std::wstring command = ReadRegistryText(HKEY_CLASSES_ROOT, L"mailto\\shell\\open\\command", L"", 256);
  if (command.empty() || (command.size() > 1 && command[1] == L'%')) return;
  // Keeps the program and the start of its first switch (such as "/mail:%1"),
  // which the address completes. Without a "/" only the address is left,
  // which cannot start: the link then does nothing.
  const size_t slash = command.find(L'/');
  command.resize(slash == std::wstring::npos ? 0 : slash + 1);
  CurrentPlatform().StartProcess(command + address, SW_SHOWNORMAL);
}

}  // namespace brevantis
