// IsInternetReachable against servers of the test on 127.0.0.1: any answer at
// all is reachable; only a sure "no way out" is offline, and within the bound.
#include <gtest/gtest.h>

#include "testkit/local_http_server.h"
#include "testkit/recording_platform.h"
#include "web/browser.h"
#include "web/reachability.h"
#include "web_test_support.h"

using namespace brevantis;
using namespace brevantis::testing;
using Behaviour = LocalHttpServer::Behaviour;

namespace {

// Far beyond the bound only if the call waited for the network's own timeouts.
constexpr DWORD kHangMs = kReachabilityBoundMs + 1000;

// A captive portal, a proxy asking for a login or another text: the browser
// would show them, so the page is opened.
TEST(Reachability, AnyAnswerIsReachable) {
  const struct {
    const char* name;
    Behaviour behaviour;
    const char* body;
  } cases[] = {
      {"the usual text", Behaviour::Answer, "Brevantis online"},
      {"another text", Behaviour::Answer, "Welcome to the hotel network"},
      {"a redirect", Behaviour::Redirect, "Brevantis online"},
      {"a proxy login", Behaviour::ProxyLogin, "Log in first"},
  };
  for (const auto& c : cases) {
    LocalHttpServer server(c.behaviour, c.body);
    ProbeSettings settings(server.Url());
    EXPECT_TRUE(IsInternetReachable()) << c.name;
    EXPECT_EQ(1, server.Requests()) << c.name;  // a redirect is not followed
  }
}

TEST(Reachability, NoWayOutIsOfflineWithinTheBound) {
  LocalHttpServer silent(Behaviour::Silent);
  const struct {
    const char* name;
    std::wstring url;
  } cases[] = {
      {"refused", L"http://127.0.0.1:" + std::to_wstring(LocalHttpServer::ClosedPort()) + L"/probe"},
      {"unresolvable", L"http://brevantis-probe.invalid/probe"},
      {"silent", silent.Url()},
  };
  for (const auto& c : cases) {
    ProbeSettings settings(c.url);
    const DWORD start = GetTickCount();
    EXPECT_FALSE(IsInternetReachable()) << c.name;
    EXPECT_LT(GetTickCount() - start, kHangMs) << c.name;
  }
  EXPECT_EQ(1, silent.Requests());
}

TEST(Reachability, OfflineNoProbeIsMade) {
  LocalHttpServer server(Behaviour::Answer, "Brevantis online");
  ProbeSettings settings(server.Url());
  RecordingPlatform platform;
  ScopedPlatform scope(&platform);
  platform.connected = false;
  EXPECT_FALSE(IsInternetReachable());
  EXPECT_EQ(1, platform.connectedStateCalls);
  EXPECT_EQ(0, server.Requests());
}

}  // namespace
