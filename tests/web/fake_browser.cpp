// A stand-in for the default browser: appends its command line, as it
// received it, to command_lines.txt beside itself, one line per start.
#include <windows.h>

#include <string>

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  char self[MAX_PATH] = {};
  const DWORD length = GetModuleFileNameA(nullptr, self, MAX_PATH);
  std::string log(self, length);
  log.resize(log.find_last_of('\\') + 1);
  log += "command_lines.txt";
  HANDLE file = CreateFileA(log.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                            FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return 1;
  const std::string line = std::string(GetCommandLineA()) + "\r\n";
  DWORD written = 0;
  WriteFile(file, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
  CloseHandle(file);
  return 0;
}
