#include "testkit/local_http_server.h"

#include <ws2tcpip.h>

#include <chrono>
#include <vector>

namespace brevantis::testing {
namespace {

constexpr int kPollMs = 50;
constexpr int kLifetimeMs = 30000;  // a server never outlives this, whatever its test does

struct Winsock {
  Winsock() {
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
  }
  ~Winsock() { WSACleanup(); }
};

bool Readable(SOCKET socket, int timeoutMs) {
  fd_set set;
  FD_ZERO(&set);
  FD_SET(socket, &set);
  timeval timeout = {timeoutMs / 1000, (timeoutMs % 1000) * 1000};
  return select(0, &set, nullptr, nullptr, &timeout) == 1;
}

SOCKET Listen(unsigned short* port) {
  SOCKET listener = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  int size = sizeof(address);
  if (bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(listener, 8) != 0 ||
      getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    closesocket(listener);
    return INVALID_SOCKET;
  }
  *port = ntohs(address.sin_port);
  return listener;
}

void SendAll(SOCKET socket, const std::string& bytes) {
  size_t sent = 0;
  while (sent < bytes.size()) {
    const int n = send(socket, bytes.data() + sent, static_cast<int>(bytes.size() - sent), 0);
    if (n <= 0) return;
    sent += n;
  }
}

std::string Response(const char* status, const std::string& headers, const std::string& body) {
  return std::string("HTTP/1.0 ") + status + "\r\nContent-Type: text/plain\r\nConnection: close\r\n" + headers +
         "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

}  // namespace

LocalHttpServer::LocalHttpServer(Behaviour behaviour, std::string body)
    : behaviour_(behaviour), body_(std::move(body)) {
  static Winsock winsock;
  listener_ = Listen(&port_);
  thread_ = std::thread([this] { Serve(); });
}

LocalHttpServer::~LocalHttpServer() {
  stop_ = true;
  thread_.join();
  closesocket(listener_);
}

std::wstring LocalHttpServer::Url() const { return L"http://127.0.0.1:" + std::to_wstring(port_) + L"/probe"; }

unsigned short LocalHttpServer::ClosedPort() {
  static Winsock winsock;
  unsigned short port = 0;
  closesocket(Listen(&port));
  return port;
}

void LocalHttpServer::Serve() {
  std::vector<SOCKET> silent;
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(kLifetimeMs);
  while (!stop_ && std::chrono::steady_clock::now() < end && listener_ != INVALID_SOCKET) {
    if (!Readable(listener_, kPollMs)) continue;
    SOCKET client = accept(listener_, nullptr, nullptr);
    if (client == INVALID_SOCKET) continue;
    ++requests_;
    if (behaviour_ == Behaviour::Silent) {
      silent.push_back(client);  // held open until the server stops
      continue;
    }
    Answer(client);
    closesocket(client);
  }
  for (SOCKET client : silent) closesocket(client);
}

void LocalHttpServer::Answer(SOCKET client) {
  DWORD sendTimeoutMs = 3000;
  setsockopt(client, SOL_SOCKET, SO_SNDTIMEO, reinterpret_cast<const char*>(&sendTimeoutMs), sizeof(sendTimeoutMs));
  std::string request;
  char chunk[1024];
  while (request.find("\r\n\r\n") == std::string::npos && request.size() < 16384 && Readable(client, 2000)) {
    const int n = recv(client, chunk, sizeof(chunk), 0);
    if (n <= 0) break;
    request.append(chunk, n);
  }
  const bool elsewhere = request.compare(0, 15, "GET /elsewhere ") == 0;
  if (behaviour_ == Behaviour::Redirect && !elsewhere)
    SendAll(client, Response("302 Found", "Location: /elsewhere\r\n", std::string()));
  else if (behaviour_ == Behaviour::ProxyLogin)
    SendAll(client, Response("407 Proxy Authentication Required", "Proxy-Authenticate: Basic realm=\"office\"\r\n",
                             body_));
  else
    SendAll(client, Response("200 OK", std::string(), body_));
}

}  // namespace brevantis::testing
