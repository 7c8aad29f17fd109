// A socket at a path, for tests of what connects to it.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <string>

// Takes connections from construction to destruction.
class Listener {
 public:
  explicit Listener(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(static_cast<char*>(address.sun_path), sizeof address.sun_path - 1);
    ::fcntl(descriptor_, F_SETFD, FD_CLOEXEC);
    EXPECT_EQ(::bind(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0) << path;
    EXPECT_EQ(::listen(descriptor_, 8), 0);
  }
  ~Listener() { ::close(descriptor_); }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  [[nodiscard]] int accept() const { return ::accept(descriptor_, nullptr, nullptr); }

 private:
  const int descriptor_ = ::socket(AF_UNIX, SOCK_STREAM, 0);
};
