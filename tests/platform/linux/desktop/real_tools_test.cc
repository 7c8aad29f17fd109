// The daemon, the auto-closer and the diagnostic tools on real desktops.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/platform/linux/desktop/real_desktop.h"

namespace {

using std::chrono::seconds;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;

class RealTools : public RealDesktop {
 protected:
  // Starts the program and waits until it has printed that.
  std::unique_ptr<ChildProcess> startUntil(const std::vector<std::string>& arguments, const std::string& printed) {
    std::unique_ptr<ChildProcess> program = start(arguments);
    EXPECT_TRUE(Eventually([&] { return program->output().find(printed) != std::string::npos; })) << program->output();
    return program;
  }

  // The exit code of the program that asks for access.
  int request() {
    const std::unique_ptr<ChildProcess> program = start({"--request-accessibility"});
    const std::optional<int> code = program->wait(seconds(30));
    EXPECT_EQ(program->output(), "");
    return code.value_or(-1);
  }

  // A call to the session's bus itself, and its answer.
  std::string askBus(std::vector<std::string> call) {
    const std::vector<std::string> words = {"busctl",
                                            "--address=" + session_->environment().at("DBUS_SESSION_BUS_ADDRESS"),
                                            "call",
                                            "org.freedesktop.DBus",
                                            "/org/freedesktop/DBus",
                                            "org.freedesktop.DBus"};
    call.insert(call.begin(), words.begin(), words.end());
    const std::unique_ptr<ChildProcess> program = session_->start(call);
    EXPECT_EQ(program->wait(seconds(10)), 0) << program->output();
    return program->output();
  }

  // The program as cron or ssh would start it: it knows the home, and not the session.
  std::string runOutside(const std::string& mode) {
    Environment outside = session_->environment();
    for (const char* name : {"DBUS_SESSION_BUS_ADDRESS", "AT_SPI_BUS_ADDRESS", "DISPLAY", "XDG_RUNTIME_DIR"}) {
      outside.erase(name);
    }
    ChildProcess program({HL_PROGRAM, mode}, outside, session_->directory() + "/outside");
    return program.wait(seconds(30)) ? program.output() : "it hangs";
  }
};

class RealToolsWithServer : public RealTools, public testing::WithParamInterface<Server> {};

INSTANTIATE_TEST_SUITE_P(Servers, RealToolsWithServer, testing::Values(kMate, kLxqt),
                         [](const auto& server) { return server.param.name; });

TEST_F(RealTools, AutoCloseOnlyBannersMatchingRules) {
  beginWith(kLxqt);
  const std::vector<std::string> probe = {"/usr/bin/env", "HL_AUTO_CLOSE_TEST_RULE=Mail|weekly report", HL_PROGRAM,
                                          "--auto-close-probe", "3"};
  const std::unique_ptr<ChildProcess> closer = session_->start(probe);
  ASSERT_TRUE(Eventually([&] { return closer->output() == "watching\n"; })) << closer->output();
  const std::uint32_t other = sender_->send("Chat", "Hello", "your weekly report is here");
  const std::uint32_t wanted = sender_->send("Mail", "Reports", "Your Weekly Report is here");
  const std::uint32_t automation = sender_->send("Shortcuts", "Evening", "Running your automation");
  const std::uint32_t last = sender_->send("Mail", "Lunch", "at noon");
  EXPECT_TRUE(sender_->waitUntilClosed({wanted, automation}, std::chrono::milliseconds(2000)));
  EXPECT_EQ(closer->wait(seconds(10)), 0);
  EXPECT_EQ(closer->output(), "watching\nclosed=2\n");
  EXPECT_EQ(sender_->closed(), (std::set<std::uint32_t>{wanted, automation}));
  EXPECT_EQ(dismiss(), "success|2|0\n");
  EXPECT_TRUE(sender_->waitUntilClosed({other, last}, seconds(10)));
}

TEST_P(RealToolsWithServer, ObserverPrintsChangesAsTheyHappen) {
  beginWith(GetParam());
  const std::unique_ptr<ChildProcess> observer =
      startUntil({"--observe-nc", "4"}, "register AXAnnouncementRequested -> 0\n");
  const std::uint32_t id = sender_->send("Mail", "Lunch", "at noon");
  EXPECT_TRUE(Eventually(
      [&] {
        return observer->output().find(" AXLayoutChanged role=AXGroup subrole=AXNotificationCenterAlert") !=
               std::string::npos;
      },
      seconds(3)))
      << observer->output();
  EXPECT_THAT(observer->output(), HasSubstr(", Lunch, at noon\n"));
  EXPECT_THAT(observer->output(), HasSubstr(" AXCreated role=AXGroup subrole=AXNotificationCenterAlert"));
  sender_->close(id);
  EXPECT_TRUE(
      Eventually([&] { return observer->output().find(" AXUIElementDestroyed ") != std::string::npos; }, seconds(3)))
      << observer->output();
  EXPECT_EQ(observer->wait(seconds(10)), 0);
}

TEST_F(RealTools, CloseOnlyNotificationsContainingText) {
  beginWith(kLxqt);
  const std::uint32_t kept = sender_->send("Chat", "Hello", "see you at noon");
  const std::vector<std::uint32_t> closed = {sender_->send("Mail", "Lunch", "with Ana"),
                                             sender_->send("Calendar", "LUNCH", "in an hour")};
  waitForTargets(3);
  const std::unique_ptr<ChildProcess> program = start({"--close-matching", "lunch"});
  EXPECT_EQ(program->wait(seconds(20)), 0);
  EXPECT_EQ(program->output(), "closed_matching=2\n");
  EXPECT_TRUE(sender_->waitUntilClosed(closed, seconds(10)));
  EXPECT_EQ(sender_->closed().count(kept), 0U);
}

TEST_F(RealTools, ServeCallersOutsideSessionByDaemon) {
  beginWith(kMate);
  EXPECT_EQ(runOutside("--daemon-dismiss"), "accessDenied|0|0\n");
  EXPECT_EQ(runOutside("--daemon-self-check"), "reachable=false status=unreachable\n");
  const std::unique_ptr<ChildProcess> daemon = start({"--daemon"});
  EXPECT_TRUE(Eventually([&] { return runOutside("--daemon-self-check") == "reachable=true status=nothing\n"; }));
  const std::vector<std::uint32_t> ids = send(3);
  waitForTargets(3);
  EXPECT_EQ(runOutside("--dismiss-now"), "accessDenied|0|0\n");
  EXPECT_EQ(runOutside("--daemon-dismiss"), "success|3|0\n");
  expectClosed(ids, kMate);
}

TEST_F(RealTools, DenyDaemonCallersWithoutAccessibility) {
  begin(WithoutAccessibility());
  const std::unique_ptr<ChildProcess> daemon = start({"--daemon"});
  EXPECT_TRUE(Eventually([&] { return runOutside("--daemon-self-check") == "reachable=false status=accessDenied\n"; }));
  EXPECT_EQ(runOutside("--daemon-dismiss"), "accessDenied|0|0\n");
}

TEST_F(RealTools, RequestingAccessibilitySwitchesItOn) {
  begin();
  session_->setAccessibilityEnabled(false);
  EXPECT_THAT(run("--self-check"), HasSubstr("trusted=false"));
  EXPECT_EQ(request(), 0);
  EXPECT_THAT(run("--self-check"), HasSubstr("trusted=true"));
  EXPECT_EQ(request(), 0) << "it is on already";
}

TEST_F(RealTools, StartAccessibilityServiceOnlyOnRequest) {
  begin(WithoutAccessibility());
  EXPECT_EQ(request(), 1) << "there is no such service";
  std::ofstream(session_->directory() + "/data/dbus-1/services/org.a11y.Bus.service")
      << "[D-BUS Service]\nName=org.a11y.Bus\nExec=/usr/libexec/at-spi-bus-launcher\n";
  EXPECT_EQ(askBus({"ReloadConfig"}), "");
  for (const char* mode : {"--self-check", "--dismiss-now", "--daemon-dismiss", "--daemon-self-check"}) {
    EXPECT_THAT(run(mode), AnyOf(HasSubstr("trusted=false"), HasSubstr("accessDenied"), HasSubstr("reachable=false")));
  }
  EXPECT_EQ(askBus({"NameHasOwner", "s", "org.a11y.Bus"}), "b false\n");
  EXPECT_EQ(request(), 0);
  EXPECT_EQ(askBus({"NameHasOwner", "s", "org.a11y.Bus"}), "b true\n");
  EXPECT_THAT(run("--self-check"), HasSubstr("trusted=true"));
}

TEST_F(RealTools, GiveUpOnSilentAccessibilityService) {
  begin();
  session_->setAccessibilityEnabled(false);
  const pid_t service = std::stoi(askBus({"GetConnectionUnixProcessID", "s", "org.a11y.Bus"}).substr(2));
  kill(service, SIGSTOP);
  const auto began = std::chrono::steady_clock::now();
  EXPECT_EQ(request(), 1);
  EXPECT_LT(std::chrono::steady_clock::now() - began, seconds(20));
  kill(service, SIGCONT);
}

TEST_P(RealToolsWithServer, SendsAndDismissesTestNotifications) {
  beginWith(GetParam());
  const std::unique_ptr<ChildProcess> program = start({"--send-test-notifications"});
  EXPECT_EQ(program->wait(seconds(1)), 0) << "it does not wait for them to be shown";
  EXPECT_EQ(program->output(), "");
  waitForTargets(3);
  EXPECT_EQ(dismiss(), "success|3|0\n");
  waitForTargets(0);
}

TEST_F(RealTools, LoadNoWindowToolkit) {
  beginWith(kMate);
  const std::unique_ptr<ChildProcess> observer =
      startUntil({"--observe-nc", "30"}, "register AXAnnouncementRequested -> 0\n");
  const std::string libraries = [&] {
    const std::unique_ptr<ChildProcess> maps =
        session_->start({"/bin/cat", "/proc/" + std::to_string(observer->pid()) + "/maps"});
    EXPECT_EQ(maps->wait(seconds(10)), 0);
    return maps->output();
  }();
  EXPECT_THAT(libraries, HasSubstr("libsystemd"));
  for (const char* toolkit : {"libQt", "libgtk", "libgdk", "libX11", "libxcb", "libglib"}) {
    EXPECT_THAT(libraries, Not(HasSubstr(toolkit)));
  }
}

}  // namespace
