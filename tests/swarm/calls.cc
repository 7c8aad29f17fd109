#include "tests/swarm/calls.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string_view>

namespace {

CallWatch* current = nullptr;

constexpr const char* kFixedStatusLog = "/tmp/hushlet-status.log";

bool isAt(const std::string& bytes, std::size_t at, std::string_view pattern) {
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const char byte = at + i < bytes.size() ? bytes[at + i] : '\0';
    const bool fits = pattern[i] == '0'   ? byte >= '0' && byte <= '9'
                      : pattern[i] == '+' ? byte == '+' || byte == '-'
                                          : byte == pattern[i];
    if (!fits) return false;
  }
  return true;
}

bool isStatusLog(const std::string& path) { return path.ends_with("status.log"); }
bool isDiagnosticsLog(const std::string& path) { return path.ends_with("hushlet_detailed_diagnostics.log"); }

}  // namespace

CallWatch::CallWatch(Watcher& watcher, const std::string& home)
    : watcher_(watcher),
      home_(home),
      state_(home + (watcher.course.plan.isProduct ? "/.local/share/com.tessaly.hushlet" : "/.local/state/hushlet")) {
  current = this;
}

CallWatch::~CallWatch() { current = nullptr; }

void CallWatch::wrote(const std::string& named, bool makesDirectory) {
  const std::string path = std::filesystem::path(named).lexically_normal();
  const bool isState = path == state_ || path.starts_with(state_ + "/");
  const bool isAbove = makesDirectory && (state_.starts_with(path + "/") || path == "/tmp");
  if (isState || isAbove || (path == kFixedStatusLog && !watcher_.course.plan.isProduct)) return;
  watcher_.course.path = path;
  watcher_.checker.check(When::write, watcher_.course);
}

std::string CallWatch::place(const std::string& path) const {
  return path == kFixedStatusLog ? home_ + "/fixed-status.log" : path;
}

void CallWatch::opened(int file, const std::string& path) {
  if (isStatusLog(path)) statusLog_ = file;
  if (isDiagnosticsLog(path)) diagnosticsLog_ = file;
}

const LogFault* CallWatch::logFault() const {
  const auto& faults = watcher_.course.plan.logFaults;
  const auto found = std::find_if(faults.begin(), faults.end(), [this](const LogFault& fault) {
    return records_ >= fault.record && records_ - fault.record < fault.count;
  });
  return found == faults.end() ? nullptr : &*found;
}

bool CallWatch::keepsShut(const std::string& path) const {
  const LogFault* fault = logFault();
  const bool isShut = fault != nullptr && fault->room < 0 && (isStatusLog(path) || isDiagnosticsLog(path));
  watcher_.course.logFaults += isShut ? 1 : 0;
  return isShut;
}

std::size_t CallWatch::makeRoom(int file, const std::string& bytes) {
  const LogFault* fault = logFault();
  if (fault == nullptr || static_cast<std::size_t>(fault->room) >= bytes.size()) return bytes.size();
  ++watcher_.course.logFaults;
  auto room = static_cast<std::size_t>(fault->room);
  if (fault->cutsCharacter) {
    const auto isInside = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; };
    const auto inside = std::find_if(bytes.begin() + fault->room, bytes.end(), isInside);
    if (inside != bytes.end()) room = static_cast<std::size_t>(inside - bytes.begin());
  }
  if (::ftruncate(file, 0) == 0 && room > 0) {
    cutLog_ = file;
    watcher_.course.cut = {bytes, "", static_cast<std::int64_t>(room)};
  }
  return room;
}

void CallWatch::closed(int file) {
  if (file == cutLog_) {
    cutLog_ = -1;
    std::ifstream log("/proc/self/fd/" + std::to_string(file), std::ios::binary);
    watcher_.course.cut.rest.assign(std::istreambuf_iterator<char>(log), {});
    watcher_.checker.check(When::cut, watcher_.course);
  }
  if (file == statusLog_) statusLog_ = -1;
  if (file == diagnosticsLog_) diagnosticsLog_ = -1;
}

bool CallWatch::takes(int file, const std::string& bytes) {
  if (file < 0 || (file != statusLog_ && file != diagnosticsLog_)) return false;
  constexpr std::string_view kTime = "0000-00-00 00:00:00.000 +0000 ";
  const bool isWhole = isAt(bytes, 0, kTime) && bytes.ends_with('\n');
  const std::string message = isWhole ? bytes.substr(kTime.size(), bytes.size() - kTime.size() - 1) : bytes;
  watcher_.course.recordIsWhole = isWhole && HasLogForm(message, file == statusLog_);
  watcher_.course.record = message;
  watcher_.checker.check(When::write, watcher_.course);
  return true;
}

void CallWatch::logged(const std::string& message) {
  ++records_;
  watcher_.now();
  watcher_.course.logged(message);
  watcher_.checker.check(When::record, watcher_.course);
}

bool CallWatch::failsAllocation() { return ++allocations_ == watcher_.course.plan.failingAllocation; }

// The linker's names for what is called instead, and for what it stands in place of.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {

int __real_open(const char* path, int flags, mode_t mode);
int __wrap_open(const char* path, int flags, ...) {
  mode_t mode = 0;
  if ((flags & O_CREAT) != 0) {
    va_list arguments;
    va_start(arguments, flags);
    mode = va_arg(arguments, mode_t);
    va_end(arguments);
  }
  if (current == nullptr || (flags & O_ACCMODE) == O_RDONLY) return __real_open(path, flags, mode);
  current->wrote(path, false);
  if (current->keepsShut(path)) {
    errno = EMFILE;
    return -1;
  }
  const int file = __real_open(current->place(path).c_str(), flags, mode);
  if (file >= 0) current->opened(file, path);
  return file;
}

int __real_close(int file);
int __wrap_close(int file) {
  if (current != nullptr) current->closed(file);
  return __real_close(file);
}

ssize_t __real_write(int file, const void* bytes, size_t size);
ssize_t __wrap_write(int file, const void* bytes, size_t size) {
  const std::string record(static_cast<const char*>(bytes), size);
  if (current == nullptr || !current->takes(file, record)) return __real_write(file, bytes, size);
  const std::size_t room = current->makeRoom(file, record);
  if (room == size) return static_cast<ssize_t>(size);
  if (room > 0) return __real_write(file, bytes, room);
  errno = ENOSPC;
  return -1;
}

int __real_mkdir(const char* path, mode_t mode);
int __wrap_mkdir(const char* path, mode_t mode) {
  if (current != nullptr) current->wrote(path, true);
  return __real_mkdir(path, mode);
}

int __real_unlink(const char* path);
int __wrap_unlink(const char* path) {
  if (current != nullptr) current->wrote(path, false);
  return __real_unlink(path);
}

int __real_chmod(const char* path, mode_t mode);
int __wrap_chmod(const char* path, mode_t mode) {
  if (current != nullptr) current->wrote(path, false);
  return __real_chmod(path, mode);
}

int __real_rename(const char* from, const char* to);
int __wrap_rename(const char* from, const char* to) {
  if (current != nullptr) current->wrote(to, false);
  return __real_rename(from, to);
}

int __real_bind(int socket, const sockaddr* address, socklen_t length);
int __wrap_bind(int socket, const sockaddr* address, socklen_t length) {
  const auto* local = reinterpret_cast<const sockaddr_un*>(address);
  if (current != nullptr && address->sa_family == AF_UNIX)
    current->wrote(static_cast<const char*>(local->sun_path), false);
  return __real_bind(socket, address, length);
}

void* __real_calloc(size_t count, size_t size);
void* __wrap_calloc(size_t count, size_t size) {
  if (current != nullptr && current->failsAllocation()) return nullptr;
  return __real_calloc(count, size);
}
}

// The appender of both logs: what it is given is known even where a text cannot be written.
void RealAppend(const std::optional<std::string>& path, std::string_view message) asm(
    "__real__Z18HLAppendLineToPathRKSt8optionalINSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEEESt17basic_string_"
    "viewIcS3_E");
void WrappedAppend(const std::optional<std::string>& path, std::string_view message) asm(
    "__wrap__Z18HLAppendLineToPathRKSt8optionalINSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEEESt17basic_string_"
    "viewIcS3_E");
void WrappedAppend(const std::optional<std::string>& path, std::string_view message) {
  if (current != nullptr) current->logged(std::string(message));
  RealAppend(path, message);
}
// NOLINTEND(bugprone-reserved-identifier)
