// The class as hosts meet it: created through the registered OCX, where its
// message boxes are real ones, by a C++ client and by Wine's script host.
#include "crypto_box_fixture.h"

#include "test_paths.h"
#include "testkit/message_box_watcher.h"

using namespace brevantis;
using brevantis::testing::CryptoBox;
using brevantis::testing::EveryByteValue;
using brevantis::testing::MessageBoxWatcher;

namespace {

using Texts = std::vector<std::wstring>;

class CryptoClients : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr))); }
  void TearDown() override { CoUninitialize(); }
};

TEST_F(CryptoClients, AComClientSeesTheSetUpMessageAndUsesEveryMethod) {
  MessageBoxWatcher watcher(L"Brevantis");
  ComPtr<_clsCryptoFilterBox> object;
  ASSERT_EQ(S_OK, CoCreateInstance(CLSID_clsCryptoFilterBox, nullptr, CLSCTX_INPROC_SERVER, IID__clsCryptoFilterBox,
                                   object.OutVoid()));
  const Texts setUp = watcher.Texts();
  ASSERT_FALSE(setUp.empty());
  EXPECT_EQ(L"InitUser OK", setUp.back());  // earlier ones only if the container was new

  CryptoBox box(object);
  box.SetInBuffer(L"Contratto \u00e8 firmato");
  ASSERT_EQ(S_OK, box->Sign());
  ASSERT_EQ(S_OK, box->Validate());
  EXPECT_EQ(2, box.Status());
  box.SetPassword(L"segreto");
  const std::wstring text = EveryByteValue();
  EXPECT_EQ(text, box.Decrypt(box.Encrypt(text)));
  EXPECT_EQ(setUp, watcher.Texts());
}

std::string ReadFileBytes(const std::wstring& path) {
  FileHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                              0, nullptr));
  std::string bytes(1 << 16, '\0');
  DWORD read = 0;
  if (file) ReadFile(file.Get(), &bytes[0], static_cast<DWORD>(bytes.size()), &read, nullptr);
  bytes.resize(read);
  return bytes;
}

// cscript with its output in a file; the watcher answers its message boxes.
std::string RunScript(const std::wstring& script, MessageBoxWatcher* watcher) {
  wchar_t dir[MAX_PATH] = {};
  GetTempPathW(MAX_PATH, dir);
  const std::wstring outputPath = std::wstring(dir) + L"crypto_script_output.txt";
  SECURITY_ATTRIBUTES inherit = {sizeof(inherit), nullptr, TRUE};
  FileHandle output(CreateFileW(outputPath.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherit, CREATE_ALWAYS, 0,
                                nullptr));
  EXPECT_TRUE(output);
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = startup.hStdError = output.Get();
  std::wstring line = L"cscript.exe //nologo \"" + script + L"\"";
  PROCESS_INFORMATION process = {};
  if (!CreateProcessW(nullptr, &line[0], nullptr, nullptr, TRUE, CREATE_SUSPENDED, nullptr, nullptr, &startup,
                      &process)) {
    ADD_FAILURE() << "cscript does not start: " << GetLastError();
    return std::string();
  }
  KernelHandle thread(process.hThread), handle(process.hProcess);
  watcher->SetProcess(process.dwProcessId);
  ResumeThread(thread.Get());
  EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(handle.Get(), 120000));
  output.Reset();
  const std::string printed = ReadFileBytes(outputPath);
  DeleteFileW(outputPath.c_str());
  return printed;
}

TEST_F(CryptoClients, AScriptSignsValidatesEncryptsAndDecrypts) {
  MessageBoxWatcher watcher(L"Brevantis", 0);
  const std::string printed = RunScript(BREVANTIS_TESTS_DIR L"\\crypto\\scripts\\crypto_filter_box.vbs", &watcher);
  EXPECT_EQ(std::string::npos, printed.find("FAIL")) << printed;
  EXPECT_NE(std::string::npos, printed.find("ALL OK")) << printed;
  const Texts texts = watcher.Texts();
  ASSERT_FALSE(texts.empty());
  EXPECT_EQ(L"InitUser OK", texts.back());
}

}  // namespace
