// A client, with a daemon that the test plays.
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "base/paths.h"
#include "daemon/local_socket.h"
#include "platform/sockets.h"
#include "tests/support/simulated_desktop.h"

namespace {

void reply(int connection, std::string_view bytes) {
  EXPECT_EQ(HLSendWithoutSignal(connection, bytes), static_cast<ssize_t>(bytes.size()));
}

void waitForRequest(int connection) {
  pollfd waiting{connection, POLLIN, 0};
  EXPECT_EQ(::poll(&waiting, 1, 20'000), 1);
}

class SocketClient : public testing::Test {
 protected:
  struct Answer {
    bool good = false;
    HLDismissResult result;
  };

  // What the client makes of a daemon that does this with its connection, then closes it.
  Answer ask(const std::string& command, const std::function<void(int)>& serve) {
    HLEnsureStateDirectory();
    const std::string path = HLLocalSocketPath().value();
    ::unlink(path.c_str());
    const HLSocket listener(HLOpenLocalSocket());
    EXPECT_TRUE(HLBindLocalSocket(listener.descriptor(), path));
    EXPECT_EQ(::listen(listener.descriptor(), 1), 0);
    std::thread daemon([&] {
      const HLSocket connection(::accept(listener.descriptor(), nullptr, nullptr));
      serve(connection.descriptor());
    });
    Answer answer{false, {HLDismissStatusFailed, 7, 7}};
    answer.good = HLRunLocalSocketCommand(command, answer.result);
    daemon.join();
    return answer;
  }

  static void expectUntouched(const HLDismissResult& result) {
    EXPECT_EQ(result.status, HLDismissStatusFailed);
    EXPECT_EQ(result.dismissed, 7);
    EXPECT_EQ(result.remaining, 7);
  }

  SimulatedDesktop desktop_{"{}"};
};

TEST_F(SocketClient, TakesAReplyAndLogsIt) {
  const Answer answer = ask("dismiss", [](int connection) {
    waitForRequest(connection);
    reply(connection, " success|3|1 \r\n");
    EXPECT_EQ(HLReadClientLine(connection), "dismiss");
  });
  EXPECT_TRUE(answer.good);
  EXPECT_EQ(answer.result.status, HLDismissStatusSuccess);
  EXPECT_EQ(answer.result.dismissed, 3);
  EXPECT_EQ(answer.result.remaining, 1);
  EXPECT_EQ(desktop_.diagnostics(), std::vector<std::string>{"socket client command=dismiss response=success|3|1"});
}

TEST_F(SocketClient, FailsWhenWritingFails) {
  // Too long for the socket's buffer, so that the client still writes when nobody reads any more.
  const std::string command(10'000'000, 'x');
  const Answer answer = ask(command, [](int connection) {
    waitForRequest(connection);
    reply(connection, "success|1|0\n");
    ::shutdown(connection, SHUT_RD);
  });
  EXPECT_FALSE(answer.good);
  expectUntouched(answer.result);
  EXPECT_TRUE(desktop_.diagnostics().empty());
}

TEST_F(SocketClient, FailsWhenReadingFails) {
  // A connection that is closed with bytes unread is reset.
  const Answer answer = ask("dismiss", waitForRequest);
  EXPECT_FALSE(answer.good);
  expectUntouched(answer.result);
  EXPECT_TRUE(desktop_.diagnostics().empty());
}

TEST_F(SocketClient, FailsOnAMalformedReply) {
  const Answer answer = ask("dismiss", [](int connection) {
    EXPECT_EQ(HLReadClientLine(connection), "dismiss");
    reply(connection, "success\n");
  });
  EXPECT_FALSE(answer.good);
  expectUntouched(answer.result);
  EXPECT_EQ(desktop_.diagnostics(), std::vector<std::string>{"socket client command=dismiss response=success"});
}

}  // namespace
