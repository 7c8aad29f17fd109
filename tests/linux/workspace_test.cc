// Opening addresses with programs of the test's own.
#include "platform/linux/workspace.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/linux/detached_program.h"
#include "tests/linux/fake_process.h"
#include "tests/linux/session/child_process.h"
#include "tests/support/temporary_directory.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr const char* kPane =
    "x-apple.systempreferences:com.apple.settings.PrivacySecurity.extension?Privacy_Accessibility";

class Workspace : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directory(programs());
    process_.variables["PATH"] = "relative:" + directory_.path() + "/none:" + programs();
  }

  [[nodiscard]] std::string programs() const { return directory_.path() + "/programs"; }
  [[nodiscard]] std::string report() const { return directory_.path() + "/report"; }

  void makeProgram(const std::string& name, const std::string& script) const {
    std::ofstream(programs() + "/" + name) << script;
    fs::permissions(programs() + "/" + name, fs::perms::owner_all);
  }

  // A program that says how it was called.
  void makeReporter(const std::string& name) const {
    makeProgram(name,
                "#!/bin/sh\necho \"${0##*/} $*\" >" + report() + ".new\nmv " + report() + ".new " + report() + "\n");
  }

  std::string reported() const {
    EXPECT_TRUE(Eventually([this] { return fs::exists(report()); }));
    std::string said = FileContent(report());
    fs::remove(report());
    return said;
  }

  TemporaryDirectory directory_;
  FakeProcess process_{directory_.path()};
  HLLinuxWorkspace workspace_{process_};
};

TEST_F(Workspace, OpensPagesAndMailByTheDesktopsChoice) {
  makeReporter("xdg-open");
  for (const char* address : {"https://updates.hushlet.example/quillmere/download", "http://127.0.0.1:80/a?b=c&d#e",
                              "HTTPS://Example.org", "mailto:ada@example.org?subject=a%20b", "http://[::1]/"}) {
    EXPECT_TRUE(workspace_.openAddress(address));
    EXPECT_EQ(reported(), std::string("xdg-open ") + address + "\n");
  }
}

TEST_F(Workspace, OpensNothingThatIsNoSuchAddress) {
  makeReporter("xdg-open");
  for (const std::string address :
       {"",
        "https://",
        "https:///path",
        "https://?x",
        "http://:80",
        "mailto:",
        "example.org",
        "/etc/passwd",
        "file:///etc/passwd",
        "javascript:alert(1)",
        "ftp://example.org/",
        "https//example.org",
        "https:example.org",
        "--help",
        "-v",
        "https://example.org/a b",
        "https://example.org/\"",
        "https://example.org/<a>",
        "https://example.org/\n",
        "https://example.org/\\",
        "https://exämple.org/",
        " https://example.org/",
        "x-other:pane",
        "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility",
        "x-apple.systempreferences:com.apple.settings.PrivacySecurity.extension?Privacy_Camera"}) {
    EXPECT_FALSE(workspace_.openAddress(address)) << address;
  }
  EXPECT_FALSE(workspace_.openAddress("https://" + std::string(10'000, 'a')));
  EXPECT_FALSE(workspace_.openAddress(std::string("https://a\0b", 11)));
  EXPECT_FALSE(fs::exists(report()));
}

TEST_F(Workspace, OpensTheAccessibilityScreenOfTheDesktop) {
  struct Row {
    const char* desktop;
    const char* program;
    const char* called;
  };
  for (const Row& row :
       std::vector<Row>{{"GNOME", "gnome-control-center", "gnome-control-center universal-access\n"},
                        {"ubuntu:GNOME", "gnome-control-center", "gnome-control-center universal-access\n"},
                        {"MATE", "mate-at-properties", "mate-at-properties \n"},
                        {"XFCE", "xfce4-accessibility-settings", "xfce4-accessibility-settings \n"},
                        {"X-Cinnamon", "cinnamon-settings", "cinnamon-settings universal-access\n"},
                        {"KDE", "systemsettings", "systemsettings kcm_access\n"},
                        {"KDE", "kcmshell5", "kcmshell5 kcm_access\n"},
                        {"LXQt", "lxqt-config", "lxqt-config \n"}}) {
    SCOPED_TRACE(row.program);
    fs::remove_all(programs());
    fs::create_directory(programs());
    process_.variables["XDG_CURRENT_DESKTOP"] = row.desktop;
    EXPECT_FALSE(workspace_.openAddress(kPane)) << "it is not installed";
    makeReporter(row.program);
    EXPECT_TRUE(workspace_.openAddress(kPane));
    EXPECT_EQ(reported(), row.called);
    process_.variables["XDG_CURRENT_DESKTOP"] = "Other";
    EXPECT_FALSE(workspace_.openAddress(kPane)) << "it belongs to another desktop";
    process_.variables.erase("XDG_CURRENT_DESKTOP");
    EXPECT_FALSE(workspace_.openAddress(kPane));
  }
}

TEST_F(Workspace, TriesTheNextProgramWhenOneCannotBeStarted) {
  process_.variables["XDG_CURRENT_DESKTOP"] = "KDE";
  makeProgram("systemsettings", "#!/nowhere/no-interpreter\n");
  EXPECT_FALSE(workspace_.openAddress(kPane));
  makeReporter("kcmshell6");
  EXPECT_TRUE(workspace_.openAddress(kPane));
  EXPECT_EQ(reported(), "kcmshell6 kcm_access\n");
}

TEST_F(Workspace, SaysWhenNothingCanOpenAPage) {
  process_.variables["PATH"] = programs();
  const std::string bus = "unix:path=" + directory_.path() + "/no-bus";
  const char* before = std::getenv("DBUS_SESSION_BUS_ADDRESS");
  const std::string kept = before == nullptr ? "" : before;
  setenv("DBUS_SESSION_BUS_ADDRESS", bus.c_str(), 1);
  EXPECT_FALSE(workspace_.openAddress("https://example.org"));
  before == nullptr ? unsetenv("DBUS_SESSION_BUS_ADDRESS") : setenv("DBUS_SESSION_BUS_ADDRESS", kept.c_str(), 1);
}

TEST_F(Workspace, WhatItStartsRunsByItself) {
  // The shell's own look at its descriptors, its session and its parent.
  makeProgram(
      "xdg-open",
      "#!/bin/sh\n{ for d in /proc/$$/fd/*; do echo \"${d##*/}=$(readlink $d)\"; done; cut -d' ' -f4,6 /proc/$$/stat;"
      " grep SigIgn /proc/$$/status; } >" +
          report() + ".new\nmv " + report() + ".new " + report() + "\n");
  const int leaked = fcntl(STDERR_FILENO, F_DUPFD, 200);  // survives an exec; no shell uses such a number itself
  signal(SIGPIPE, SIG_IGN);
  EXPECT_TRUE(workspace_.openAddress("https://example.org"));
  const std::string said = reported();
  signal(SIGPIPE, SIG_DFL);
  close(leaked);
  EXPECT_THAT(said, HasSubstr("0=/dev/null\n"));
  EXPECT_THAT(said, HasSubstr("2=/dev/null\n"));
  EXPECT_EQ(said.find("\n" + std::to_string(leaked) + "="), std::string::npos) << said;
  EXPECT_EQ(said.find(std::to_string(getpid()) + " "), std::string::npos) << said;
  EXPECT_EQ(said.find(" " + std::to_string(getsid(0)) + "\n"), std::string::npos) << said;
  EXPECT_THAT(said, HasSubstr("SigIgn:\t0000000000000000"));
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child is left";
  EXPECT_EQ(errno, ECHILD);
}

TEST_F(Workspace, DoesNotWaitForWhatItStarts) {
  makeProgram("xdg-open", "#!/bin/sh\nmkfifo " + report() + ".pipe\necho $$ >" + report() + ".new\nmv " + report() +
                              ".new " + report() + "\nread line <" + report() + ".pipe\n");
  EXPECT_TRUE(workspace_.openAddress("https://example.org"));
  const pid_t pid = std::stoi(reported());
  EXPECT_EQ(kill(pid, 0), 0);
  kill(pid, SIGKILL);
}

TEST(DetachedProgram, ThatIsNotThereIsNotStarted) {
  EXPECT_FALSE(HLStartDetached("/nowhere/at/all", {"all"}));
  EXPECT_FALSE(HLStartDetached("/etc/passwd", {"passwd"}));
  EXPECT_TRUE(HLStartDetached("/bin/true", {"true"}));
}

}  // namespace
