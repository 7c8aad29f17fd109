// A client of the daemon that is written by hand, so that a test can misuse a connection.
#pragma once

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <string>
#include <string_view>

// One connection to a daemon, used step by step.
class DaemonClient {
 public:
  explicit DaemonClient(const std::string& path) : descriptor_(::socket(AF_UNIX, SOCK_STREAM, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(static_cast<char*>(address.sun_path), 103);
    connected_ = ::connect(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  }
  ~DaemonClient() { ::close(descriptor_); }
  DaemonClient(const DaemonClient&) = delete;
  DaemonClient& operator=(const DaemonClient&) = delete;

  [[nodiscard]] bool isConnected() const { return connected_; }
  void send(std::string_view bytes) const { (void)::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL); }
  void endSending() const { ::shutdown(descriptor_, SHUT_WR); }
  [[nodiscard]] bool hasReplyWithin(std::chrono::milliseconds time) const {
    pollfd waiting{descriptor_, POLLIN, 0};
    return ::poll(&waiting, 1, static_cast<int>(time.count())) > 0;
  }
  // Reads to the end of the stream, or the reset that follows a reply to a request that was not read whole.
  [[nodiscard]] std::string receive() const {
    std::string received;
    std::array<char, 256> buffer{};
    for (ssize_t count = 0; (count = ::read(descriptor_, buffer.data(), buffer.size())) > 0;) {
      received.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return received;
  }
  [[nodiscard]] std::string ask(std::string_view bytes) const {
    send(bytes);
    endSending();
    return receive();
  }

 private:
  int descriptor_;
  bool connected_ = false;
};
