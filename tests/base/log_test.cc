#include "base/log.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "platform/run_loop.h"
#include "tests/support/listener.h"
#include "tests/support/personal_log.h"
#include "tests/support/processes.h"
#include "tests/support/simulated_desktop.h"
#include "tests/support/spies.h"
#include "tests/support/temporary_directory.h"

namespace {

// The local time zone, and the file mode mask, for one test.
class Log : public testing::Test {
 protected:
  Log() : mask_(umask(022)) {}
  ~Log() override {
    umask(mask_);
    unsetenv("TZ");
    tzset();
  }

  void setZone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
  }

  [[nodiscard]] std::string path(const std::string& name) const { return desktop_.home() + "/" + name; }
  [[nodiscard]] std::string content(const std::string& name) const { return FileContent(path(name)); }

  SimulatedDesktop desktop_{"{}"};
  SpiedPlatform spied_{desktop_.platform()};

 private:
  mode_t mask_;
};

TEST_F(Log, WritesTimeAndMessage) {
  spied_.runLoop.fixedNow = 1700000000.25;
  setZone("UTC0");
  HLAppendLineToPath(path("log"), "scan root=window-0 visited=1 candidates=0");
  EXPECT_EQ(content("log"), "2023-11-14 22:13:20.250 +0000 scan root=window-0 visited=1 candidates=0\n");
}

TEST_F(Log, WritesLocalTimesWithOffset) {
  struct Case {
    const char* zone;
    double now;
    const char* time;
  };
  const Case cases[] = {
      {"UTC0", 0, "1970-01-01 00:00:00.000 +0000"},
      {"XXX-1", 1700000000, "2023-11-14 23:13:20.000 +0100"},
      {"XXX-5:45", 1700000000, "2023-11-15 03:58:20.000 +0545"},
      {"XXX3:30", 1700000000, "2023-11-14 18:43:20.000 -0330"},
      {"XXX0:30", 1700000000, "2023-11-14 21:43:20.000 -0030"},
      {"CET-1CEST,M3.5.0,M10.5.0/3", 1700000000, "2023-11-14 23:13:20.000 +0100"},
      {"CET-1CEST,M3.5.0,M10.5.0/3", 1690000000, "2023-07-22 06:26:40.000 +0200"},
  };
  for (const Case& each : cases) {
    setZone(each.zone);
    spied_.runLoop.fixedNow = each.now;
    std::filesystem::remove(path("log"));
    HLAppendLineToPath(path("log"), "x");
    EXPECT_EQ(content("log"), std::string(each.time) + " x\n") << each.zone;
  }
}

TEST_F(Log, FollowsTimeZoneChanges) {
  spied_.runLoop.fixedNow = 1700000000;
  setZone("UTC0");
  HLAppendLineToPath(path("log"), "x");
  setenv("TZ", "XXX-5:45", 1);  // no tzset(): nobody but the log looks at the zone
  HLAppendLineToPath(path("log"), "y");
  EXPECT_EQ(content("log"), "2023-11-14 22:13:20.000 +0000 x\n2023-11-15 03:58:20.000 +0545 y\n");
}

TEST_F(Log, MillisecondsAreCutNotRounded) {
  setZone("UTC0");
  for (const auto& [now, milliseconds] : {std::pair{1700000000.9996, "999"},
                                          {1700000000.0625, "062"},
                                          {1700000000.0078125, "007"},
                                          {1700000000.5, "500"}}) {
    spied_.runLoop.fixedNow = now;
    std::filesystem::remove(path("log"));
    HLAppendLineToPath(path("log"), "x");
    EXPECT_EQ(content("log"), std::string("2023-11-14 22:13:20.") + milliseconds + " +0000 x\n");
  }
}

TEST_F(Log, UsesThePlatformsClock) {
  setZone("UTC0");
  const double now = desktop_.platform().runLoop->now();
  HLAppendLineToPath(path("log"), "x");
  std::tm time{};
  const std::string line = content("log");
  ASSERT_NE(strptime(line.c_str(), "%Y-%m-%d %H:%M:%S", &time), nullptr) << line;
  EXPECT_EQ(static_cast<double>(timegm(&time)), std::floor(now));
}

TEST_F(Log, IgnoresTheLocale) {
  const std::regex line(R"(^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} [+-]\d{4} message\n$)");
  HLAppendLineToPath(path("log"), "message");
  EXPECT_TRUE(std::regex_match(content("log"), line)) << content("log");
}

TEST_F(Log, AppendsLines) {
  std::ofstream(path("log")) << "without an end";
  HLAppendLineToPath(path("log"), "one");
  HLAppendLineToPath(path("log"), "two");
  const std::string whole = content("log");
  EXPECT_EQ(whole.substr(0, 14), "without an end");
  const std::regex rest(R"(without an end\S+ \S+ \S+ one\n\S+ \S+ \S+ two\n)");
  EXPECT_TRUE(std::regex_match(whole, rest)) << whole;
}

TEST_F(Log, WritesLineFeedsUnchanged) {
  HLAppendLineToPath(path("log"), "one\ntwo\n\tGröße 日本 😀");
  const std::string whole = content("log");
  EXPECT_EQ(whole.substr(30), "one\ntwo\n\tGröße 日本 😀\n");
}

TEST_F(Log, WritesEmptyMessages) {
  HLAppendLineToPath(path("log"), "");
  EXPECT_EQ(content("log").substr(29), " \n");
}

TEST_F(Log, DropsMessagesThatCannotBeEncoded) {
  for (const char* text : {"half a pair \xED\xA0\xBD", "\xED\xB8\x80", "\xFF", "cut short \xE2\x82", "\xC0\x80"}) {
    HLAppendLineToPath(path("new/log"), text);
    EXPECT_FALSE(std::filesystem::exists(path("new"))) << "nothing is made for it";
  }
  HLAppendLineToPath(path("new/log"), "\uFFFD is a character");
  EXPECT_NE(content("new/log"), "");
}

TEST_F(Log, DoesNothingWithoutAPath) { HLAppendLineToPath(std::nullopt, "message"); }

TEST_F(Log, CreatesDirectoriesWithDefaultPermissions) {
  HLAppendLineToPath(path("a/b/c/log"), "message");
  EXPECT_EQ(LogMessages(content("a/b/c/log")), std::vector<std::string>{"message"});
  EXPECT_EQ(FileMode(path("a")), 0755U);
  EXPECT_EQ(FileMode(path("a/b/c")), 0755U);
  EXPECT_EQ(FileMode(path("a/b/c/log")), 0644U);
}

TEST_F(Log, KeepsPermissionsOfExistingFiles) {
  std::ofstream(path("log")) << "";
  chmod(path("log").c_str(), 0600);
  HLAppendLineToPath(path("log"), "message");
  EXPECT_EQ(FileMode(path("log")), 0600U);
}

TEST_F(Log, AcceptsAPathWithoutDirectory) {
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(desktop_.home());
  HLAppendLineToPath(std::string("plain.log"), "message");
  std::filesystem::current_path(before);
  EXPECT_EQ(LogMessages(content("plain.log")), std::vector<std::string>{"message"});
}

TEST_F(Log, IgnoresUnwritablePaths) {
  std::filesystem::create_directory(path("directory"));
  HLAppendLineToPath(path("directory"), "message");
  EXPECT_TRUE(std::filesystem::is_empty(path("directory")));
  std::ofstream(path("file")) << "content";
  HLAppendLineToPath(path("file/log"), "message");
  EXPECT_EQ(content("file"), "content");
  HLAppendLineToPath(std::string("/dev/full"), "message");
  HLAppendLineToPath(std::string(""), "message");
}

// What a child process returns that dies of a hang after some seconds.
std::string withinSeconds(const std::function<std::string()>& function) {
  return InChildProcess([&function] {
    alarm(20);
    return function();
  });
}

TEST_F(Log, NeverBlocksOnAFifo) {
  ASSERT_EQ(mkfifo(path("log").c_str(), 0600), 0);
  EXPECT_EQ(withinSeconds([this] {
              HLAppendLineToPath(path("log"), "message");
              return std::string("went on");
            }),
            "went on");
}

TEST_F(Log, WritesIntoNoFifo) {
  ASSERT_EQ(mkfifo(path("log").c_str(), 0600), 0);
  const int reader = open(path("log").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  ASSERT_GE(reader, 0);
  HLAppendLineToPath(path("log"), "message");
  char byte = 0;
  EXPECT_EQ(read(reader, &byte, 1), 0) << "nobody writes";
  close(reader);
}

TEST_F(Log, WritesIntoNoDevice) {
  const int master = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  ASSERT_GE(master, 0);
  ASSERT_EQ(grantpt(master), 0);
  ASSERT_EQ(unlockpt(master), 0);
  HLAppendLineToPath(std::string(ptsname(master)), "message");
  char byte = 0;
  EXPECT_LE(read(master, &byte, 1), 0);
  close(master);
}

TEST_F(Log, LeavesASocketAlone) {
  const Listener listener(path("log"));
  HLAppendLineToPath(path("log"), "message");
  EXPECT_TRUE(std::filesystem::is_socket(path("log")));
}

TEST_F(Log, FollowsNoLinkAtItsPath) {
  std::ofstream(path("target")) << "somebody else's";
  std::filesystem::create_symlink(path("target"), path("log"));
  std::filesystem::create_symlink(path("missing"), path("dangling"));
  HLAppendLineToPath(path("log"), "message");
  HLAppendLineToPath(path("dangling"), "message");
  EXPECT_EQ(content("target"), "somebody else's");
  EXPECT_FALSE(std::filesystem::exists(path("missing")));
}

TEST_F(Log, FollowsALinkedDirectory) {
  std::filesystem::create_directory(path("directory"));
  std::filesystem::create_symlink(path("directory"), path("link"));
  HLAppendLineToPath(path("link/log"), "message");
  EXPECT_EQ(LogMessages(content("directory/log")), std::vector<std::string>{"message"});
}

void limitFileSize(rlim_t bytes) {
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  limit.rlim_cur = bytes;
  setrlimit(RLIMIT_FSIZE, &limit);
}

bool isFileSizeSignal(int (*in)(sigset_t*)) {
  sigset_t set;
  in(&set);
  return sigismember(&set, SIGXFSZ) == 1;
}
bool isFileSizeSignalPending() { return isFileSizeSignal(sigpending); }
bool isFileSizeSignalBlocked() {
  return isFileSizeSignal([](sigset_t* set) { return pthread_sigmask(SIG_SETMASK, nullptr, set); });
}

TEST_F(Log, SurvivesTheFileSizeLimit) {
  spied_.runLoop.fixedNow = 1700000000;
  setZone("UTC0");
  EXPECT_EQ(InChildProcess([this] {
              limitFileSize(64);
              for (const char* message : {"12345", "begins before the limit", "begins at it"}) {
                HLAppendLineToPath(path("log"), message);
              }
              if (isFileSizeSignalPending() || isFileSizeSignalBlocked()) return std::string("a signal is left");
              limitFileSize(RLIM_INFINITY);
              HLAppendLineToPath(path("log"), "whole again");
              return std::string("alive");
            }),
            "alive");
  EXPECT_EQ(content("log"),
            "2023-11-14 22:13:20.000 +0000 12345\n"
            "2023-11-14 22:13:20.000 +00\n"
            "2023-11-14 22:13:20.000 +0000 whole again\n");
}

TEST_F(Log, LeavesNoHalfOfACharacter) {
  setZone("UTC0");
  spied_.runLoop.fixedNow = 1700000000;
  const std::string time = "2023-11-14 22:13:20.000 +0000 ";
  for (const auto& [bytes, cut] :
       {std::pair{2, "a\n"}, {3, "ab\n"}, {4, "ab?\n"}, {5, "ab??\n"}, {6, "ab???\n"}, {7, "ab\U0001F600\n"}}) {
    std::filesystem::remove(path("log"));
    (void)InChildProcess([this, &time, kept = bytes] {
      limitFileSize(time.size() + static_cast<rlim_t>(kept));
      HLAppendLineToPath(path("log"), "ab\U0001F600\U0001F600");
      return std::string();
    });
    EXPECT_EQ(content("log"), time + cut);
  }
}

TEST_F(Log, KeepsTheCallersOwnSignal) {
  EXPECT_EQ(InChildProcess([this] {
              sigset_t signals;
              sigemptyset(&signals);
              sigaddset(&signals, SIGXFSZ);
              pthread_sigmask(SIG_BLOCK, &signals, nullptr);
              raise(SIGXFSZ);
              HLAppendLineToPath(path("log"), "message");
              return std::string(isFileSizeSignalPending() && isFileSizeSignalBlocked() ? "kept" : "lost");
            }),
            "kept");
}

TEST_F(Log, WritesWhileStandardInputIsClosed) {
  const int input = dup(0);
  close(0);
  HLAppendLineToPath(path("log"), "descriptor 0");
  dup2(input, 0);
  close(input);
  EXPECT_NE(content("log").find(" descriptor 0\n"), std::string::npos);
}

TEST_F(Log, LeavesNoDescriptorOpen) {
  const auto firstFree = [] {
    const int free = dup(0);
    close(free);
    return free;
  };
  const int before = firstFree();
  for (const char* name : {"log", "log", "new/log"}) {
    errno = ENOENT;
    HLAppendLineToPath(path(name), "message");
  }
  EXPECT_EQ(firstFree(), before);
}

TEST_F(Log, PutsDiagnosticsIntoTheStateDirectory) {
  HLAppendDiagnostics("scan root=%@ visited=%ld candidates=%lu", std::string("window-0"), std::int64_t{4},
                      std::size_t{2});
  HLAppendDiagnostics("no arguments, 100%%");
  EXPECT_EQ(desktop_.diagnostics(),
            (std::vector<std::string>{"scan root=window-0 visited=4 candidates=2", "no arguments, 100%"}));
}

TEST_F(Log, SharesThePersonalStatusLog) {
  const PersonalLogTurn log;
  HLAppendLog("%@ end", desktop_.home());
  EXPECT_EQ(log.messages(), std::vector<std::string>{desktop_.home() + " end"});
  EXPECT_TRUE(std::filesystem::exists("/tmp/hushlet-status.log"));
  EXPECT_FALSE(std::filesystem::exists(desktop_.diagnosticsPath()));
}

TEST_F(Log, KeepsConcurrentLinesWhole) {
  constexpr int kProcesses = 8;
  constexpr int kThreads = 2;
  constexpr int kLines = 250;  // of each thread
  const auto lineOf = [](int process, int thread, int line) {
    const std::string name = std::to_string(process) + "." + std::to_string(thread) + "." + std::to_string(line);
    return name + " " +
           std::string(3000 + static_cast<std::size_t>(line * 7 % 2000), static_cast<char>('a' + process)) + " " + name;
  };
  const std::string file = path("shared/log");
  spied_.runLoop.fixedNow = 1700000000;
  std::fflush(nullptr);
  std::vector<pid_t> children;
  for (int process = 0; process < kProcesses; ++process) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      std::vector<std::thread> threads;
      for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&file, &lineOf, process, thread] {
          for (int line = 0; line < kLines; ++line) HLAppendLineToPath(file, lineOf(process, thread, line));
        });
      }
      for (std::thread& thread : threads) thread.join();
      _exit(0);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);
  }
  const std::vector<std::string> messages = LogMessages(FileContent(file));
  const std::multiset<std::string> written(messages.begin(), messages.end());
  ASSERT_EQ(written.size(), static_cast<std::size_t>(kProcesses * kThreads * kLines));
  for (int process = 0; process < kProcesses; ++process) {
    for (int thread = 0; thread < kThreads; ++thread) {
      for (int line = 0; line < kLines; ++line) ASSERT_EQ(written.count(lineOf(process, thread, line)), 1U);
    }
  }
}

}  // namespace
