// Loads the control as a saved form would and writes what it reports about
// the machine into the file named on the command line. Run by the
// environment test under different Windows versions.
#include <windows.h>
#include <cstdio>

#include "com/text.h"
#include "control/brevantis_control.h"
#include "testkit/dispatch_client.h"
#include "testkit/test_container.h"

using namespace brevantis;

int wmain(int argc, wchar_t** argv) {
  if (argc < 2 || FAILED(OleInitialize(nullptr))) return 2;
  int rc = 1;
  {
    ComPtr<IPersistPropertyBag> control;
    testing::Owned<testing::TestPropertyBag> bag;
    if (SUCCEEDED(BrevantisControl::Create(IID_IPersistPropertyBag, control.OutVoid())) &&
        SUCCEEDED(control->Load(bag.As<IPropertyBag>(), nullptr))) {
      ComPtr<IDispatch> dispatch;
      control->QueryInterface(IID_IDispatch, dispatch.OutVoid());
      DispatchClient client(dispatch.Get());
      const std::wstring report = L"IsWindowsNT=" + client.GetString(L"IsWindowsNT") + L"\nOSName=" +
                                  client.GetString(L"OSName") + L"\n";
      if (FILE* out = _wfopen(argv[1], L"wb")) {
        const std::string bytes = ToAnsi(report);
        fwrite(bytes.data(), 1, bytes.size(), out);
        fclose(out);
        rc = 0;
      }
    }
  }
  OleUninitialize();
  return rc;
}
