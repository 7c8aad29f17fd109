// Documents from a server of the test's own.
#include "platform/macos/system/macos_http_client.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

#include "platform/macos/system/macos_run_loop.h"

namespace {

// Answers one connection with these bytes, and says nothing more until it is destroyed.
class Server {
 public:
  explicit Server(std::string answer) : listener_(socket(AF_INET, SOCK_STREAM, 0)) {
    if (listener_ < 0) throw std::runtime_error("no socket");
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    bind(listener_, reinterpret_cast<const sockaddr*>(&address), length);
    listen(listener_, 1);
    getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length);
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this, text = std::move(answer)] {
      connection_ = accept(listener_, nullptr, nullptr);
      char request[4096];
      (void)read(connection_, request, sizeof request);
      (void)write(connection_, text.data(), text.size());
    });
  }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server() {
    thread_.join();
    close(connection_);
    close(listener_);
  }

  [[nodiscard]] std::string address() const { return "http://127.0.0.1:" + std::to_string(port_) + "/latest.json"; }

 private:
  const int listener_;
  int port_ = 0;
  int connection_ = -1;
  std::thread thread_;
};

HLHTTPAnswer get(const std::string& address, double timeout) {
  HLMacRunLoop loop;
  const auto answered = loop.makeSemaphore();
  HLHTTPAnswer answer;
  HLMacHTTPClient client;
  client.get(address, timeout, [&](const HLHTTPAnswer& given) {
    answer = given;
    answered->signal();
  });
  EXPECT_TRUE(answered->wait(timeout + 20));
  return answer;
}

TEST(HttpClient, BringsTheDocument) {
  const Server server("HTTP/1.1 200 OK\r\nContent-Length: 2\r\nConnection: close\r\n\r\n{}");
  const HLHTTPAnswer answer = get(server.address(), 15);
  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(answer.body, "{}");
}

TEST(HttpClient, BringsTheServersRefusal) {
  const Server server("HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\nConnection: close\r\n\r\ngone");
  const HLHTTPAnswer answer = get(server.address(), 15);
  EXPECT_EQ(answer.status, 404);
}

TEST(HttpClient, TimesOutOnASilentServer) {
  const Server server("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf");
  HLMacRunLoop loop;
  const double start = loop.now();
  const HLHTTPAnswer answer = get(server.address(), 1);
  EXPECT_LT(loop.now() - start, 10);
  EXPECT_FALSE(answer.body.has_value());
}

TEST(HttpClient, AnswersAnAddressThatIsNone) {
  EXPECT_EQ(get("http://[", 5).status, 0);
  EXPECT_EQ(get("", 5).status, 0);
  EXPECT_FALSE(get("", 5).body.has_value());
}

}  // namespace
