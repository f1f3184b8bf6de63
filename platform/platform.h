// The small platform interface: every Win32 call of the control that the user
// sees or that leaves the process goes through it, so tests can put a
// recording fake in its place. Text is passed as UTF-16; the Win32 adapter
// calls the ANSI functions with the system code page.
#pragma once

#include <windows.h>
#include <string>

namespace brevantis {

class Platform {
 public:
  virtual ~Platform() = default;

  // MessageBoxA; returns the button pressed (IDOK, IDYES, IDNO...).
  virtual int ShowMessage(HWND owner, const std::wstring& text, const std::wstring& caption, UINT style) = 0;
  // Starts a command line without waiting for it, with the given show command
  // (1 = normal window with the focus); false when it could not be started.
  virtual bool StartProcess(const std::wstring& commandLine, int showCommand) = 0;
  // sndPlaySoundA.
  virtual bool PlaySoundFile(const std::wstring& path, UINT flags) = 0;
  // mciSendStringA with no return buffer and no callback window.
  virtual DWORD SendMciCommand(const std::wstring& command) = 0;
  // InternetGetConnectedState; flags receives the connection flags.
  virtual bool GetInternetConnectedState(DWORD* flags) = 0;
  // InternetDialA with the parent window, the connection name and flags.
  virtual DWORD DialInternet(HWND parent, const std::wstring& connection, DWORD flags, DWORD_PTR* connection_out) = 0;
  // RasEnumEntriesA from rasapi32, loaded at run time. Returns false when the
  // library or the function cannot be loaded; otherwise result receives the
  // call's return code. buffer holds records as RASENTRYNAMEA lays them out.
  virtual bool EnumDialUpEntries(void* buffer, DWORD* bufferSize, DWORD* entries, DWORD* result) = 0;
  // FindExecutableA with no directory. buffer comes in as the result buffer
  // (its length is the buffer's size) and goes out as all of its bytes,
  // converted back, including what follows the terminating NUL.
  virtual UINT_PTR LookUpExecutable(const std::wstring& file, std::wstring* buffer) = 0;
  // GetLogicalDriveStringsA into a buffer of buffer->size() characters, which
  // comes back converted whole; returns the call's result.
  virtual DWORD ListDriveRoots(std::wstring* buffer) = 0;
  // GetDriveTypeA.
  virtual UINT DriveKind(const std::wstring& root) = 0;
};

// The platform in use: the Win32 one unless a test has set another.
Platform& CurrentPlatform();
// Puts platform in place of the Win32 one; nullptr puts the Win32 one back.
void SetPlatform(Platform* platform);

Platform& Win32Platform();

}  // namespace brevantis
