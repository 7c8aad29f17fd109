#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <functional>
#include <string>

#include "platform/file_mode_mask.h"
#include "platform/linux/session/linux_user_notifications.h"
#include "tests/platform/linux/support/child_process.h"
#include "tests/support/processes.h"

namespace {

std::string maskOf(pid_t pid) {
  std::ifstream status("/proc/" + std::to_string(pid) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("Umask:\t")) return line.substr(7);
  }
  return "unknown";
}

// Posts with a delay, and returns what `look` says of the detached process that waits.
std::string ofWaitingProcess(const std::function<std::string(pid_t)>& look) {
  prctl(PR_SET_CHILD_SUBREAPER, 1);  // takes in the detached process
  HLLinuxUserNotifications().add({"one", "", "", 30, false}, [](const std::optional<std::string>&) {});
  pid_t waiting = 0;
  std::ifstream("/proc/self/task/" + std::to_string(getpid()) + "/children") >> waiting;
  if (waiting <= 0) return "none waits";
  std::string seen = look(waiting);
  kill(waiting, SIGKILL);
  waitpid(waiting, nullptr, 0);
  return seen;
}

TEST(UserNotifications, PostWithTheOriginalUmask) {
  EXPECT_EQ(InChildProcess([] {
              umask(023);
              HLRestrictFileModeMask();
              return ofWaitingProcess(maskOf) + " " + maskOf(getpid());
            }),
            "0023 0077");
}

TEST(UserNotifications, KeepNothingOpenWhileWaiting) {
  EXPECT_EQ(InChildProcess([] {
              const int held = open("/dev/null", O_RDONLY);
              return ofWaitingProcess([held](pid_t waiting) -> std::string {
                const std::string open = "/proc/" + std::to_string(waiting) + "/fd/" + std::to_string(held);
                return Eventually([&open] { return access(open.c_str(), F_OK) != 0; }) ? "closed" : "open";
              });
            }),
            "closed");
}

}  // namespace
