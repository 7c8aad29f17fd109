// Fetching from servers that behave, and from such that do not.
#include "platform/linux/qt/services/qt_http_client.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/platform/linux/qt/services/web_server.h"
#include "tests/platform/linux/support/child_process.h"
#include "tests/support/temporary_directory.h"

namespace {

using std::chrono::seconds;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

using Clock = std::chrono::steady_clock;

constexpr double kTimeout = 15;

std::string answerWith(const std::string& status, const std::string& body, const std::string& headers = "") {
  return "HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n" +
         headers + "\r\n" + body;
}

class Fetch : public testing::Test {
 protected:
  // Runs Qt's loop until that many answers have come in all.
  void waitForAnswers(std::size_t count) {
    const Clock::time_point deadline = Clock::now() + seconds(30);
    while (answers_.size() < count && Clock::now() < deadline) {
      QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 50);
    }
    ASSERT_THAT(answers_, SizeIs(count));
  }

  void begin(const std::string& address, double timeout = kTimeout) {
    client_->get(address, timeout, [this](HLHTTPAnswer answer) { answers_.push_back(std::move(answer)); });
  }

  // "status body", or "status -" without a body.
  std::string fetch(const std::string& address, double timeout = kTimeout) {
    answers_.clear();
    begin(address, timeout);
    EXPECT_THAT(answers_, SizeIs(0)) << "it returns before it answers";
    waitForAnswers(1);
    if (answers_.empty()) return "no answer";
    return std::to_string(answers_.front().status) + " " + answers_.front().body.value_or("-");
  }

  static std::unique_ptr<WebServer> serving(std::string answer) {
    return std::make_unique<WebServer>(
        [answer = std::move(answer)](const std::string&, const WebConnection& connection) { connection.send(answer); });
  }

  std::unique_ptr<HLQtHTTPClient> client_ = std::make_unique<HLQtHTTPClient>();
  std::vector<HLHTTPAnswer> answers_;
};

TEST_F(Fetch, BringsADocument) {
  const auto server = serving(answerWith("200 OK", "{\"build\": 12}"));
  EXPECT_EQ(fetch(server->address("/quillmere/latest.json")), "200 {\"build\": 12}");
  ASSERT_THAT(server->requests(), SizeIs(1));
  EXPECT_THAT(server->requests().front(), StartsWith("GET /quillmere/latest.json HTTP/1.1\r\n"));
}

TEST_F(Fetch, BringsEmptyAndUnsizedDocuments) {
  EXPECT_EQ(fetch(serving(answerWith("200 OK", ""))->address()), "200 ");
  const auto unsaid = serving("HTTP/1.0 200 OK\r\n\r\nall of it");
  EXPECT_EQ(fetch(unsaid->address()), "200 all of it");
  const auto chunked = serving(
      "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\nConnection: close\r\n\r\n3\r\nabc\r\n2\r\nde\r\n0\r\n\r\n");
  EXPECT_EQ(fetch(chunked->address()), "200 abcde");
}

TEST_F(Fetch, BringsAnyContentType) {
  const auto server = serving(answerWith("200 OK", std::string("\0\xFF\x80", 3), "Content-Type: image/png\r\n"));
  EXPECT_EQ(fetch(server->address()), "200 " + std::string("\0\xFF\x80", 3));
}

TEST_F(Fetch, BringsAnswersOtherThanOk) {
  EXPECT_EQ(fetch(serving(answerWith("404 Not Found", "{\"build\": 12}"))->address()), "404 {\"build\": 12}");
  EXPECT_EQ(fetch(serving(answerWith("500 Oh", "oh"))->address()), "500 oh");
  EXPECT_EQ(fetch(serving(answerWith("401 Who", "who", "WWW-Authenticate: Basic realm=\"x\"\r\n"))->address()),
            "401 who");
  EXPECT_EQ(fetch(serving("HTTP/1.1 204 None\r\nConnection: close\r\n\r\n")->address()), "204 ");
}

TEST_F(Fetch, FailsWhenDocumentIsCutShort) {
  EXPECT_EQ(fetch(serving("HTTP/1.1 200 OK\r\nContent-Length: 100\r\nConnection: close\r\n\r\nonly this")->address()),
            "200 -");
  EXPECT_EQ(fetch(serving("HTTP/1.1 404 No\r\nContent-Length: 100\r\nConnection: close\r\n\r\nonly this")->address()),
            "404 -");
}

TEST_F(Fetch, FailsWhenTheDocumentIsHuge) {
  const std::string most(1 << 20, 'x');
  EXPECT_EQ(fetch(serving(answerWith("200 OK", most))->address()), "200 " + most);
  EXPECT_EQ(fetch(serving(answerWith("200 OK", most + "x"))->address()), "200 -");
  WebServer endless([](const std::string&, const WebConnection& connection) {
    connection.send("HTTP/1.1 200 OK\r\n\r\n");
    for (int i = 0; i < 64; ++i) connection.send(std::string(1 << 20, 'x'));
  });
  EXPECT_EQ(fetch(endless.address()), "200 -");
}

TEST_F(Fetch, FailsWhenItsTimeIsOver) {
  WebServer silent([](const std::string&, const WebConnection& connection) { connection.waitForTheEnd(); });
  const Clock::time_point begin = Clock::now();
  EXPECT_EQ(fetch(silent.address(), 0.2), "0 -");
  EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(180));
  EXPECT_LT(Clock::now() - begin, seconds(10));
  EXPECT_EQ(fetch(silent.address(), 0), "0 -");
  EXPECT_EQ(fetch(silent.address(), -5), "0 -");
}

TEST_F(Fetch, TimesOutDespiteSteadyData) {
  std::atomic<bool> ended = false;
  WebServer slow([&ended](const std::string&, const WebConnection& connection) {
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n");
    while (!ended) {
      connection.send("x");
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
  });
  const Clock::time_point begin = Clock::now();
  EXPECT_EQ(fetch(slow.address(), 0.3), "200 -");
  EXPECT_LT(Clock::now() - begin, seconds(10));
  ended = true;
}

TEST_F(Fetch, FailsWithoutAnHttpAnswer) {
  EXPECT_EQ(fetch(serving("")->address()), "0 -") << "closed at once";
  EXPECT_EQ(fetch(serving("220 mail.example ESMTP\r\n\x01\x02\xFF garbage\r\n")->address()), "0 -");
  EXPECT_EQ(fetch("http://127.0.0.1:1/"), "0 -") << "nobody listens";
  EXPECT_EQ(fetch("http://no-such-host.invalid/"), "0 -");
}

TEST_F(Fetch, FailsWithoutAWebAddress) {
  const TemporaryDirectory directory;
  std::ofstream(directory.path() + "/secret") << "secret";
  for (const std::string& address : {std::string(), std::string("file://") + directory.path() + "/secret",
                                     std::string("data:text/plain,secret"), std::string("ftp://127.0.0.1/"),
                                     std::string("http://"), std::string("http://a b/"), std::string("latest.json")}) {
    EXPECT_EQ(fetch(address), "0 -") << address;
  }
}

TEST_F(Fetch, FollowsAFewRedirections) {
  WebServer server([](const std::string& request, const WebConnection& connection) {
    const int hop = request.at(5) - '0';
    if (hop == 0) return connection.send(answerWith("200 OK", "arrived"));
    connection.send(answerWith("302 There", "not this", "Location: /" + std::to_string(hop - 1) + "\r\n"));
  });
  EXPECT_EQ(fetch(server.address("/5")), "200 arrived");
  EXPECT_EQ(fetch(server.address("/6")), "302 -");
}

TEST_F(Fetch, DoesNotGoRoundInCircles) {
  const auto server = serving(answerWith("302 Here", "", "Location: /\r\n"));
  EXPECT_EQ(fetch(server->address()), "302 -");
  EXPECT_LE(server->requests().size(), 7U);
}

TEST_F(Fetch, IsNotRedirectedToAFile) {
  const TemporaryDirectory directory;
  std::ofstream(directory.path() + "/secret") << "secret";
  for (const std::string& where :
       {"file://" + directory.path() + "/secret", std::string("data:text/plain,secret"), std::string("qrc:/x")}) {
    EXPECT_EQ(fetch(serving(answerWith("302 There", "", "Location: " + where + "\r\n"))->address()), "302 -") << where;
  }
}

TEST_F(Fetch, KeepsNoCookiesAndNothingElse) {
  const auto server =
      serving(answerWith("200 OK", "x", "Set-Cookie: a=b; Path=/\r\nCache-Control: max-age=1000\r\nETag: \"1\"\r\n"));
  for (int i = 0; i < 2; ++i) EXPECT_EQ(fetch(server->address()), "200 x");
  ASSERT_THAT(server->requests(), SizeIs(2)) << "the second was answered by a cache";
  for (const std::string& request : server->requests()) {
    EXPECT_THAT(request, Not(HasSubstr("Cookie")));
    EXPECT_THAT(request, Not(HasSubstr("If-None-Match")));
  }
}

TEST_F(Fetch, KeepsNoCookiesOfARedirection) {
  WebServer server([](const std::string& request, const WebConnection& connection) {
    if (request.starts_with("GET /next")) return connection.send(answerWith("200 OK", "x"));
    connection.send(answerWith("302 There", "", "Location: /next\r\nSet-Cookie: a=b; Path=/\r\n"));
  });
  EXPECT_EQ(fetch(server.address()), "200 x");
  ASSERT_THAT(server.requests(), SizeIs(2));
  EXPECT_THAT(server.requests().back(), Not(HasSubstr("Cookie")));
}

TEST_F(Fetch, AnswersSeveralAtOnceEachOnce) {
  std::atomic<int> arrived = 0;
  WebServer server([&arrived](const std::string& request, const WebConnection& connection) {
    ++arrived;
    // Neither is answered before both are under way.
    const Clock::time_point deadline = Clock::now() + seconds(10);
    while (arrived < 2 && Clock::now() < deadline) std::this_thread::yield();
    connection.send(answerWith("200 OK", request.substr(4, 2)));
  });
  begin(server.address("/a"));
  begin(server.address("/b"));
  waitForAnswers(2);
  const std::set<std::string> bodies = {answers_[0].body.value_or("-"), answers_[1].body.value_or("-")};
  EXPECT_EQ(bodies, (std::set<std::string>{"/a", "/b"}));
  QCoreApplication::processEvents();
  EXPECT_THAT(answers_, SizeIs(2));
}

TEST_F(Fetch, EndsWithItsClientUnanswered) {
  WebServer silent([](const std::string&, const WebConnection& connection) { connection.waitForTheEnd(); });
  begin(silent.address());
  ASSERT_TRUE(Eventually([&] {
    QCoreApplication::processEvents();
    return silent.requests().size() == 1;
  }));
  client_ = nullptr;
  QCoreApplication::processEvents();
  EXPECT_THAT(answers_, SizeIs(0));
}

TEST_F(Fetch, AllowsANewRequestWhenAnswering) {
  const auto server = serving(answerWith("200 OK", "x"));
  client_->get(server->address(), kTimeout, [&](HLHTTPAnswer first) {
    answers_.push_back(std::move(first));
    begin(server->address());
  });
  waitForAnswers(2);
}

TEST_F(Fetch, FailsForUntrustedServers) {
  const TemporaryDirectory directory;
  const Environment environment = {{"PATH", "/usr/bin:/bin"}, {"HOME", directory.path()}};
  ChildProcess certificate({"openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj",
                            "/CN=localhost", "-addext", "subjectAltName=DNS:localhost,IP:127.0.0.1", "-keyout",
                            directory.path() + "/key", "-out", directory.path() + "/certificate"},
                           environment, directory.path() + "/made");
  ASSERT_EQ(certificate.wait(seconds(30)), 0) << certificate.output();
  ChildProcess server({"openssl", "s_server", "-accept", "127.0.0.1:0", "-key", directory.path() + "/key", "-cert",
                       directory.path() + "/certificate", "-www"},
                      environment, directory.path() + "/served");
  const std::string said = "ACCEPT 127.0.0.1:";
  ASSERT_TRUE(Eventually([&] {
    return server.output().find(said) != std::string::npos && server.output().back() == '\n';
  })) << server.output();
  const std::string port = std::to_string(std::stoi(server.output().substr(server.output().find(said) + said.size())));
  EXPECT_EQ(fetch("https://127.0.0.1:" + port + "/"), "0 -");
  // It does serve whoever trusts it.
  ChildProcess trusting({"sh", "-c",
                         "printf 'GET / HTTP/1.0\\r\\n\\r\\n' | openssl s_client -quiet -verify_return_error -CAfile " +
                             directory.path() + "/certificate -connect 127.0.0.1:" + port},
                        environment, directory.path() + "/fetched");
  EXPECT_EQ(trusting.wait(seconds(20)), 0);
  EXPECT_THAT(trusting.output(), HasSubstr("HTTP/1.0 200"));
}

}  // namespace

// The thread sanitizer does not see how Qt and GLib synchronize, since they are not built with it.
extern "C" const char* __tsan_default_suppressions() {
  return "called_from_lib:libglib-2.0.so\ncalled_from_lib:libQt6Core.so\ncalled_from_lib:libQt6Network.so\n"
         "race:libQt6Core.so\nrace:libQt6Network.so\n";
}

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  const QCoreApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
