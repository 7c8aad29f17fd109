#include "tests/platform/linux/qt/services/web_server.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <utility>

namespace {

constexpr int kLookInterval = 20;  // milliseconds

// False when the server ends first.
bool waitForInput(int descriptor, const std::atomic<bool>& ending) {
  while (!ending) {
    pollfd wanted{descriptor, POLLIN, 0};
    if (poll(&wanted, 1, kLookInterval) > 0) return true;
  }
  return false;
}

}  // namespace

void WebConnection::send(const std::string& bytes) const {
  for (std::size_t sent = 0; sent < bytes.size();) {
    const ssize_t count = ::send(descriptor_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (count <= 0) return;
    sent += static_cast<std::size_t>(count);
  }
}

void WebConnection::waitForTheEnd() const {
  std::array<char, 1024> buffer{};
  while (waitForInput(descriptor_, ending_) && recv(descriptor_, buffer.data(), buffer.size(), 0) > 0) {
  }
}

WebServer::WebServer(Handler handler) : handler_(std::move(handler)), listener_(socket(AF_INET, SOCK_STREAM, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  if (bind(listener_, reinterpret_cast<sockaddr*>(&address), length) != 0 || listen(listener_, 16) != 0 ||
      getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
    throw std::runtime_error("no web server");
  }
  port_ = ntohs(address.sin_port);
  acceptor_ = std::thread([this] { accept(); });
}

WebServer::~WebServer() {
  ending_ = true;
  acceptor_.join();
  for (std::thread& thread : threads_) thread.join();
  close(listener_);
}

std::vector<std::string> WebServer::requests() {
  const HLLock lock(mutex_);
  return requests_;
}

void WebServer::accept() {
  while (waitForInput(listener_, ending_)) {
    const int descriptor = ::accept(listener_, nullptr, nullptr);
    if (descriptor >= 0) threads_.emplace_back([this, descriptor] { serve(descriptor); });
  }
}

void WebServer::serve(int descriptor) {
  std::string request;
  std::array<char, 4096> buffer{};
  while (request.find("\r\n\r\n") == std::string::npos && waitForInput(descriptor, ending_)) {
    const ssize_t count = recv(descriptor, buffer.data(), buffer.size(), 0);
    if (count <= 0) break;
    request.append(buffer.data(), static_cast<std::size_t>(count));
  }
  if (!request.empty()) {
    {
      const HLLock lock(mutex_);
      requests_.push_back(request);
    }
    handler_(request, WebConnection(descriptor, ending_));
  }
  close(descriptor);
}
