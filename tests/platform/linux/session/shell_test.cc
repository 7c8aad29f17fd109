// Which process is the server: a desktop shell whose helper owns the notification service, or what the bus would start.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/session/linux_running_applications.h"
#include "tests/platform/linux/support/desktop_session.h"

namespace {

using testing::SizeIs;

constexpr const char* kService = "org.freedesktop.Notifications";
constexpr const char* kHelper = "org.gnome.Shell.Notifications";
constexpr const char* kShell = "org.gnome.Shell";

// A connection that owns names.
class Owner {
 public:
  Owner(const std::string& address, const std::vector<const char*>& names) {
    EXPECT_GE(sd_bus_new(&bus_), 0);
    EXPECT_GE(sd_bus_set_address(bus_, address.c_str()), 0);
    EXPECT_GE(sd_bus_set_bus_client(bus_, 1), 0);
    EXPECT_GE(sd_bus_start(bus_), 0);
    for (const char* name : names) EXPECT_GE(sd_bus_request_name(bus_, name, 0), 0) << name;
  }
  ~Owner() { sd_bus_close_unref(bus_); }
  Owner(const Owner&) = delete;
  Owner& operator=(const Owner&) = delete;

 private:
  sd_bus* bus_ = nullptr;
};

class Shell : public testing::Test {
 protected:
  ~Shell() override {
    if (shell_ <= 0) return;
    kill(shell_, SIGKILL);
    waitpid(shell_, nullptr, 0);
  }

  // A process that owns the shell's name.
  void startShell() {
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    shell_ = fork();
    if (shell_ == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      const Owner owner(address_, {kShell});
      (void)!write(ready[1], "x", 1);
      for (;;) pause();
    }
    char byte = 0;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    close(ready[0]);
    close(ready[1]);
  }

  DesktopSession session_;
  SessionEnvironment environment_{session_.environment()};
  const std::string address_ = session_.environment().at("DBUS_SESSION_BUS_ADDRESS");
  HLLinuxRunLoop loop_;
  HLLinuxRunningApplications applications_{loop_};
  pid_t shell_ = -1;
};

TEST_F(Shell, ReplacesItsHelperInTheList) {
  startShell();
  const Owner helper(address_, {kService, kHelper});
  const std::vector<HLRunningApplication> list = applications_.list();
  ASSERT_THAT(list, SizeIs(1));
  EXPECT_EQ(list.front().pid, shell_);
  EXPECT_EQ(list.front().bundleIdentifier, "com.apple.notificationcenterui");
  EXPECT_TRUE(applications_.find(shell_));
  EXPECT_FALSE(applications_.find(getpid()));
}

TEST_F(Shell, GetsNoSignal) {
  startShell();
  const Owner helper(address_, {kService, kHelper});
  EXPECT_EQ(applications_.sendSignal(shell_, SIGTERM), HLSignalOutcome::refused);
  EXPECT_EQ(applications_.sendSignal(getpid(), SIGTERM), HLSignalOutcome::refused) << "the helper";
  EXPECT_EQ(waitpid(shell_, nullptr, WNOHANG), 0);
}

TEST_F(Shell, IsNoServerWithoutItsHelper) {
  startShell();
  const Owner server(address_, {kService});
  const Owner other(address_, {kHelper});
  const std::vector<HLRunningApplication> list = applications_.list();
  ASSERT_THAT(list, SizeIs(1));
  EXPECT_EQ(list.front().pid, getpid());
}

TEST_F(Shell, IsNoServerWhenNotRunning) {
  const Owner helper(address_, {kService, kHelper});
  EXPECT_THAT(applications_.list(), SizeIs(0));
}

TEST_F(Shell, IsReportedWhenItStarts) {
  const Owner helper(address_, {kService, kHelper});
  std::vector<std::int32_t> launched;
  applications_.observeLaunches([&](const HLRunningApplication& application) { launched.push_back(application.pid); });
  startShell();
  EXPECT_TRUE(Eventually([&] {
    loop_.runFor(0.01);
    return !launched.empty();
  }));
  EXPECT_EQ(launched, std::vector<std::int32_t>{shell_});
}

// An interpreter is told from another by its script. This process is the server; the signal is the one that does
// nothing.
TEST(RestartableServer, RunsCommandOfItsServiceFile) {
  SessionSetup setup = WithActivatable({"/bin/true"});
  setup.withAccessibility = false;
  const DesktopSession session(setup);
  const SessionEnvironment environment(session.environment());
  const Owner owner(session.environment().at("DBUS_SESSION_BUS_ADDRESS"), {kService});
  const std::string program = std::filesystem::read_symlink("/proc/self/exe");
  std::string whole = program;
  std::ifstream words("/proc/self/cmdline", std::ios::binary);
  std::string word;
  std::getline(words, word, '\0');
  while (std::getline(words, word, '\0')) whole += " '" + word + "'";
  HLLinuxRunLoop loop;
  for (const auto& [command, outcome] : {std::pair(program, HLSignalOutcome::sent),
                                         {whole, HLSignalOutcome::sent},
                                         {program + " script", HLSignalOutcome::refused},
                                         {whole + " script", HLSignalOutcome::refused},
                                         {"/bin/true", HLSignalOutcome::refused}}) {
    std::ofstream(session.directory() + "/data/dbus-1/services/server-1.service")
        << "[D-BUS Service]\nName=" << kService << "\nExec=" << command << "\n";
    EXPECT_EQ(HLLinuxRunningApplications(loop).sendSignal(getpid(), 0), outcome) << command;
  }
}

}  // namespace
