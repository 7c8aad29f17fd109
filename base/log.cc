#include "base/log.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <ctime>

#include "base/format.h"
#include "base/paths.h"
#include "platform/platform.h"
#include "platform/run_loop.h"
#include "platform/text.h"

namespace {

// "yyyy-MM-dd HH:mm:ss.SSS Z" in local time; every field used here is the same in every locale.
std::string timestamp(double now) {
  const auto milliseconds = static_cast<std::int64_t>(std::floor(now * 1000));
  const std::time_t seconds = milliseconds / 1000;
  std::tm local{};
  ::localtime_r(&seconds, &local);
  std::array<char, 32> date{};
  std::array<char, 16> zone{};
  std::array<char, 8> fraction{};
  std::strftime(date.data(), date.size(), "%Y-%m-%d %H:%M:%S", &local);
  std::strftime(zone.data(), zone.size(), "%z", &local);
  std::snprintf(fraction.data(), fraction.size(), ".%03d", static_cast<int>(milliseconds % 1000));
  return HLFormat("%s%s %s", date.data(), fraction.data(), zone.data());
}

}  // namespace

void HLAppendLineToPath(const std::optional<std::string>& path, std::string_view message) {
  if (!path || !HLIsEncodable(message)) return;
  const std::string line = HLFormat("%@ %@\n", timestamp(HLCurrentPlatform().runLoop->now()), message);
  const auto open = [&path] { return ::open(path->c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666); };
  int file = open();
  if (file < 0) {
    HLCreateDirectories(path->substr(0, path->find_last_of('/')));
    file = open();
  }
  if (file < 0) return;
  // One write: whatever it does not take is dropped, since a second one could land behind another process's line.
  (void)!::write(file, line.data(), line.size());
  ::close(file);
}
