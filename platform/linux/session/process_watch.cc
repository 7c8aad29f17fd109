#include "platform/linux/session/process_watch.h"

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <sstream>
#include <string>

// By number: the library's own declarations of these calls lack C linkage.

HLProcessWatch::HLProcessWatch(std::int32_t pid)
    : pid_(pid), descriptor_(static_cast<int>(syscall(SYS_pidfd_open, pid, 0))) {
  if (descriptor_ < 0) wasThere_ = errno != ESRCH && errno != EINVAL;
}

HLProcessWatch::~HLProcessWatch() {
  if (descriptor_ >= 0) close(descriptor_);
}

bool HLProcessWatch::hasEnded() const {
  if (descriptor_ < 0) return !wasThere_ || (kill(pid_, 0) != 0 && errno == ESRCH);
  pollfd entry{descriptor_, POLLIN, 0};
  return poll(&entry, 1, 0) > 0;
}

std::chrono::milliseconds HLProcessWatch::age() const {
  // The fields are counted from behind the name, which may hold anything; the start is the twentieth, in ticks since
  // boot.
  std::ifstream file("/proc/" + std::to_string(pid_) + "/stat");
  std::string line;
  std::getline(file, line);
  std::istringstream fields(line.substr(line.rfind(')') + 1));
  std::string field;
  for (int i = 0; i < 20; ++i) fields >> field;
  std::timespec now{};
  if (!fields || clock_gettime(CLOCK_BOOTTIME, &now) != 0) return std::chrono::hours(24 * 365);
  const std::int64_t started = std::strtoll(field.c_str(), nullptr, 10) * 1000 / sysconf(_SC_CLK_TCK);
  return std::chrono::milliseconds(std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000 - started);
}

void HLProcessWatch::sendSignal(int signal) const {
  if (descriptor_ >= 0) {
    syscall(SYS_pidfd_send_signal, descriptor_, signal, nullptr, 0);
  } else if (wasThere_) {
    kill(pid_, signal);
  }
}
