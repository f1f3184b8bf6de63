// A small HTTP server on 127.0.0.1 for the reachability probe: one thread,
// bounded loops, one behaviour per server.
#pragma once

#include <winsock2.h>

#include <atomic>
#include <string>
#include <thread>

namespace brevantis::testing {

class LocalHttpServer {
 public:
  enum class Behaviour {
    Answer,    // 200 with the body
    Silent,    // accepts, reads the request, never answers
    Redirect,    // 302 to /elsewhere, which answers 200 with the body
    ProxyLogin,  // 407: a proxy that wants credentials
  };

  explicit LocalHttpServer(Behaviour behaviour, std::string body = std::string());
  ~LocalHttpServer();
  LocalHttpServer(const LocalHttpServer&) = delete;
  LocalHttpServer& operator=(const LocalHttpServer&) = delete;

  std::wstring Url() const;  // http://127.0.0.1:port/probe
  int Requests() const { return requests_; }

  // A port on which nothing listens: connections are refused.
  static unsigned short ClosedPort();

 private:
  void Serve();
  void Answer(SOCKET client);

  Behaviour behaviour_;
  std::string body_;
  SOCKET listener_ = INVALID_SOCKET;
  unsigned short port_ = 0;
  std::atomic<bool> stop_{false};
  std::atomic<int> requests_{0};
  std::thread thread_;
};

}  // namespace brevantis::testing
