#include "platform/linux/files/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr std::size_t kMostFileBytes = 1'000'000;
constexpr mode_t kDirectoryMode = 0700;  // as the XDG base directory rules have it

int writeAll(int descriptor, std::string_view content) {
  while (!content.empty()) {
    const ssize_t written = write(descriptor, content.data(), content.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return written < 0 ? errno : ENOSPC;
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

int fill(int descriptor, std::string_view content, mode_t mode) {
  if (const int error = writeAll(descriptor, content)) return error;
  return fchmod(descriptor, mode) == 0 && fsync(descriptor) == 0 ? 0 : errno;
}

}  // namespace

HLDescriptor::~HLDescriptor() {
  if (isOpen()) close(number_);
}

int HLMakeDirectories(const std::string& path) {
  for (std::size_t slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1)) {
    if (mkdir(path.substr(0, slash).c_str(), kDirectoryMode) != 0 && errno != EEXIST && errno != EROFS &&
        errno != EACCES) {
      return errno;  // the last two may tell of a directory that is there already; else the file tells of them
    }
  }
  return 0;
}

HLFileContent HLReadFile(const std::string& path) {
  const HLDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file.isOpen()) return {errno, ""};
  struct stat status {};
  if (fstat(file.number(), &status) != 0) return {errno, ""};
  if (!S_ISREG(status.st_mode)) return {S_ISDIR(status.st_mode) ? EISDIR : EINVAL, ""};
  HLFileContent read;
  std::array<char, 4096> buffer{};
  for (;;) {
    const ssize_t count = ::read(file.number(), buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return {errno, ""};
    if (count == 0) return read;
    read.content.append(buffer.data(), static_cast<std::size_t>(count));
    if (read.content.size() > kMostFileBytes) return {EFBIG, ""};
  }
}

int HLWriteFile(const std::string& path, std::string_view content, mode_t mode) {
  if (const int error = HLMakeDirectories(path)) return error;
  const std::size_t slash = path.rfind('/');
  const std::string directory = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  std::string temporary = directory + (slash == std::string::npos ? "/." : ".") + path.substr(slash + 1) + ".XXXXXX";
  {
    const HLDescriptor file(mkostemp(temporary.data(), O_CLOEXEC));
    if (!file.isOpen()) return errno;
    int error = fill(file.number(), content, mode);
    if (error == 0 && rename(temporary.c_str(), path.c_str()) != 0) error = errno;
    if (error != 0) {
      unlink(temporary.c_str());
      return error;
    }
  }
  // The file is in its place; that this outlives a power cut too is more than can be promised.
  const HLDescriptor place(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (place.isOpen()) (void)fsync(place.number());
  return 0;
}
