// The examples of the README run as printed there, against the registered
// control, and print what the README says they print.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "com/raii.h"
#include "com/text.h"
#include "readme_paths.h"
#include "testkit/message_box_watcher.h"

using namespace brevantis;

namespace {

std::string FileText(const std::wstring& path) {
  std::ifstream in(path.c_str(), std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

// Lines without their endings or trailing blanks, so that CR LF and LF compare equal.
std::string Normalised(const std::string& text) {
  std::string out, line;
  std::istringstream lines(text);
  while (std::getline(lines, line)) {
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.pop_back();
    out += line + "\n";
  }
  while (out.size() > 1 && out[out.size() - 1] == '\n' && out[out.size() - 2] == '\n') out.pop_back();
  return out;
}

// Runs commandLine and returns what it printed; message boxes the control
// shows in it (the crypto box's "InitUser OK") are answered.
std::string RunAndRead(const std::wstring& commandLine) {
  SECURITY_ATTRIBUTES inherit = {sizeof(inherit), nullptr, TRUE};
  HANDLE readEnd = nullptr, writeEnd = nullptr;
  if (!CreatePipe(&readEnd, &writeEnd, &inherit, 0)) return "<no pipe>";
  KernelHandle reader(readEnd), writer(writeEnd);
  SetHandleInformation(reader.Get(), HANDLE_FLAG_INHERIT, 0);
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = writer.Get();
  startup.hStdError = writer.Get();
  startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
  PROCESS_INFORMATION process = {};
  std::wstring line = commandLine;
  brevantis::testing::MessageBoxWatcher watcher(L"Brevantis", 0);
  if (!CreateProcessW(nullptr, &line[0], nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process))
    return "<cannot start>";
  watcher.SetProcess(process.dwProcessId);
  KernelHandle thread(process.hThread), handle(process.hProcess);
  writer.Reset();  // the child holds the only write end: reading ends when it exits
  std::string output;
  char buffer[4096];
  DWORD read = 0;
  while (ReadFile(reader.Get(), buffer, sizeof(buffer), &read, nullptr) && read) output.append(buffer, read);
  WaitForSingleObject(handle.Get(), 60000);
  return output;
}

std::vector<std::wstring> Examples() {
  std::vector<std::wstring> names;
  std::istringstream stamp(FileText(std::wstring(README_EXAMPLES_DIR) + L"\\stamp"));
  std::string name;
  while (std::getline(stamp, name))
    if (!name.empty()) names.push_back(FromAnsi(name));
  return names;
}

TEST(ReadmeExamples, EachPrintsWhatTheReadmeShows) {
  const std::vector<std::wstring> examples = Examples();
  ASSERT_GE(examples.size(), 3u);  // the VBScript and C++ examples at least
  for (const std::wstring& name : examples) {
    SCOPED_TRACE(ToAnsi(name));
    const std::wstring path = std::wstring(README_EXAMPLES_DIR) + L"\\" + name;
    const std::string expected = FileText(path + L".out");
    ASSERT_FALSE(expected.empty()) << "every example shows its output";
    std::wstring command;
    if (name.size() > 4 && (name.substr(name.size() - 4) == L".vbs" || name.substr(name.size() - 3) == L".js"))
      command = L"cscript.exe //nologo \"" + path + L"\"";
    else
      command = L"\"" + std::wstring(README_CPP_EXAMPLE_EXE) + L"\"";
    EXPECT_EQ(Normalised(expected), Normalised(RunAndRead(command)));
  }
}

}  // namespace
