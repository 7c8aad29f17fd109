#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <string>

#include "platform/file_mode_mask.h"
#include "platform/linux/session/linux_user_notifications.h"
#include "tests/support/processes.h"

namespace {

std::string maskOf(pid_t pid) {
  std::ifstream status("/proc/" + std::to_string(pid) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("Umask:\t")) return line.substr(7);
  }
  return "unknown";
}

TEST(UserNotifications, PostUnderTheOriginalFileModeMask) {
  EXPECT_EQ(InChildProcess([] {
              prctl(PR_SET_CHILD_SUBREAPER, 1);  // takes in the detached process that waits and posts
              umask(023);
              HLRestrictFileModeMask();
              HLLinuxUserNotifications().add({"one", "", "", 30, false}, [](const std::optional<std::string>&) {});
              pid_t waiting = 0;
              std::ifstream("/proc/self/task/" + std::to_string(getpid()) + "/children") >> waiting;
              if (waiting <= 0) return std::string("none waits");
              std::string mask = maskOf(waiting);
              kill(waiting, SIGKILL);
              waitpid(waiting, nullptr, 0);
              return mask + " " + maskOf(getpid());
            }),
            "0023 0077");
}

}  // namespace
