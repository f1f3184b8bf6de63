// A strict fake platform: it records every call and answers from a script,
// for tests of what the control would show, start, play or dial. A test names
// the kinds of call it expects; any other call is listed in `unexpected`,
// which the test's fixture checks is empty.
#pragma once

#include <deque>
#include <map>
#include <string>
#include <vector>

#include "platform/platform.h"

namespace brevantis::testing {

class RecordingPlatform : public Platform {
 public:
  enum Call : unsigned {
    kMessage = 1, kProcess = 2, kSound = 4, kMci = 8, kConnectedState = 16, kDial = 32,
    kDialUpList = 64, kExecutable = 128, kDrives = 256, kAnyCall = 511
  };
  explicit RecordingPlatform(unsigned expectedCalls = 0) : expected(expectedCalls) {}

  unsigned expected;                   // the kinds of call the test expects
  std::vector<std::wstring> unexpected;  // every other call, by name
  struct Message {
    HWND owner;
    std::wstring text;
    std::wstring caption;
    UINT style;
  };
  struct Process {
    std::wstring commandLine;
    int showCommand;
  };
  struct Sound {
    std::wstring path;
    UINT flags;
  };
  struct Dial {
    HWND parent;
    std::wstring connection;
    DWORD flags;
  };

  // What was asked of the platform, in order of calls.
  std::vector<Message> messages;
  std::vector<Process> processes;
  std::vector<Sound> sounds;
  std::vector<std::wstring> mciCommands;
  std::vector<Dial> dials;
  std::vector<std::wstring> executableLookups;
  int connectedStateCalls = 0;

  // The answers. Message boxes answer from the queue, then with OK.
  std::deque<int> answers;
  bool processStarts = true;
  bool connected = true;
  DWORD connectedFlags = 0x12;
  bool rasLibraryLoads = true;
  std::vector<std::wstring> dialUpEntries;
  UINT_PTR executableCode = 33;
  std::wstring executable;      // written NUL-terminated into the caller's buffer
  std::wstring driveStrings;    // the list as the system fills it: L"C:\\" L"\0" ... L"\0"
  std::map<std::wstring, UINT> driveTypes;  // by root; others are DRIVE_FIXED

  int ShowMessage(HWND owner, const std::wstring& text, const std::wstring& caption, UINT style) override;
  bool StartProcess(const std::wstring& commandLine, int showCommand) override;
  bool PlaySoundFile(const std::wstring& path, UINT flags) override;
  DWORD SendMciCommand(const std::wstring& command) override;
  bool GetInternetConnectedState(DWORD* flags) override;
  DWORD DialInternet(HWND parent, const std::wstring& connection, DWORD flags, DWORD_PTR* connection_out) override;
  bool EnumDialUpEntries(void* buffer, DWORD* bufferSize, DWORD* entries, DWORD* result) override;
  UINT_PTR LookUpExecutable(const std::wstring& file, std::wstring* buffer) override;
  DWORD ListDriveRoots(std::wstring* buffer) override;
  UINT DriveKind(const std::wstring& root) override;

 private:
  void Note(Call kind, const wchar_t* name);
};

// Puts a platform in place for the life of a scope.
class ScopedPlatform {
 public:
  explicit ScopedPlatform(Platform* platform) { SetPlatform(platform); }
  ~ScopedPlatform() { SetPlatform(nullptr); }
  ScopedPlatform(const ScopedPlatform&) = delete;
  ScopedPlatform& operator=(const ScopedPlatform&) = delete;
};

}  // namespace brevantis::testing
