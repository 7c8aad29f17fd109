#include "tests/support/personal_log.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "tests/support/simulated_desktop.h"
#include "tests/support/temporary_directory.h"

namespace {

constexpr const char* kPath = "/tmp/hushlet-status.log";

}  // namespace

PersonalLogTurn::PersonalLogTurn() : file_(open(kPath, O_RDONLY | O_CREAT | O_CLOEXEC, 0666)) {
  if (file_ < 0 || flock(file_, LOCK_EX) != 0) throw std::system_error(errno, std::generic_category(), kPath);
  start_ = FileContent(kPath).size();
}

PersonalLogTurn::~PersonalLogTurn() { close(file_); }

std::vector<std::string> PersonalLogTurn::messages() const { return LogMessages(FileContent(kPath).substr(start_)); }
