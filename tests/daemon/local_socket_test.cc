#include "daemon/local_socket.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <string>
#include <thread>

namespace {

// A connection; the test plays the peer.
class Connection : public testing::Test {
 protected:
  Connection() { EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends_.data()), 0); }
  ~Connection() override {
    ::close(ends_[0]);
    closePeer();
  }

  [[nodiscard]] int end() const { return ends_[0]; }
  [[nodiscard]] int peer() const { return ends_[1]; }

  void closePeer() {
    if (ends_[1] >= 0) ::close(ends_[1]);
    ends_[1] = -1;
  }
  void peerSends(std::string_view bytes) const {
    EXPECT_EQ(::send(peer(), bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
  }
  // What arrives at the peer until the end of the stream.
  [[nodiscard]] std::string peerReceives() const {
    std::string received;
    std::array<char, 4096> buffer{};
    for (ssize_t count; (count = ::read(peer(), buffer.data(), buffer.size())) > 0;) {
      received.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return received;
  }

 private:
  std::array<int, 2> ends_{-1, -1};
};

using RequestLine = Connection;
using ResponseText = Connection;
using Request = Connection;
using ReplyLine = Connection;

TEST_F(RequestLine, EndsAtTheFirstLineFeed) {
  peerSends("ping\ndismiss\n");
  EXPECT_EQ(HLReadClientLine(end()), "ping");
}

TEST_F(RequestLine, EndsWithTheStreamToo) {
  peerSends("ping");
  closePeer();
  EXPECT_EQ(HLReadClientLine(end()), "ping");
}

TEST_F(RequestLine, IsTrimmedAtBothEnds) {
  peerSends(" \t self-check\xC2\xA0 \r\n");
  EXPECT_EQ(HLReadClientLine(end()), "self-check");
}

TEST_F(RequestLine, IsEmptyWithoutBytes) {
  closePeer();
  EXPECT_EQ(HLReadClientLine(end()), "");
}

TEST_F(RequestLine, IsCutAfter1025Bytes) {
  peerSends(std::string(2000, 'x'));
  EXPECT_EQ(HLReadClientLine(end()), std::string(1025, 'x'));
  std::array<char, 4096> rest{};
  EXPECT_EQ(::read(end(), rest.data(), rest.size()), 975) << "bytes behind the limit are not read";
}

TEST_F(RequestLine, KeepsCommandsEndingAtTheLimit) {
  peerSends(std::string(1021, ' ') + "ping\n");
  EXPECT_EQ(HLReadClientLine(end()), "ping");
}

TEST_F(RequestLine, CutsCommandsCrossingTheLimit) {
  peerSends(std::string(1022, ' ') + "ping\n");
  EXPECT_EQ(HLReadClientLine(end()), "pin");
}

TEST_F(RequestLine, IsEmptyForInvalidUtf8) {
  peerSends("ping\xFF\n");
  EXPECT_EQ(HLReadClientLine(end()), "");
}

TEST_F(RequestLine, IsEmptyForHalfAPair) {
  peerSends("\xED\xA0\xBD\n");
  EXPECT_EQ(HLReadClientLine(end()), "");
}

TEST_F(ResponseText, ReadsToTheEndOfStream) {
  peerSends("success|3|0\n");
  peerSends("and more");
  closePeer();
  std::string text;
  EXPECT_TRUE(HLReadSocketResponse(end(), text));
  EXPECT_EQ(text, "success|3|0\nand more");
}

TEST_F(ResponseText, StopsAbove16384Bytes) {
  const int room = 100'000;
  ::setsockopt(peer(), SOL_SOCKET, SO_SNDBUF, &room, sizeof room);
  ::setsockopt(end(), SOL_SOCKET, SO_RCVBUF, &room, sizeof room);
  peerSends(std::string(60'000, 'x'));
  std::string text;
  EXPECT_TRUE(HLReadSocketResponse(end(), text));
  EXPECT_EQ(text.size(), 16'384U + 1024U) << "reads of 1,024 bytes, and one beyond the limit";
}

TEST_F(ResponseText, StopsWith16385BytesHeld) {
  const timeval patience{5, 0};  // a further read would find nothing and fail
  ::setsockopt(end(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  peerSends(std::string(16'385, 'x'));
  std::string text;
  EXPECT_TRUE(HLReadSocketResponse(end(), text));
  EXPECT_EQ(text.size(), 16'385U);
}

TEST_F(ResponseText, ContinuesWith16384BytesHeld) {
  peerSends(std::string(16'384, 'x'));
  peerSends("yz");
  closePeer();
  std::string text;
  EXPECT_TRUE(HLReadSocketResponse(end(), text));
  EXPECT_EQ(text.size(), 16'386U);
}

TEST_F(ResponseText, IsEmptyForInvalidUtf8) {
  peerSends("success|1|0\xC3\n");
  closePeer();
  std::string text = "before";
  EXPECT_TRUE(HLReadSocketResponse(end(), text));
  EXPECT_EQ(text, "");
}

TEST_F(ResponseText, IsUntouchedWhenReadingFails) {
  std::string text = "before";
  EXPECT_FALSE(HLReadSocketResponse(-1, text));
  EXPECT_EQ(text, "before");
}

TEST_F(Request, SendsOneLineAndShutsDown) {
  EXPECT_TRUE(HLWriteSocketRequest(end(), "dismiss"));
  EXPECT_EQ(peerReceives(), "dismiss\n");
}

TEST_F(Request, LeavesTheOtherDirectionOpen) {
  EXPECT_TRUE(HLWriteSocketRequest(end(), "ping"));
  peerSends("nothing|0|0\n");
  closePeer();
  std::string text;
  EXPECT_TRUE(HLReadSocketResponse(end(), text));
  EXPECT_EQ(text, "nothing|0|0\n");
}

TEST_F(Request, ContinuesAfterPartialWrites) {
  const std::string command(1'000'000, 'x');
  std::string received;
  std::thread reader([&] { received = peerReceives(); });
  EXPECT_TRUE(HLWriteSocketRequest(end(), command));
  reader.join();
  EXPECT_EQ(received, command + "\n");
}

TEST_F(Request, FailsOnAClosedPeer) {
  closePeer();
  EXPECT_FALSE(HLWriteSocketRequest(end(), "ping"));
}

TEST_F(ReplyLine, EndsWithALineFeed) {
  HLWriteClientLine(end(), "nothing|0|0");
  ::shutdown(end(), SHUT_WR);
  EXPECT_EQ(peerReceives(), "nothing|0|0\n");
}

TEST_F(ReplyLine, IgnoresAClosedPeer) {
  closePeer();
  HLWriteClientLine(end(), "nothing|0|0");
}

}  // namespace
