// From its start until a program's icon can be seen in the tray: the menu-bar application beside the smallest program
// with an icon.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "bench/linux/menu_bar/menu_bar_screen.h"
#include "tests/platform/linux/desktop/servers.h"

namespace {

constexpr int kRounds = 15;  // of each, in turns

struct Start {
  double mapped = 0;  // milliseconds
  double drawn = 0;
  double logged = 0;     // "refreshStatusItem", by the log's own time; 0 where there is no log
  double processor = 0;  // milliseconds until it is drawn
};

// The milliseconds of the day of the log's last line with that text.
std::optional<double> timeOf(const std::string& log, const std::string& text) {
  const std::size_t at = log.rfind(text);
  if (at == std::string::npos) return std::nullopt;
  const std::size_t begin = log.rfind('\n', at) + 1;  // of the line; 0 where there is no line before
  int hours = 0;
  int minutes = 0;
  double seconds = 0;
  if (std::sscanf(log.c_str() + begin + 11, "%d:%d:%lf", &hours, &minutes, &seconds) != 3) return std::nullopt;
  return ((hours * 60 + minutes) * 60 + seconds) * 1e3;
}

double timeOfDay() {
  constexpr double kDay = 24 * 60 * 60 * 1e3;  // in the sessions' time zone, which is UTC
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return std::fmod(std::chrono::duration<double, std::milli>(now).count(), kDay);
}

std::optional<Start> start(DesktopSession& session, Screen& screen, const char* command) {
  const double day = timeOfDay();
  const Clock::time_point begin = Clock::now();
  const std::unique_ptr<ChildProcess> program = session.start({command});
  const std::optional<Icon> icon = screen.waitForIcon();
  if (!icon) return std::nullopt;
  Start start{milliseconds(icon->mapped - begin), milliseconds(icon->drawn - begin), 0, processorTime(program->pid())};
  if (std::string(command) == HL_HUSHLET) {
    const std::optional<double> logged = timeOf(statusLog(session), "refreshStatusItem");
    if (!logged) return std::nullopt;
    start.logged = *logged - day;
  }
  return start;
}

double medianOf(const std::vector<Start>& starts, double Start::*field) {
  std::vector<double> values;
  for (const Start& start : starts) values.push_back(start.*field);
  return median(std::move(values));
}

void print(const char* title, const std::vector<Start>& starts) {
  std::printf("%-44s%10.1f%10.1f%14.1f%12.1f\n", title, medianOf(starts, &Start::mapped),
              medianOf(starts, &Start::drawn), medianOf(starts, &Start::processor), medianOf(starts, &Start::logged));
}

bool measure() {
  DesktopSession session;
  const SessionEnvironment environment(session.environment());
  const std::unique_ptr<ChildProcess> server = session.startServer(kMate.command);
  const std::unique_ptr<ChildProcess> tray = session.startTray();
  Screen screen;
  if (!screen.waitForTray()) return false;
  std::vector<Start> floors;
  std::vector<Start> starts;
  std::vector<double> ratios;
  for (int i = -1; i < kRounds; ++i) {
    const std::optional<Start> floor = start(session, screen, HL_SMALLEST_TRAY);
    const std::optional<Start> own = floor ? start(session, screen, HL_HUSHLET) : std::nullopt;
    if (!own) return false;
    if (i < 0) continue;  // files are read for the first time
    floors.push_back(*floor);
    starts.push_back(*own);
    ratios.push_back(own->drawn / floor->drawn);
  }
  print("smallest program with an icon", floors);
  print("the application", starts);
  std::printf("%-44s%20.2f\n", "the latter / the former", median(ratios));
  return true;
}

}  // namespace

int main() {
  std::printf("\n%-44s%10s%10s%14s%12s\n", "from the start to the icon, ms", "mapped", "drawn", "processor", "logged");
  return measure() ? EXIT_SUCCESS : EXIT_FAILURE;
}
