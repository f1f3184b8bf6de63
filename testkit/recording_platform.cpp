#include "testkit/recording_platform.h"

#include <cstring>

#include "com/text.h"

namespace brevantis::testing {
namespace {
constexpr DWORD kRasRecordBytes = 264;
constexpr DWORD kErrorBufferTooSmall = 603;
}  // namespace

void RecordingPlatform::Note(Call kind, const wchar_t* name) {
  if (!(expected & kind)) unexpected.push_back(name);
}

int RecordingPlatform::ShowMessage(HWND owner, const std::wstring& text, const std::wstring& caption, UINT style) {
  Note(kMessage, L"ShowMessage");
  messages.push_back({owner, text, caption, style});
  if (answers.empty()) return IDOK;
  const int answer = answers.front();
  answers.pop_front();
  return answer;
}

bool RecordingPlatform::StartProcess(const std::wstring& commandLine, int showCommand) {
  Note(kProcess, L"StartProcess");
  processes.push_back({commandLine, showCommand});
  return processStarts;
}

bool RecordingPlatform::PlaySoundFile(const std::wstring& path, UINT flags) {
  Note(kSound, L"PlaySoundFile");
  sounds.push_back({path, flags});
  return true;
}

DWORD RecordingPlatform::SendMciCommand(const std::wstring& command) {
  Note(kMci, L"SendMciCommand");
  mciCommands.push_back(command);
  return 0;
}

bool RecordingPlatform::GetInternetConnectedState(DWORD* flags) {
  Note(kConnectedState, L"GetInternetConnectedState");
  ++connectedStateCalls;
  *flags = connectedFlags;
  return connected;
}

DWORD RecordingPlatform::DialInternet(HWND parent, const std::wstring& connection, DWORD flags,
                                      DWORD_PTR* connection_out) {
  Note(kDial, L"DialInternet");
  dials.push_back({parent, connection, flags});
  if (connection_out) *connection_out = 0;
  return ERROR_SUCCESS;
}

bool RecordingPlatform::EnumDialUpEntries(void* buffer, DWORD* bufferSize, DWORD* entries, DWORD* result) {
  Note(kDialUpList, L"EnumDialUpEntries");
  if (!rasLibraryLoads) return false;
  const DWORD needed = static_cast<DWORD>(dialUpEntries.size()) * kRasRecordBytes;
  if (needed > *bufferSize) {
    *bufferSize = needed;
    *entries = 0;
    *result = kErrorBufferTooSmall;
    return true;
  }
  auto* bytes = static_cast<unsigned char*>(buffer);
  for (size_t i = 0; i < dialUpEntries.size(); ++i) {
    unsigned char* record = bytes + i * kRasRecordBytes;
    std::memcpy(record, &kRasRecordBytes, sizeof(DWORD));
    const std::string name = ToAnsi(dialUpEntries[i]);
    const size_t room = kRasRecordBytes - sizeof(DWORD) - 1;
    const size_t length = name.size() < room ? name.size() : room;
    std::memcpy(record + sizeof(DWORD), name.data(), length);
    record[sizeof(DWORD) + length] = 0;
  }
  *entries = static_cast<DWORD>(dialUpEntries.size());
  *result = ERROR_SUCCESS;
  return true;
}

UINT_PTR RecordingPlatform::LookUpExecutable(const std::wstring& file, std::wstring* buffer) {
  Note(kExecutable, L"LookUpExecutable");
  executableLookups.push_back(file);
  if (executableCode > 32) {
    std::wstring written = executable;
    written.push_back(L'\0');
    buffer->replace(0, written.size() < buffer->size() ? written.size() : buffer->size(), written);
    buffer->resize(buffer->size() > written.size() ? buffer->size() : written.size());
  }
  return executableCode;
}

DWORD RecordingPlatform::ListDriveRoots(std::wstring* buffer) {
  Note(kDrives, L"ListDriveRoots");
  // As the system does: the whole list with its final NUL when it fits, else
  // only the size it would need.
  const DWORD length = static_cast<DWORD>(driveStrings.size());
  if (length + 1 > buffer->size()) return length + 1;
  buffer->replace(0, length + 1, driveStrings + L'\0');
  return length;
}

UINT RecordingPlatform::DriveKind(const std::wstring& root) {
  Note(kDrives, L"DriveKind");
  const auto found = driveTypes.find(root);
  return found == driveTypes.end() ? DRIVE_FIXED : found->second;
}

}  // namespace brevantis::testing
