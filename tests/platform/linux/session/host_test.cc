// Process information, the run loop and the reports of a Linux host.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/linux/linux_host_report.h"
#include "platform/linux/linux_menu_bar.h"
#include "platform/linux/session/linux_process_info.h"
#include "platform/linux/session/linux_run_loop.h"
#include "tests/platform/linux/session/fake_process.h"
#include "tests/support/temporary_directory.h"

namespace {

using Clock = std::chrono::steady_clock;
using testing::ElementsAre;

// An environment variable of a test's own, or its absence.
class Variable {
 public:
  Variable(const char* name, const char* value) : name_(name) {
    if (const char* before = std::getenv(name)) before_ = before;
    set(value);
  }
  ~Variable() { set(before_ ? before_->c_str() : nullptr); }

 private:
  void set(const char* value) const { value == nullptr ? unsetenv(name_) : setenv(name_, value, 1); }
  const char* name_;
  std::optional<std::string> before_;
};

HLLinuxProcessInfo processWith(std::vector<const char*> arguments) {
  return {static_cast<int>(arguments.size()), const_cast<char**>(arguments.data())};
}

TEST(ProcessInfo, TheFirstArgumentIsTheExecutable) {
  HLLinuxProcessInfo process = processWith({"called-so", "--daemon", ""});
  const std::string executable = std::filesystem::read_symlink("/proc/self/exe");
  EXPECT_THAT(process.arguments(), ElementsAre(executable, "--daemon", ""));
}

TEST(ProcessInfo, KnowsItsProcessAndItsParent) {
  HLLinuxProcessInfo process = processWith({"program"});
  EXPECT_EQ(process.processIdentifier(), getpid());
  EXPECT_EQ(process.parentProcessIdentifier(), getppid());
}

TEST(ProcessInfo, ReadsTheEnvironment) {
  const Variable set("HUSHLET_TEST_VARIABLE", "");
  const Variable unset("HUSHLET_TEST_MISSING", nullptr);
  HLLinuxProcessInfo process = processWith({"program"});
  EXPECT_EQ(process.environment("HUSHLET_TEST_VARIABLE"), "");
  EXPECT_EQ(process.environment("HUSHLET_TEST_MISSING"), std::nullopt);
}

TEST(ProcessInfo, TakesHomeFromEnvironmentOrAccount) {
  HLLinuxProcessInfo process = processWith({"program"});
  {
    const Variable home("HOME", "/somewhere/");
    EXPECT_EQ(process.homeDirectory(), "/somewhere");
  }
  const Variable home("HOME", nullptr);
  EXPECT_EQ(process.homeDirectory(), getpwuid(getuid())->pw_dir);
}

TEST(ProcessInfo, ApplicationSupportIsTheDataHome) {
  HLLinuxProcessInfo process = processWith({"program"});
  const Variable home("HOME", "/home/ada");
  {
    const Variable data("XDG_DATA_HOME", "/data");
    EXPECT_EQ(process.applicationSupportDirectory(), "/data");
  }
  for (const char* useless : {static_cast<const char*>(nullptr), "", "relative/path"}) {
    const Variable data("XDG_DATA_HOME", useless);
    EXPECT_EQ(process.applicationSupportDirectory(), "/home/ada/.local/share");
  }
}

TEST(BundleInformation, IsBesideTheExecutable) {
  const TemporaryDirectory directory;
  const std::filesystem::path prefix = directory.path();
  std::filesystem::create_directories(prefix / "share/hushlet");
  std::ofstream(prefix / "share/hushlet/Info.plist")
      << "<plist><dict><key>CFBundleIdentifier</key><string>org.example.one</string></dict></plist>";
  const HLDictionary information = HLBundleInformation((prefix / "bin/program").string());
  ASSERT_NE(HLDictionaryValue(information, "CFBundleIdentifier"), nullptr);
  EXPECT_EQ(*HLDictionaryValue(information, "CFBundleIdentifier")->as<std::string>(), "org.example.one");
  EXPECT_TRUE(HLBundleInformation((prefix / "bin/deeper/program").string()).empty());
  std::ofstream(prefix / "share/hushlet/Info.plist") << "<plist><array/></plist>";
  EXPECT_TRUE(HLBundleInformation((prefix / "bin/program").string()).empty());
}

TEST(HostReport, AddsTheDesktopToTheSystem) {
  HLLinuxHostReport report;
  const Variable noDesktop("XDG_CURRENT_DESKTOP", nullptr);
  const Variable noSession("XDG_SESSION_TYPE", nullptr);
  const std::string system = report.systemVersion();
  EXPECT_NE(system, "");
  const Variable session("XDG_SESSION_TYPE", "x11");
  for (const auto& [desktop, added] : {std::pair("", ", x11"), std::pair("MATE", ", MATE, x11")}) {
    const Variable variable("XDG_CURRENT_DESKTOP", desktop);
    EXPECT_EQ(report.systemVersion(), system + added);
  }
}

TEST(MenuBarModule, IsNamedWhereItIsMissing) {
  FakeProcess process("/nonexistent");
  process.executable = "/nonexistent/bin/program";
  HLLinuxRunLoop loop;
  const auto made = HLLinuxMenuBar(process, loop).platform();
  ASSERT_TRUE(std::holds_alternative<std::string>(made));
  EXPECT_THAT(std::get<std::string>(made), testing::StartsWith("hushlet: the menu-bar application cannot be loaded: "
                                                               "/nonexistent/lib/hushlet/hushlet-desktop.so: "));
}

TEST(RunLoop, TheClockIsTheWallClock) {
  HLLinuxRunLoop loop;
  const double before = static_cast<double>(std::time(nullptr));
  EXPECT_GE(loop.now(), before);
  EXPECT_LE(loop.now(), before + 60);
}

TEST(RunLoop, SleepsThatLong) {
  HLLinuxRunLoop loop;
  const Clock::time_point begin = Clock::now();
  loop.sleep(0.05);
  EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(50));
}

TEST(RunLoop, RunsThatLong) {
  HLLinuxRunLoop loop;
  const Clock::time_point begin = Clock::now();
  loop.runFor(0.05);
  EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(50));
}

TEST(RunLoop, SkipsSleepWithoutPositiveTime) {
  HLLinuxRunLoop loop;
  const Clock::time_point begin = Clock::now();
  for (double seconds : {0.0, -1.0, std::nan("")}) loop.sleep(seconds);
  EXPECT_LT(Clock::now() - begin, std::chrono::seconds(1));
}

TEST(OperationQueue, RunsExactlyItsLimitAtOnce) {
  HLLinuxRunLoop loop;
  const auto queue = loop.makeOperationQueue("test", HLQualityOfService::userInitiated, 4);
  std::mutex mutex;
  std::condition_variable changed;
  int running = 0;
  int most = 0;
  for (int i = 0; i < 40; ++i) {
    queue->addOperation([&] {
      std::unique_lock lock(mutex);
      most = std::max(most, ++running);
      changed.notify_all();
      // Stays until four have been seen together, so that fewer threads would not do.
      changed.wait_for(lock, std::chrono::seconds(10), [&] { return most >= 4; });
      --running;
    });
  }
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(most, 4);
  EXPECT_EQ(running, 0);
}

TEST(OperationQueue, OperationsStartInTheirOrder) {
  HLLinuxRunLoop loop;
  const auto queue = loop.makeOperationQueue("test", HLQualityOfService::userInitiated, 1);
  std::vector<int> started;
  for (int i = 0; i < 20; ++i) {
    queue->addOperation([&started, i] { started.push_back(i); });
  }
  queue->waitUntilAllOperationsAreFinished();
  std::vector<int> inOrder;
  for (int i = 0; i < 20; ++i) inOrder.push_back(i);
  EXPECT_EQ(started, inOrder);
}

TEST(OperationQueue, IsUsedAgainAfterAWait) {
  HLLinuxRunLoop loop;
  const auto queue = loop.makeOperationQueue("test", HLQualityOfService::userInitiated, 2);
  std::atomic<int> done = 0;
  for (int round = 1; round <= 3; ++round) {
    for (int i = 0; i < 5; ++i) queue->addOperation([&] { ++done; });
    queue->waitUntilAllOperationsAreFinished();
    EXPECT_EQ(done, 5 * round);
  }
}

TEST(OperationQueue, ItsEndWaitsForItsOperations) {
  HLLinuxRunLoop loop;
  std::atomic<int> done = 0;
  {
    const auto queue =
        loop.makeOperationQueue("a name that is longer than the kernel takes", HLQualityOfService::userInitiated, 3);
    for (int i = 0; i < 10; ++i) queue->addOperation([&] { ++done; });
  }
  EXPECT_EQ(done, 10);
}

}  // namespace
