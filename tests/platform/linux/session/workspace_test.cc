// Opening addresses with programs of the test's own.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/file_mode_mask.h"
#include "platform/linux/session/detached_program.h"
#include "platform/linux/session/linux_workspace.h"
#include "platform/threads/thread_safety.h"
#include "tests/platform/linux/session/fake_process.h"
#include "tests/platform/linux/support/desktop_session.h"
#include "tests/support/processes.h"
#include "tests/support/temporary_directory.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

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

TEST_F(Workspace, OpensAddressesByDesktopChoice) {
  makeReporter("xdg-open");
  for (const char* address : {"https://updates.hushlet.example/quillmere/download", "http://127.0.0.1:80/a?b=c&d#e",
                              "HTTPS://Example.org", "mailto:ada@example.org?subject=a%20b", "http://[::1]/"}) {
    EXPECT_TRUE(workspace_.openAddress(address));
    EXPECT_EQ(reported(), std::string("xdg-open ") + address + "\n");
  }
}

TEST_F(Workspace, RejectsInvalidAndOtherAddresses) {
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

TEST_F(Workspace, OpensAccessibilitySettingsOfTheDesktop) {
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

TEST_F(Workspace, TriesAnotherProgramAfterAFailure) {
  process_.variables["XDG_CURRENT_DESKTOP"] = "KDE";
  makeProgram("systemsettings", "#!/nowhere/no-interpreter\n");
  EXPECT_FALSE(workspace_.openAddress(kPane));
  makeReporter("kcmshell6");
  EXPECT_TRUE(workspace_.openAddress(kPane));
  EXPECT_EQ(reported(), "kcmshell6 kcm_access\n");
}

TEST_F(Workspace, FailsWithoutProgramsAndBus) {
  process_.variables["PATH"] = programs();
  const std::string bus = "unix:path=" + directory_.path() + "/no-bus";
  const char* before = std::getenv("DBUS_SESSION_BUS_ADDRESS");
  const std::string kept = before == nullptr ? "" : before;
  setenv("DBUS_SESSION_BUS_ADDRESS", bus.c_str(), 1);
  EXPECT_FALSE(workspace_.openAddress("https://example.org"));
  before == nullptr ? unsetenv("DBUS_SESSION_BUS_ADDRESS") : setenv("DBUS_SESSION_BUS_ADDRESS", kept.c_str(), 1);
}

// The portal, as far as addresses go: a program that writes down what it is asked for.
class AddressPortal {
 public:
  AddressPortal() {
    static const sd_bus_vtable kTable[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("OpenURI", "ssa{sv}", "o", &AddressPortal::openUri, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_VTABLE_END};
    if (sd_bus_open_user(&bus_) < 0 ||
        sd_bus_add_object_vtable(bus_, nullptr, "/org/freedesktop/portal/desktop", "org.freedesktop.portal.OpenURI",
                                 kTable, this) < 0 ||
        sd_bus_request_name(bus_, "org.freedesktop.portal.Desktop", 0) < 0) {
      throw std::runtime_error("no portal");
    }
    thread_ = std::thread([this] {
      while (!ending_) {
        if (sd_bus_process(bus_, nullptr) == 0) sd_bus_wait(bus_, 5'000);
      }
    });
  }
  AddressPortal(const AddressPortal&) = delete;
  AddressPortal& operator=(const AddressPortal&) = delete;
  ~AddressPortal() {
    ending_ = true;
    thread_.join();
    sd_bus_flush_close_unref(bus_);
  }

  // After the call has been answered, and so on the asker's thread.
  [[nodiscard]] std::string opened() {
    const HLLock lock(mutex_);
    return opened_;
  }

 private:
  static int openUri(sd_bus_message* message, void* data, sd_bus_error*) {
    auto& self = *static_cast<AddressPortal*>(data);
    const char* window = nullptr;
    const char* address = nullptr;
    sd_bus_message_read(message, "ss", &window, &address);
    {
      const HLLock lock(self.mutex_);
      self.opened_ = address;
    }
    return sd_bus_reply_method_return(message, "o", "/org/freedesktop/portal/desktop/request/1/2");
  }

  sd_bus* bus_ = nullptr;
  HLMutex mutex_;
  std::string opened_ HL_GUARDED_BY(mutex_);
  std::atomic<bool> ending_ = false;
  std::thread thread_;
};

TEST_F(Workspace, OpensPagesByPortalWithoutPrograms) {
  DesktopSession session(WithoutAccessibility());
  const SessionEnvironment environment(session.environment());
  EXPECT_FALSE(workspace_.openAddress("https://example.org")) << "there is no portal either";
  AddressPortal portal;
  EXPECT_TRUE(workspace_.openAddress("https://example.org"));
  EXPECT_EQ(portal.opened(), "https://example.org");
  EXPECT_FALSE(workspace_.openAddress("file:///etc/passwd"));
  EXPECT_EQ(portal.opened(), "https://example.org");
}

TEST_F(Workspace, WhatItStartsRunsByItself) {
  // The shell's own look at its descriptors, its session and its parent.
  makeProgram(
      "xdg-open",
      "#!/bin/sh\n{ for d in /proc/$$/fd/*; do echo \"${d##*/}=$(readlink $d)\"; done; cut -d' ' -f4,6 /proc/$$/stat;"
      " grep SigIgn /proc/$$/status; } >" +
          report() + ".new\nmv " + report() + ".new " + report() + "\n");
  constexpr int kLeaked = 200;  // no shell uses such a number itself
  // In a child process, which has no other children: sessions of earlier tests may have left orphans to this one.
  const std::string said = InChildProcess([this] {
    fcntl(STDERR_FILENO, F_DUPFD, kLeaked);  // survives an exec
    signal(SIGPIPE, SIG_IGN);
    if (!workspace_.openAddress("https://example.org")) return std::string("not opened");
    const std::string seen = reported();
    const bool childLeft = waitpid(-1, nullptr, WNOHANG) != -1 || errno != ECHILD;
    const bool isParent = seen.find("\n" + std::to_string(getpid()) + " ") != std::string::npos;
    return seen + (childLeft ? "a child is left\n" : "") + (isParent ? "its parent waits\n" : "");
  });
  EXPECT_THAT(said, HasSubstr("0=/dev/null\n"));
  EXPECT_THAT(said, HasSubstr("2=/dev/null\n"));
  EXPECT_THAT(said, Not(HasSubstr("\n" + std::to_string(kLeaked) + "=")));
  EXPECT_THAT(said, Not(HasSubstr(" " + std::to_string(getsid(0)) + "\n")));
  // The C library keeps two signals above these to itself.
  EXPECT_THAT(said, testing::ContainsRegex("SigIgn:\t[0-9a-f]{8}[08]0000000"));
  EXPECT_THAT(said, Not(HasSubstr("a child is left")));
  EXPECT_THAT(said, Not(HasSubstr("its parent waits")));
}

TEST_F(Workspace, StartsProgramsUnderTheOriginalMask) {
  makeProgram("xdg-open", "#!/bin/sh\numask >" + report() + ".new\nmv " + report() + ".new " + report() + "\n");
  EXPECT_EQ(InChildProcess([this] {
              umask(023);
              HLRestrictFileModeMask();
              const std::string started = workspace_.openAddress("https://example.org") ? reported() : "";
              return started + std::to_string(umask(0));
            }),
            "0023\n" + std::to_string(077));
}

TEST_F(Workspace, ReturnsBeforeStartedProgramsEnd) {
  makeProgram("xdg-open", "#!/bin/sh\nmkfifo " + report() + ".pipe\necho $$ >" + report() + ".new\nmv " + report() +
                              ".new " + report() + "\nread line <" + report() + ".pipe\n");
  EXPECT_TRUE(workspace_.openAddress("https://example.org"));
  const pid_t pid = std::stoi(reported());
  EXPECT_EQ(kill(pid, 0), 0);
  kill(pid, SIGKILL);
}

TEST(DetachedProgram, ReportsWhetherItCouldStart) {
  EXPECT_FALSE(HLStartDetached("/nowhere/at/all", {"all"}));
  EXPECT_FALSE(HLStartDetached("/etc/passwd", {"passwd"}));
  EXPECT_TRUE(HLStartDetached("/bin/true", {"true"}));
}

}  // namespace
