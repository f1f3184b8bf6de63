// The demo's default browser: fetches the address it is started with and
// notes the page's title in %TEMP%\brevantis-demo-browser.log, where the demo
// host reads it. (The demo's Wine prefix has no browser of its own.)
#include <windows.h>
#include <wininet.h>

#include <string>

namespace {

std::string Fetch(const char* url) {
  std::string page;
  HINTERNET session = InternetOpenA("Brevantis demo browser", INTERNET_OPEN_TYPE_DIRECT, nullptr, nullptr, 0);
  if (!session) return page;
  DWORD timeout = 5000;
  InternetSetOptionA(session, INTERNET_OPTION_RECEIVE_TIMEOUT, &timeout, sizeof(timeout));
  if (HINTERNET request = InternetOpenUrlA(session, url, nullptr, 0, INTERNET_FLAG_RELOAD, 0)) {
    char buffer[4096];
    DWORD read = 0;
    while (page.size() < 65536 && InternetReadFile(request, buffer, sizeof(buffer), &read) && read)
      page.append(buffer, read);
    InternetCloseHandle(request);
  }
  InternetCloseHandle(session);
  return page;
}

std::string Title(const std::string& page) {
  const size_t start = page.find("<title>");
  const size_t end = page.find("</title>");
  if (start == std::string::npos || end == std::string::npos || end < start) return "(no title)";
  return page.substr(start + 7, end - start - 7);
}

}  // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR commandLine, int) {
  const std::string url = commandLine;
  char temp[MAX_PATH] = {};
  GetTempPathA(MAX_PATH, temp);
  const std::string line = url + " -> " + Title(Fetch(url.c_str())) + "\r\n";
  HANDLE log = CreateFileA((std::string(temp) + "brevantis-demo-browser.log").c_str(), FILE_APPEND_DATA, 0, nullptr,
                           OPEN_ALWAYS, 0, nullptr);
  if (log == INVALID_HANDLE_VALUE) return 1;
  DWORD written = 0;
  WriteFile(log, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
  CloseHandle(log);
  return 0;
}
