#include "platform/linux/process_watch.h"

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

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

void HLProcessWatch::sendSignal(int signal) const {
  if (descriptor_ >= 0) {
    syscall(SYS_pidfd_send_signal, descriptor_, signal, nullptr, 0);
  } else if (wasThere_) {
    kill(pid_, signal);
  }
}
