// Latency of IsInternetReachable against servers on 127.0.0.1 that answer,
// refuse or stay silent. Prints milliseconds; the
// bound it should stay under is kReachabilityBoundMs.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "testkit/local_http_server.h"
#include "web/browser.h"
#include "web/reachability.h"

using brevantis::testing::LocalHttpServer;

namespace {

void PointProbeAt(const std::wstring& url) {
  RegSetKeyValueW(HKEY_CURRENT_USER, brevantis::kProbeSettingsKey, brevantis::kProbeUrlValue, REG_SZ, url.c_str(),
                  static_cast<DWORD>((url.size() + 1) * sizeof(wchar_t)));
}

void Measure(const char* name, const std::wstring& url, int runs) {
  PointProbeAt(url);
  LARGE_INTEGER frequency;
  QueryPerformanceFrequency(&frequency);
  std::vector<double> ms;
  int reachable = 0;
  for (int i = 0; i < runs; ++i) {
    LARGE_INTEGER start, end;
    QueryPerformanceCounter(&start);
    reachable += brevantis::IsInternetReachable() ? 1 : 0;
    QueryPerformanceCounter(&end);
    ms.push_back(1000.0 * (end.QuadPart - start.QuadPart) / frequency.QuadPart);
  }
  std::sort(ms.begin(), ms.end());
  std::printf("%-10s runs %3d  reachable %3d  min %7.1f  median %7.1f  max %7.1f ms\n", name, runs, reachable,
              ms.front(), ms[ms.size() / 2], ms.back());
}

}  // namespace

int main() {
  std::printf("bound %lu ms\n", static_cast<unsigned long>(brevantis::kReachabilityBoundMs));
  {
    LocalHttpServer answer(LocalHttpServer::Behaviour::Answer, "Brevantis online");
    Measure("answering", answer.Url(), 50);
  }
  Measure("refused", L"http://127.0.0.1:" + std::to_wstring(LocalHttpServer::ClosedPort()) + L"/probe", 50);
  {
    LocalHttpServer silent(LocalHttpServer::Behaviour::Silent);
    Measure("silent", silent.Url(), 3);
  }
  RegDeleteTreeW(HKEY_CURRENT_USER, brevantis::kProbeSettingsKey);
  return 0;
}
