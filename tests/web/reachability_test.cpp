// IsInternetReachable against servers of the test on 127.0.0.1: only the
// expected answer counts, and every other network behaviour is a prompt no.
#include <gtest/gtest.h>

#include "local_http_server.h"
#include "recording_platform.h"
#include "web/browser.h"
#include "web/reachability.h"
#include "web_test_support.h"

using namespace brevantis;
using namespace brevantis::testing;
using Behaviour = LocalHttpServer::Behaviour;

namespace {

const std::wstring kExpected = L"Brevantis online";

// The answer and how long it took, in milliseconds.
std::pair<bool, DWORD> TimedProbe() {
  const DWORD start = GetTickCount();
  const bool reachable = IsInternetReachable();
  return {reachable, GetTickCount() - start};
}

// Far beyond the bound only if the call waited for the network's own timeouts.
constexpr DWORD kHangMs = kReachabilityBoundMs + 1000;

TEST(Reachability, TheExpectedAnswerIsReachable) {
  LocalHttpServer server(Behaviour::Answer, "Brevantis online\r\n");
  ProbeSettings settings(server.Url(), kExpected);
  EXPECT_TRUE(IsInternetReachable());
  EXPECT_EQ(1, server.Requests());
}

TEST(Reachability, AnyOtherAnswerIsNot) {
  LocalHttpServer other(Behaviour::Answer, "Welcome to the hotel network");
  LocalHttpServer redirect(Behaviour::Redirect, "Brevantis online");
  LocalHttpServer huge(Behaviour::Huge, "Brevantis online");
  const LocalHttpServer* servers[] = {&other, &redirect, &huge};
  for (int i = 0; i < 3; ++i) {
    ProbeSettings settings(servers[i]->Url(), kExpected);
    const auto [reachable, elapsed] = TimedProbe();
    EXPECT_FALSE(reachable) << "server " << i;
    EXPECT_LT(elapsed, kHangMs) << "server " << i;
    EXPECT_EQ(1, servers[i]->Requests()) << "server " << i;  // a redirect is not followed
  }
  ProbeSettings notHttp(L"file:///C:/windows/win.ini", kExpected);
  EXPECT_FALSE(IsInternetReachable());
}

TEST(Reachability, ARefusedOrSilentServerIsAPromptNo) {
  ProbeSettings closed(L"http://127.0.0.1:" + std::to_wstring(LocalHttpServer::ClosedPort()) + L"/probe", kExpected);
  auto [reachable, elapsed] = TimedProbe();
  EXPECT_FALSE(reachable);
  EXPECT_LT(elapsed, kHangMs);

  LocalHttpServer silent(Behaviour::Silent);
  ProbeSettings settings(silent.Url(), kExpected);
  std::tie(reachable, elapsed) = TimedProbe();
  EXPECT_FALSE(reachable);
  EXPECT_LT(elapsed, kHangMs);
  EXPECT_EQ(1, silent.Requests());
}

TEST(Reachability, OfflineNoProbeIsMade) {
  LocalHttpServer server(Behaviour::Answer, "Brevantis online");
  ProbeSettings settings(server.Url(), kExpected);
  RecordingPlatform platform;
  ScopedPlatform scope(&platform);
  platform.connected = false;
  EXPECT_FALSE(IsInternetReachable());
  EXPECT_EQ(1, platform.connectedStateCalls);
  EXPECT_EQ(0, server.Requests());
}

}  // namespace
