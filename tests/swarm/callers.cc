#include "tests/swarm/callers.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <string_view>
#include <thread>

#include "platform/text.h"
#include "tests/support/daemon_client.h"

namespace {

constexpr std::size_t kLongestRequest = 1025;

// Tries until the daemon listens.
void connect(std::optional<DaemonClient>& connection, const std::string& path) {
  for (connection.emplace(path); !connection->isConnected(); connection.emplace(path)) std::this_thread::yield();
}

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
  std::optional<DaemonClient> connection;
  connect(connection, path);
  switch (caller.manner) {
    case Manner::asks:
      outcome.wanted = answerTo(caller.request);
      connection->send(caller.request);
      break;
    case Manner::sendsInPieces:
      outcome.wanted = answerTo(caller.request);
      for (const char byte : caller.request) connection->send({&byte, 1});
      break;
    case Manner::asksWithoutEnd:
      outcome.wanted = "failed|0|0";
      connection->send(std::string(kLongestRequest + caller.request.size(), '-'));
      outcome.received = connection->receive();
      return outcome;
    case Manner::leavesEarly:
      outcome.wanted = answerTo(caller.request) == "dismiss" ? "dismiss" : "-";
      outcome.leavesEarly = true;
      connection->send(caller.request);
      return outcome;
    case Manner::staysIdle: {
      std::optional<DaemonClient> behind;
      connect(behind, path);
      behind->send("ping\n");
      outcome.answeredTooEarly = behind->hasReplyWithin(std::chrono::milliseconds(1));
      connection->endSending();
      outcome.received = behind->receive();
      return outcome;
    }
  }
  connection->endSending();
  outcome.received = connection->receive();
  return outcome;
}

}  // namespace

std::vector<CallerOutcome> CallDaemon(const std::vector<Caller>& callers, const std::string& socketPath) {
  std::vector<CallerOutcome> outcomes;
  for (const Caller& caller : callers) outcomes.push_back(serve(caller, socketPath));
  outcomes.push_back(serve({Manner::asks, "quit-daemon\n"}, socketPath));
  return outcomes;
}
