#include "web_test_support.h"

#include <filesystem>
#include <fstream>

#include "web/reachability.h"

namespace brevantis::testing {

ScratchFolder::ScratchFolder() {
  static int counter = 0;
  std::error_code ignored;
  const std::wstring name = L"brvweb" + std::to_wstring(GetCurrentProcessId()) + L"_" + std::to_wstring(++counter);
  path_ = (std::filesystem::temp_directory_path(ignored) / name).wstring();
  std::filesystem::remove_all(path_, ignored);  // left by an earlier process of the same id
  std::filesystem::create_directory(path_, ignored);
}

ScratchFolder::~ScratchFolder() { std::error_code ignored; std::filesystem::remove_all(path_, ignored); }

ProbeSettings::ProbeSettings(const std::wstring& url) {
  RegSetKeyValueW(HKEY_CURRENT_USER, kProbeSettingsKey, kProbeUrlValue, REG_SZ, url.c_str(),
                  static_cast<DWORD>((url.size() + 1) * sizeof(wchar_t)));
}

ProbeSettings::~ProbeSettings() { RegDeleteTreeW(HKEY_CURRENT_USER, kProbeSettingsKey); }

void WriteTextFile(const std::wstring& path, const std::string& text) {
  std::ofstream(path.c_str(), std::ios::binary) << text;
}

}  // namespace brevantis::testing
