#include "tests/swarm/callers.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>
#include <thread>

#include "platform/text.h"

namespace {

constexpr std::size_t kLongestRequest = 1025;

class Connection {
 public:
  // Tries until the daemon listens.
  explicit Connection(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(static_cast<char*>(address.sun_path), 103);
    for (;;) {
      descriptor_ = ::socket(AF_UNIX, SOCK_STREAM, 0);
      if (::connect(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return;
      ::close(descriptor_);
      std::this_thread::yield();
    }
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection() { ::close(descriptor_); }

  void send(std::string_view bytes) const { (void)::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL); }
  void endSending() const { ::shutdown(descriptor_, SHUT_WR); }
  [[nodiscard]] bool hasReplyWithin(int milliseconds) const {
    pollfd waiting{descriptor_, POLLIN, 0};
    return ::poll(&waiting, 1, milliseconds) > 0;
  }
  // To the end of the stream, or the reset behind a reply to a request that was not read whole.
  [[nodiscard]] std::string receive() const {
    std::string received;
    std::array<char, 256> buffer{};
    for (ssize_t count = 0; (count = ::read(descriptor_, buffer.data(), buffer.size())) > 0;) {
      received.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return received;
  }

 private:
  int descriptor_ = -1;
};

// What the daemon answers to these bytes; "" for one of several answers.
std::string answerTo(const std::string& bytes) {
  const std::string line = bytes.substr(0, std::min(bytes.find('\n'), kLongestRequest));
  const std::string_view command = HLIsEncodable(line) ? HLTrim(line) : "";
  if (command == "dismiss") return "dismiss";
  if (command == "ping" || command == "self-check") return "";
  return command == "quit-daemon" ? "success|0|0" : "failed|0|0";
}

CallerOutcome serve(const Caller& caller, const std::string& path) {
  CallerOutcome outcome;
  const Connection connection(path);
  switch (caller.manner) {
    case Manner::asks:
      outcome.wanted = answerTo(caller.request);
      connection.send(caller.request);
      break;
    case Manner::sendsInPieces:
      outcome.wanted = answerTo(caller.request);
      for (const char byte : caller.request) connection.send({&byte, 1});
      break;
    case Manner::asksWithoutEnd:
      outcome.wanted = "failed|0|0";
      connection.send(std::string(kLongestRequest + caller.request.size(), '-'));
      outcome.received = connection.receive();
      return outcome;
    case Manner::leavesEarly:
      outcome.wanted = answerTo(caller.request) == "dismiss" ? "dismiss" : "-";
      outcome.leavesEarly = true;
      connection.send(caller.request);
      return outcome;
    case Manner::staysIdle: {
      const Connection behind(path);
      behind.send("ping\n");
      outcome.answeredTooEarly = behind.hasReplyWithin(1);
      connection.endSending();
      outcome.received = behind.receive();
      return outcome;
    }
  }
  connection.endSending();
  outcome.received = connection.receive();
  return outcome;
}

}  // namespace

std::vector<CallerOutcome> CallDaemon(const std::vector<Caller>& callers, const std::string& socketPath) {
  std::vector<CallerOutcome> outcomes;
  for (const Caller& caller : callers) outcomes.push_back(serve(caller, socketPath));
  outcomes.push_back(serve({Manner::asks, "quit-daemon\n"}, socketPath));
  return outcomes;
}
