// The platform interface on real Win32.
#include <windows.h>
#include <mmsystem.h>
#include <shellapi.h>
#include <wininet.h>

#include "com/raii.h"
#include "com/text.h"
#include "platform/platform.h"

namespace brevantis {
namespace {

using RasEnumEntriesAFn = DWORD(WINAPI*)(LPCSTR, LPCSTR, void*, LPDWORD, LPDWORD);

class Win32 final : public Platform {
 public:
  int ShowMessage(HWND owner, const std::wstring& text, const std::wstring& caption, UINT style) override {
    return MessageBoxA(owner, ToAnsi(text).c_str(), ToAnsi(caption).c_str(), style);
  }

  bool StartProcess(const std::wstring& commandLine, int showCommand) override {
    std::string line = ToAnsi(commandLine);
    line.push_back('\0');
    STARTUPINFOA startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = static_cast<WORD>(showCommand);
    PROCESS_INFORMATION process = {};
    if (!CreateProcessA(nullptr, &line[0], nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
      return false;
    KernelHandle thread(process.hThread), handle(process.hProcess);
    return true;
  }

  bool PlaySoundFile(const std::wstring& path, UINT flags) override {
    return sndPlaySoundA(ToAnsi(path).c_str(), flags) != FALSE;
  }

  DWORD SendMciCommand(const std::wstring& command) override {
    return mciSendStringA(ToAnsi(command).c_str(), nullptr, 0, nullptr);
  }

  bool GetInternetConnectedState(DWORD* flags) override {
    return InternetGetConnectedState(flags, 0) != FALSE;
  }

  DWORD DialInternet(HWND parent, const std::wstring& connection, DWORD flags, DWORD_PTR* connection_out) override {
    std::string name = ToAnsi(connection);
    name.push_back('\0');
    return InternetDialA(parent, &name[0], flags, connection_out, 0);
  }

  bool EnumDialUpEntries(void* buffer, DWORD* bufferSize, DWORD* entries, DWORD* result) override {
    // From the system folder only: never a planted copy beside the host or in
    // the current folder. Systems without the flag take the full path alone.
    char system[MAX_PATH] = {};
    const UINT length = GetSystemDirectoryA(system, MAX_PATH - 16);
    if (length == 0 || length >= MAX_PATH - 16) return false;
    const std::string path = std::string(system, length) + "\\rasapi32.dll";
    LoadedLibrary ras(LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
    if (!ras && GetLastError() == ERROR_INVALID_PARAMETER) ras.Reset(LoadLibraryA(path.c_str()));
    if (!ras) return false;
    auto enumEntries = reinterpret_cast<RasEnumEntriesAFn>(
        reinterpret_cast<void*>(GetProcAddress(ras.Get(), "RasEnumEntriesA")));
    if (!enumEntries) return false;
    *result = enumEntries(nullptr, nullptr, buffer, bufferSize, entries);
    return true;
  }

  UINT_PTR LookUpExecutable(const std::wstring& file, std::wstring* buffer) override {
    std::string bytes = ToAnsi(*buffer);
    bytes.resize(buffer->size() < MAX_PATH ? MAX_PATH : buffer->size(), ' ');  // the shell may write MAX_PATH
    const UINT_PTR code = reinterpret_cast<UINT_PTR>(FindExecutableA(ToAnsi(file).c_str(), nullptr, &bytes[0]));
    *buffer = FromAnsi(bytes.data(), buffer->size());
    return code;
  }

  DWORD ListDriveRoots(std::wstring* buffer) override {
    std::string bytes(buffer->size() + 1, ' ');
    const DWORD n = GetLogicalDriveStringsA(static_cast<DWORD>(buffer->size()), &bytes[0]);
    *buffer = FromAnsi(bytes.data(), buffer->size());
    return n;
  }

  UINT DriveKind(const std::wstring& root) override { return GetDriveTypeA(ToAnsi(root).c_str()); }
};

}  // namespace

Platform& Win32Platform() {
  static Win32 platform;
  return platform;
}

}  // namespace brevantis
