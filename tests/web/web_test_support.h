// Scratch folders, probe settings and files for the tests of the web services, control, forms and bad input.
#pragma once

#include <windows.h>

#include <string>

namespace brevantis::testing {

// A new, empty folder under the temporary folder, removed with its contents at the end of the scope.
struct ScratchFolder {
  ScratchFolder();
  ~ScratchFolder();
  const std::wstring& Path() const { return path_; }
  std::wstring path_;
};

struct ProbeSettings {  // points the reachability probe at url for the life of the scope
  explicit ProbeSettings(const std::wstring& url);
  ~ProbeSettings();
};

void WriteTextFile(const std::wstring& path, const std::string& text);

}  // namespace brevantis::testing
