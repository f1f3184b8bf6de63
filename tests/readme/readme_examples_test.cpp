// The README's examples, written out beside this program, print against the
// registered control what the README says they print.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "com/raii.h"
#include "testkit/message_box_watcher.h"

namespace {

// A file's text without CRs and final line ends.
std::string Printed(const std::wstring& path) {
  std::stringstream text;
  text << std::ifstream(path.c_str(), std::ios::binary).rdbuf();
  std::string result;
  for (char c : text.str()) result += c == '\r' ? "" : std::string(1, c);
  return result.erase(result.find_last_not_of('\n') + 1);
}

TEST(ReadmeExamples, EachPrintsWhatTheReadmeShows) {
  wchar_t self[MAX_PATH] = {};
  std::wstring dir(self, GetModuleFileNameW(nullptr, self, MAX_PATH));
  dir.resize(dir.rfind(L'\\') + 1);
  WIN32_FIND_DATAW found = {};
  const HANDLE search = FindFirstFileW((dir + L"examples\\*.out").c_str(), &found);
  int examples = 0;
  for (BOOL more = search != INVALID_HANDLE_VALUE; more; more = FindNextFileW(search, &found), ++examples) {
    const std::wstring name(found.cFileName, wcslen(found.cFileName) - 4), path = dir + L"examples\\" + name;
    std::wstring line = name.substr(name.rfind(L'.')) == L".cpp" ? L"\"" + dir + L"readme_cpp_example.exe\""
                                                                   : L"cscript.exe //nologo \"" + path + L"\"";
    // Its output to a file; the boxes the control shows (the crypto box's "InitUser OK") answered. A host that
    // printed nothing at all is started once more, as the Wine wrapper does: under load a start can be lost.
    std::string printed;
    DWORD exitCode = 0;
    for (int attempt = 0; attempt < 2 && printed.empty(); ++attempt) {
      SECURITY_ATTRIBUTES inherit = {sizeof(inherit), nullptr, TRUE};
      brevantis::KernelHandle output(
          CreateFileW((path + L".printed").c_str(), GENERIC_WRITE, 0, &inherit, CREATE_ALWAYS, 0, nullptr));
      STARTUPINFOW startup = {};
      startup.cb = sizeof(startup);
      startup.dwFlags = STARTF_USESTDHANDLES;
      startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
      startup.hStdOutput = startup.hStdError = output.Get();
      PROCESS_INFORMATION process = {};
      brevantis::testing::MessageBoxWatcher watcher(L"Brevantis", 0);
      ASSERT_TRUE(CreateProcessW(nullptr, &line[0], nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process));
      watcher.SetProcess(process.dwProcessId);
      brevantis::KernelHandle thread(process.hThread), handle(process.hProcess);
      WaitForSingleObject(handle.Get(), 60000);
      GetExitCodeProcess(handle.Get(), &exitCode);
      output.Reset();
      printed = Printed(path + L".printed");
    }
    EXPECT_EQ(Printed(path + L".out"), printed) << name << ", exit code " << exitCode;
  }
  FindClose(search);
  EXPECT_GE(examples, 3);  // the VBScript and C++ examples at least
}

}  // namespace
