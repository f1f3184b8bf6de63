// Writes the registry values that registering Brevantis.ocx would write, one
// "key<TAB>name<TAB>value" line each (UTF-8, empty name for a key's default
// value), for a server file at the given path: the installer writes them
// through its own tables instead of calling the control's registration.
//   registration_rows.exe OUT.tsv SERVER_PATH
#include <windows.h>

#include <cstdio>
#include <string>

#include "com/text.h"
#include "server/server.h"

using namespace brevantis;

int wmain(int argc, wchar_t** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: registration_rows OUT.tsv SERVER_PATH\n");
    return 2;
  }
  std::vector<RegistryRow> rows;
  if (FAILED(ListRegistrationRows(argv[2], &rows))) return 1;
  FILE* out = _wfopen(argv[1], L"wb");
  if (!out) return 1;
  for (const RegistryRow& row : rows)
    std::fprintf(out, "%s\t%s\t%s\n", ToUtf8(row.key).c_str(), ToUtf8(row.name ? row.name : L"").c_str(),
                 ToUtf8(row.value).c_str());
  std::fclose(out);
  return 0;
}
