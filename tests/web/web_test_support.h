// What the web and CD tests set up on the real system of their prefix: scratch
// folders, the .htm association, the probe's settings, the fake browser.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace brevantis::testing {

// A new, empty folder under the temporary folder, removed with its contents
// at the end of the scope.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  const std::wstring& Path() const { return path_; }

 private:
  std::wstring path_;
};

// Registers program as the one that opens .htm files (HKCR\.htm and
// HKCR\htmlfile\shell\open\command); the end of the scope takes the .htm
// association away again and puts the old command back.
class HtmAssociation {
 public:
  explicit HtmAssociation(const std::wstring& program);
  ~HtmAssociation();
  HtmAssociation(const HtmAssociation&) = delete;
  HtmAssociation& operator=(const HtmAssociation&) = delete;

 private:
  std::wstring oldCommand_;
};

// Points the reachability probe at url for the life of the scope.
class ProbeSettings {
 public:
  explicit ProbeSettings(const std::wstring& url);
  ~ProbeSettings();
  ProbeSettings(const ProbeSettings&) = delete;
  ProbeSettings& operator=(const ProbeSettings&) = delete;
};

void MakeFolders(const std::wstring& path);
void WriteTextFile(const std::wstring& path, const std::string& text);
std::string ReadTextFile(const std::wstring& path);
bool FileExists(const std::wstring& path);
// The probe files (*.htm) a browser lookup left in folder.
size_t HtmFilesIn(const std::wstring& folder);
void DeleteTree(const std::wstring& path);

// Copies the project's fake browser to path (folders made as needed).
void InstallFakeBrowser(const std::wstring& path);
// The command lines the fake browser installed at program has received,
// waiting up to a few seconds until there are at least count of them.
std::vector<std::string> BrowserCommandLines(const std::wstring& program, size_t count = 1);

}  // namespace brevantis::testing
