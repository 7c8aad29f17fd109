// A connection whose other end has sent some bytes and closed.
#pragma once

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

class SentBytes {
 public:
  SentBytes(const std::uint8_t* data, std::size_t size) {
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends_.data()) != 0) std::abort();
    // What does not fit in the connection is not sent: nobody reads before all of it is written.
    (void)::send(ends_[1], data, size, MSG_DONTWAIT);
    ::close(ends_[1]);
  }
  ~SentBytes() { ::close(ends_[0]); }
  SentBytes(const SentBytes&) = delete;
  SentBytes& operator=(const SentBytes&) = delete;

  [[nodiscard]] int reader() const { return ends_[0]; }

 private:
  std::array<int, 2> ends_{};
};
