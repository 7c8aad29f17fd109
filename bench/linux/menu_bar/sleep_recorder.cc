// Put before a program's libraries: notes in the file HL_SLEEPS when the program goes to sleep by its own will, and for
// how long, in nanoseconds of the monotonic clock, a line each.
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

long long nanoseconds(const timespec& time) { return time.tv_sec * 1'000'000'000LL + time.tv_nsec; }

void note(const timespec& length) {
  static const int file = [] {
    const char* path = std::getenv("HL_SLEEPS");
    return path == nullptr ? -1 : open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
  }();
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  char line[64];
  const int size = std::snprintf(line, sizeof line, "%lld %lld\n", nanoseconds(now), nanoseconds(length));
  (void)!write(file, line, static_cast<std::size_t>(size));
}

}  // namespace

extern "C" {

int nanosleep(const timespec* length, timespec* left) {
  static const auto next = reinterpret_cast<decltype(&nanosleep)>(dlsym(RTLD_NEXT, "nanosleep"));
  note(*length);
  return next(length, left);
}

int clock_nanosleep(clockid_t clock, int flags, const timespec* length, timespec* left) {
  static const auto next = reinterpret_cast<decltype(&clock_nanosleep)>(dlsym(RTLD_NEXT, "clock_nanosleep"));
  if (flags == 0) note(*length);
  return next(clock, flags, length, left);
}
}
