#include "base/log.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <ctime>

#include "base/format.h"
#include "base/paths.h"
#include "platform/platform.h"
#include "platform/run_loop.h"
#include "platform/text.h"
#include "platform/threads/thread_safety.h"

namespace {

// "yyyy-MM-dd HH:mm:ss.SSS Z" in local time; every field used here is the same in every locale.
std::string timestamp(double now) {
  const auto milliseconds = static_cast<std::int64_t>(std::floor(now * 1000));
  const std::time_t seconds = milliseconds / 1000;
  std::array<char, 32> date{};
  std::array<char, 16> zone{};
  std::array<char, 8> fraction{};
  {
    static HLMutex mutex;  // tzset() and strftime() change the C library's global time zone
    const HLLock lock(mutex);
    std::tm local{};
    ::tzset();  // localtime_r() reads the system's zone at its first call only
    ::localtime_r(&seconds, &local);
    std::strftime(date.data(), date.size(), "%Y-%m-%d %H:%M:%S", &local);
    std::strftime(zone.data(), zone.size(), "%z", &local);
  }
  std::snprintf(fraction.data(), fraction.size(), ".%03d", static_cast<int>(milliseconds % 1000));
  return HLFormat("%s%s %s", date.data(), fraction.data(), zone.data());
}

// Opens a regular file for appending, and creates a missing one. Returns a descriptor, or -1. Follows no symbolic link
// in the last part of the path: the personal status log is in a directory where every user may plant one. O_NONBLOCK
// keeps a FIFO without a reader from blocking the open.
int openLog(const std::string& path) {
  const int file =
      ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY, 0666);
  if (file < 0) return -1;
  struct stat status {};
  if (::fstat(file, &status) == 0 && S_ISREG(status.st_mode)) return file;
  ::close(file);
  return -1;
}

// Blocks SIGXFSZ on the calling thread. A write beyond the file size limit raises it, and its default action ends the
// process.
class FileSizeSignalBlock {
 public:
  FileSizeSignalBlock() {
    sigemptyset(&signal_);
    sigaddset(&signal_, SIGXFSZ);
    wasPending_ = isPending();
    ::pthread_sigmask(SIG_BLOCK, &signal_, &before_);
  }
  FileSizeSignalBlock(const FileSizeSignalBlock&) = delete;
  FileSizeSignalBlock& operator=(const FileSizeSignalBlock&) = delete;
  // Consumes the signal that was raised meanwhile, or unblocking would deliver it.
  ~FileSizeSignalBlock() {
    int number = 0;
    if (!wasPending_ && isPending()) ::sigwait(&signal_, &number);
    ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }

 private:
  static bool isPending() {
    sigset_t pending;
    ::sigpending(&pending);
    return sigismember(&pending, SIGXFSZ) == 1;
  }

  sigset_t signal_{};
  sigset_t before_{};
  bool wasPending_ = false;
};

// Replaces the last character of a cut line by a line feed, so that the next line begins on a line of its own. These
// bytes are ours: the file offset is the end of what this descriptor wrote, even if other processes have appended. A
// full disk still allows overwriting.
void endCutLine(int file, std::string_view cut) {
  std::size_t last = cut.size() - 1;
  while (last > 0 && (cut[last] & 0xC0) == 0x80) --last;
  const std::string ending = std::string(cut.size() - last - 1, '?') + '\n';
  const off_t end = ::lseek(file, 0, SEEK_CUR);
  // Linux ignores the offset of pwrite() under O_APPEND.
  if (end < 0 || ::fcntl(file, F_SETFL, 0) != 0) return;
  (void)!::pwrite(file, ending.data(), ending.size(), end - static_cast<off_t>(ending.size()));
}

}  // namespace

void HLAppendLineToPath(const std::optional<std::string>& path, std::string_view message) {
  if (!path || !HLIsEncodable(message)) return;
  const std::string line = HLFormat("%@ %@\n", timestamp(HLCurrentPlatform().runLoop->now()), message);
  int file = openLog(*path);
  if (file < 0 && errno == ENOENT) {
    HLCreateDirectories(path->substr(0, path->find_last_of('/')));
    file = openLog(*path);
  }
  if (file < 0) return;
  {
    const FileSizeSignalBlock block;
    // One write: a second one for the rest could land behind another process's line.
    const ssize_t written = ::write(file, line.data(), line.size());
    const auto length = static_cast<std::size_t>(std::max<ssize_t>(written, 0));
    if (length > 0 && length < line.size()) endCutLine(file, std::string_view(line).substr(0, length));
  }
  ::close(file);
}
