// Finds the default browser by asking the shell which program opens a probe
// HTML file, and opens addresses in it.
#include "web/browser.h"

#include <atomic>

#include "com/failure.h"
#include "com/raii.h"
#include "com/text.h"
#include "platform/platform.h"
#include "platform/ui.h"
#include "web/connection_assistant.h"
#include "web/file_error.h"

namespace brevantis {
namespace {

constexpr size_t kBrowserBufferLength = 255;
// One quoted line, as a sequential file writes it. The closing tag keeps its
// backslash: the file exists only for its extension and is never shown.
constexpr char kProbeContents[] = "\"<HTML> <\\HTML>\"\r\n";

// The temporary folder the control learnt when loaded, else the system's.
std::wstring TemporaryFolder(std::wstring folder) {
  if (!folder.empty()) return folder;
  wchar_t path[MAX_PATH + 1] = {};
  const DWORD length = GetTempPathW(MAX_PATH + 1, path);
  folder.assign(path, length <= MAX_PATH ? length : 0);
  if (!folder.empty() && folder.back() == L'\\') folder.pop_back();
  return folder;
}

// The probe file of one lookup: a new file of a name of its own, so that no
// file of the user's is ever truncated or deleted. It is deleted explicitly
// as the lookup's last action; the destructor only cleans up after an
// unexpected exit.
class ProbeFile {
 public:
  ProbeFile() = default;
  ProbeFile(const ProbeFile&) = delete;
  ProbeFile& operator=(const ProbeFile&) = delete;
  ~ProbeFile() {
    if (exists_) DeleteFileA(path_.c_str());
  }

  const std::string& Path() const { return path_; }

  // Creates the file under a name nothing has yet and writes the quoted line.
  HRESULT Write(const std::wstring& folder) {
    static std::atomic<unsigned> serial{0};
    FileHandle file;
    for (int attempt = 0; !file; ++attempt) {
      wchar_t name[64];
      wsprintfW(name, L"\\Brevantis-%lx-%x.htm", GetCurrentProcessId(), serial++);
      path_ = ToAnsi(folder + name);
      file.Reset(CreateFileA(path_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
      const DWORD error = GetLastError();
      if (!file && (error != ERROR_FILE_EXISTS || attempt == 100)) return RaiseFileError(error);
    }
    exists_ = true;
    DWORD written = 0;
    const DWORD size = sizeof(kProbeContents) - 1;
    if (!WriteFile(file.Get(), kProbeContents, size, &written, nullptr) || written != size) {
      const DWORD error = GetLastError();
      file.Reset();
      Delete();
      return RaiseFileError(error);
    }
    return S_OK;
  }

  HRESULT Delete() {
    exists_ = false;
    if (!DeleteFileA(path_.c_str())) return RaiseFileError(GetLastError());
    return S_OK;
  }

 private:
  std::string path_;
  bool exists_ = false;
};

// The executable's path in what FindExecutableA left in the buffer: cut after
// the first "exe" (found case-insensitively, or after two characters when
// there is none), spaces trimmed; "" unless the shell's code is above 32.
std::wstring BrowserPathFromBuffer(const std::wstring& buffer, UINT_PTR code) {
  const size_t exe = LowerCase(buffer).find(L"exe");
  const size_t keep = exe == std::wstring::npos ? 2 : exe + 3;
  std::wstring path = TrimSpaces(buffer.substr(0, keep));
  if (path.empty() || code <= 32) return std::wstring();
  return path;
}

}  // namespace

HRESULT FindDefaultBrowser(const std::wstring& tempFolder, std::wstring* browser) {
  if (!browser) return E_POINTER;
  browser->clear();
  return Guarded([&] {
    ProbeFile probe;
    RETURN_IF_FAILED(probe.Write(TemporaryFolder(tempFolder)));
    std::wstring buffer(kBrowserBufferLength, L' ');
    const UINT_PTR code = CurrentPlatform().LookUpExecutable(FromAnsi(probe.Path()), &buffer);
    std::wstring found = BrowserPathFromBuffer(buffer, code);
    RETURN_IF_FAILED(probe.Delete());
    *browser = std::move(found);
    return S_OK;
  });
}

HRESULT OpenUrlInBrowser(const std::wstring& url, const WebFacts& facts, bool* opened) {
  if (!opened) return E_POINTER;
  *opened = false;
  return Guarded([&] {
    // An address is data: one that a browser would read as an option is
    // not opened at all.
    const size_t first = url.find_first_not_of(L' ');
    if (first != std::wstring::npos && (url[first] == L'-' || url[first] == L'/')) return S_OK;
    if (!IsInternetReachable()) {
      // The host's pending messages run once before the assistant shows.
      RunPendingMessages();
      // The address is not opened afterwards even when a connection is made:
      // the user asks again.
      ShowConnectionAssistant(facts);
      return S_OK;
    }
    std::wstring browser;
    RETURN_IF_FAILED(FindDefaultBrowser(facts.tempFolder, &browser));
    if (browser.empty()) return S_OK;
    // A browser that the system cannot start has not opened the page either.
    *opened = CurrentPlatform().StartProcess(BrowserCommandLine(browser, AddressArgument(url)), SW_SHOWNORMAL);
    return S_OK;
  });
}

std::wstring WebConnectAddress(const std::wstring& argument, const std::wstring& webSite) {
  std::wstring address = TrimSpaces(argument);
  return address.empty() ? webSite : address;
}

std::wstring AddressArgument(const std::wstring& url) {
  // Blanks around the address only separate it from the path: kept as they are.
  const size_t first = url.find_first_not_of(L' ');
  if (first == std::wstring::npos) return url;
  const size_t end = url.find_last_not_of(L' ') + 1;
  std::wstring argument = url.substr(0, first);
  for (size_t i = first; i < end; ++i) {
    const wchar_t c = url[i];
    char ansi[8];
    BOOL inexact = FALSE;
    const bool pair = IS_HIGH_SURROGATE(c) && i + 1 < url.size() && IS_LOW_SURROGATE(url[i + 1]);
    if (!pair && c > L' ' && c != L'"' &&
        WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, &c, 1, ansi, sizeof(ansi), nullptr, &inexact) > 0 &&
        !inexact) {
      argument += c;
      continue;
    }
    char utf8[8];
    const int length = WideCharToMultiByte(CP_UTF8, 0, &url[i], pair ? 2 : 1, utf8, sizeof(utf8), nullptr, nullptr);
    for (int b = 0; b < length; ++b) {
      wchar_t escaped[4];
      wsprintfW(escaped, L"%%%02X", static_cast<unsigned char>(utf8[b]));
      argument += escaped;
    }
    if (pair) ++i;
  }
  return argument + url.substr(end);
}

std::wstring BrowserCommandLine(const std::wstring& browser, const std::wstring& argument) {
  // Deliberately quoted when the path holds a space: unquoted, CreateProcess
  // would try "C:\Program.exe" and the like first and could start another
  // program. A path without spaces stays bare.
  const bool quote = browser.find(L' ') != std::wstring::npos;
  return (quote ? L"\"" + browser + L"\"" : browser) + L" " + argument;
}

}  // namespace brevantis
