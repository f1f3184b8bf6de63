#include "web/dial_up.h"

#include <cstring>

#include "com/text.h"
#include "platform/platform.h"

namespace brevantis {
namespace {

// Records as RASENTRYNAMEA was laid out for Windows 95: a size field and the
// name, NUL-terminated, in the rest of the record.
constexpr DWORD kRecordBytes = 264;
constexpr DWORD kRecordCount = 256;
constexpr DWORD kNameOffset = sizeof(DWORD);

}  // namespace

DialUpEntries EnumerateDialUpEntries() {
  std::vector<unsigned char> buffer(kRecordBytes * kRecordCount);
  const DWORD recordSize = kRecordBytes;
  std::memcpy(buffer.data(), &recordSize, sizeof(recordSize));
  DWORD bufferSize = recordSize * kRecordCount;
  DWORD count = 0;
  DWORD result = 0;  // not inspected: the count says what was written
  DialUpEntries entries;
  entries.libraryLoaded = CurrentPlatform().EnumDialUpEntries(buffer.data(), &bufferSize, &count, &result);
  if (!entries.libraryLoaded) return entries;
  if (count > kRecordCount) count = kRecordCount;  // the buffer holds no more
  for (DWORD i = 0; i < count; ++i) {
    const char* name = reinterpret_cast<const char*>(buffer.data() + i * kRecordBytes + kNameOffset);
    std::wstring text = FromAnsi(name, kRecordBytes - kNameOffset);
    text.resize(text.find(L'\0') == std::wstring::npos ? text.size() : text.find(L'\0'));
    entries.names.push_back(std::move(text));
  }
  return entries;
}

std::wstring AssistantCaption(const std::wstring& programName) {
  return programName.empty() ? L"Connessione ad Internet" : programName + L" - Connessione ad Internet";
}

void WarnNotConfigured(const std::wstring& programName) {
  CurrentPlatform().ShowMessage(GetActiveWindow(),
                                L"Attenzione! Questo computer non è configurato per potere accedere ad Internet.",
                                AssistantCaption(programName), MB_OK | MB_ICONEXCLAMATION);
}

}  // namespace brevantis
