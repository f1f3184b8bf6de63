#include "web_test_support.h"

#include "com/raii.h"
#include "web/reachability.h"
#include "web_test_paths.h"

namespace brevantis::testing {

ScratchFolder::ScratchFolder() {
  wchar_t temp[MAX_PATH] = {};
  GetTempPathW(MAX_PATH, temp);
  static int counter = 0;
  path_ = std::wstring(temp) + L"brvweb" + std::to_wstring(GetCurrentProcessId()) + L"_" + std::to_wstring(++counter);
  DeleteTree(path_);
  MakeFolders(path_);
}

ScratchFolder::~ScratchFolder() { DeleteTree(path_); }

HtmAssociation::HtmAssociation(const std::wstring& program) {
  wchar_t old[1024] = {};
  LONG size = sizeof(old);
  if (RegQueryValueW(HKEY_CLASSES_ROOT, L"htmlfile\\shell\\open\\command", old, &size) == ERROR_SUCCESS) oldCommand_ = old;
  const std::wstring command = L"\"" + program + L"\" \"%1\"";
  RegSetValueW(HKEY_CLASSES_ROOT, L".htm", REG_SZ, L"htmlfile", 0);
  RegSetValueW(HKEY_CLASSES_ROOT, L"htmlfile\\shell\\open\\command", REG_SZ, command.c_str(), 0);
}

HtmAssociation::~HtmAssociation() {
  RegDeleteTreeW(HKEY_CLASSES_ROOT, L".htm");
  RegSetValueW(HKEY_CLASSES_ROOT, L"htmlfile\\shell\\open\\command", REG_SZ, oldCommand_.c_str(), 0);
}

ProbeSettings::ProbeSettings(const std::wstring& url) {
  RegSetKeyValueW(HKEY_CURRENT_USER, kProbeSettingsKey, kProbeUrlValue, REG_SZ, url.c_str(),
                  static_cast<DWORD>((url.size() + 1) * sizeof(wchar_t)));
}

ProbeSettings::~ProbeSettings() { RegDeleteTreeW(HKEY_CURRENT_USER, kProbeSettingsKey); }

void MakeFolders(const std::wstring& path) {
  for (size_t slash = path.find(L'\\', 3); slash != std::wstring::npos; slash = path.find(L'\\', slash + 1))
    CreateDirectoryW(path.substr(0, slash).c_str(), nullptr);
  CreateDirectoryW(path.c_str(), nullptr);
}

void WriteTextFile(const std::wstring& path, const std::string& text) {
  FileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  DWORD written = 0;
  if (file) WriteFile(file.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

std::string ReadTextFile(const std::wstring& path) {
  FileHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
  std::string text(4096, '\0');
  DWORD read = 0;
  if (file) ReadFile(file.Get(), &text[0], static_cast<DWORD>(text.size()), &read, nullptr);
  text.resize(read);
  return text;
}

bool FileExists(const std::wstring& path) { return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

size_t HtmFilesIn(const std::wstring& folder) {
  size_t count = 0;
  WIN32_FIND_DATAW found;
  const HANDLE search = FindFirstFileW((folder + L"\\*.htm").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return 0;
  do ++count;
  while (FindNextFileW(search, &found));
  FindClose(search);
  return count;
}

void DeleteTree(const std::wstring& path) {
  WIN32_FIND_DATAW found;
  const HANDLE search = FindFirstFileW((path + L"\\*").c_str(), &found);
  if (search != INVALID_HANDLE_VALUE) {
    do {
      const std::wstring name = found.cFileName;
      if (name == L"." || name == L"..") continue;
      const std::wstring child = path + L"\\" + name;
      SetFileAttributesW(child.c_str(), FILE_ATTRIBUTE_NORMAL);
      if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) DeleteTree(child);
      else DeleteFileW(child.c_str());
    } while (FindNextFileW(search, &found));
    FindClose(search);
  }
  RemoveDirectoryW(path.c_str());
}

void InstallFakeBrowser(const std::wstring& path) {
  MakeFolders(path.substr(0, path.find_last_of(L'\\')));
  CopyFileW(FAKE_BROWSER_PATH, path.c_str(), FALSE);
}

std::vector<std::string> BrowserCommandLines(const std::wstring& program, size_t count) {
  const std::wstring log = program.substr(0, program.find_last_of(L'\\') + 1) + L"command_lines.txt";
  std::vector<std::string> lines;
  for (int attempt = 0; attempt < 200 && lines.size() < count; ++attempt) {
    if (attempt) Sleep(50);
    FileHandle file(CreateFileW(log.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                0, nullptr));
    if (!file) continue;
    std::string text(GetFileSize(file.Get(), nullptr), '\0');
    DWORD read = 0;
    ReadFile(file.Get(), &text[0], static_cast<DWORD>(text.size()), &read, nullptr);
    lines.clear();
    for (size_t start = 0, end; (end = text.find("\r\n", start)) != std::string::npos; start = end + 2)
      lines.push_back(text.substr(start, end - start));
  }
  return lines;
}

}  // namespace brevantis::testing
