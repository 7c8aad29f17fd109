#include "tests/swarm/daemon_double.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <string_view>
#include <utility>

namespace {

struct Reply {
  std::string_view bytes;
  std::string_view means;  // "" where it cannot be read
};

constexpr std::array kReplies = {
    Reply{"success|3|0\n", "success|3|0"},
    Reply{"nothing|0|0\n", "nothing|0|0"},
    Reply{"accessDenied|0|0\n", "accessDenied|0|0"},
    Reply{" failed|1|2 \r\n", "failed|1|2"},
    Reply{"success| 12|-4", "success|12|-4"},
    Reply{"nothing|0|0|extra\n", "nothing|0|0"},
    Reply{"success|x|3", "success|0|3"},
    Reply{"success|99999999999999999999|0\n", "success|9223372036854775807|0"},
    Reply{"Success|1|0\n", ""},
    Reply{"success|1", ""},
    Reply{"", ""},
    Reply{"done|1|0\n\n", ""},
    Reply{"\xff|1|1\n", ""},
    Reply{"more than is read", ""},
};

constexpr std::size_t kMoreThanIsRead = 20000;

}  // namespace

std::size_t DaemonReplyCount() { return kReplies.size(); }

DaemonDouble::DaemonDouble(const std::string& socketPath, std::vector<std::size_t> replies)
    : path_(socketPath), replies_(std::move(replies)), listener_(::socket(AF_UNIX, SOCK_STREAM, 0)) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path_.copy(static_cast<char*>(address.sun_path), 103);
  ::unlink(path_.c_str());
  (void)::bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  (void)::listen(listener_, 8);
  thread_ = std::thread([this] { serve(); });
}

DaemonDouble::~DaemonDouble() {
  ::shutdown(listener_, SHUT_RDWR);  // ends the accept
  thread_.join();
  ::close(listener_);
  ::unlink(path_.c_str());
}

void DaemonDouble::serve() {
  std::size_t served = 0;
  for (int connection = -1; (connection = ::accept(listener_, nullptr, nullptr)) >= 0; ++served) {
    std::string request;
    for (char byte = '\0'; ::read(connection, &byte, 1) == 1 && byte != '\n';) request += byte;
    const Reply& reply = kReplies[replies_[served % replies_.size()]];
    if (request == "dismiss") {
      const std::lock_guard lock(mutex_);
      answers_.emplace_back(reply.means);
    }
    const std::string bytes = &reply == &kReplies.back() ? std::string(kMoreThanIsRead, 'x') : std::string(reply.bytes);
    (void)::send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    ::close(connection);
  }
}

std::string DaemonDouble::nextAnswer() {
  const std::lock_guard lock(mutex_);
  if (answers_.empty()) return "never asked";
  std::string answer = answers_.front();
  answers_.erase(answers_.begin());
  return answer;
}
