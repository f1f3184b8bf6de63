// Writes the registry values that registering Brevantis.ocx would write, one
// "key<TAB>name<TAB>value" line each (UTF-8, empty name for a key's default
// value), for a server file at the given path: the installer writes them
// through its own tables instead of calling the control's registration.
//   registration_rows.exe OUT.tsv SERVER_PATH
#include <windows.h>

#include <cstdio>
#include <string>

#include "com/server.h"

using namespace brevantis;

namespace {

class TsvWriter : public RegistryRowSink {
 public:
  explicit TsvWriter(FILE* out) : out_(out) {}
  void Row(const std::wstring& key, const wchar_t* name, const std::wstring& value) const override {
    std::fprintf(out_, "%s\t%s\t%s\n", Utf8(key).c_str(), Utf8(name ? name : L"").c_str(), Utf8(value).c_str());
  }

 private:
  static std::string Utf8(const std::wstring& text) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.c_str(), -1, nullptr, 0, nullptr, nullptr);
    std::string out(size > 0 ? size - 1 : 0, '\0');
    if (size > 1) WideCharToMultiByte(CP_UTF8, 0, text.c_str(), -1, &out[0], size, nullptr, nullptr);
    return out;
  }
  FILE* out_;
};

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: registration_rows OUT.tsv SERVER_PATH\n");
    return 2;
  }
  FILE* out = _wfopen(argv[1], L"wb");
  if (!out) return 1;
  const HRESULT hr = ListRegistrationRows(argv[2], TsvWriter(out));
  std::fclose(out);
  return SUCCEEDED(hr) ? 0 : 1;
}
