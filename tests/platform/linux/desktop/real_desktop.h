// The program on a real desktop, with a notification server as people run it.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tests/platform/linux/desktop/servers.h"
#include "tests/platform/linux/support/desktop_session.h"

class RealDesktop : public testing::Test {
 protected:
  void begin(const SessionSetup& setup = {}) { session_ = std::make_unique<DesktopSession>(setup); }

  void beginWith(const Server& server, const SessionSetup& setup = {}) {
    begin(setup);
    server_ = session_->startServer(server.command);
    sender_ = std::make_unique<NotificationSender>(session_->environment());
  }

  void TearDown() override {
    sender_ = nullptr;
    server_ = nullptr;
    session_ = nullptr;
  }

  std::vector<std::uint32_t> send(int count, const std::string& application = "") {
    std::vector<std::uint32_t> ids;
    for (int i = 1; i <= count; ++i) {
      const std::string number = std::to_string(i);
      ids.push_back(sender_->send(application.empty() ? "Application " + number : application, "Title " + number,
                                  "What number " + number + " has to say"));
    }
    return ids;
  }

  // The program's own count, by its self-check.
  int targets() {
    const std::string out = run("--self-check");
    const std::size_t at = out.find("targets=");
    return at == std::string::npos ? -1 : std::stoi(out.substr(at + 8));
  }

  void waitForTargets(int count) {
    ASSERT_TRUE(Eventually([&] { return targets() == count; })) << run("--self-check");
  }

  std::unique_ptr<ChildProcess> start(const std::vector<std::string>& arguments) {
    std::vector<std::string> command = {HL_PROGRAM};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return session_->start(command);
  }

  std::string run(const std::string& mode) {
    const std::unique_ptr<ChildProcess> program = start({mode});
    if (!program->wait(std::chrono::seconds(60))) return "it hangs";
    return program->output();
  }

  // What it prints; it must end well, and in that time.
  std::string dismiss(std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    const std::unique_ptr<ChildProcess> program = start({"--dismiss-now"});
    EXPECT_EQ(program->wait(limit), 0) << program->output();
    return program->output();
  }

  void keepPicture(const std::string& moment) {
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::string(test.test_suite_name()) + "." + test.name() + "-" + moment + ".png";
    for (char& c : name) {
      if (c == '/') c = '-';
    }
    session_->savePicture(std::string(HL_PICTURES) + "/" + name);
  }

  void expectClosed(const std::vector<std::uint32_t>& ids, const Server& server) {
    ASSERT_TRUE(sender_->waitUntilClosed(ids, std::chrono::seconds(10)));
    for (std::uint32_t id : ids) EXPECT_EQ(sender_->reasonOf(id), server.closingReason) << "notification " << id;
  }

  std::unique_ptr<DesktopSession> session_;
  std::unique_ptr<ChildProcess> server_;
  std::unique_ptr<NotificationSender> sender_;
};
