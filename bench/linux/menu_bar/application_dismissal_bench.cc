// From a click to an empty screen: the menu-bar application beside the smallest program that closes the same banners.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "bench/linux/menu_bar/closer_window.h"
#include "bench/linux/menu_bar/menu_bar_screen.h"
#include "tests/platform/linux/desktop/servers.h"

namespace {

constexpr int kRounds = 5;  // of each program, in turns
constexpr std::chrono::seconds kTimeout{30};
constexpr const char* kOutcome = "dismissNotifications outcome ";

// One click, in milliseconds.
struct Run {
  double empty = 0;   // until the last banner was reported closed
  double own = 0;     // processor time by then: of the program that was clicked,
  double server = 0;  // of the notification server,
  double others = 0;  // and of the buses, the X server, the window manager and the tray
  double paused = 0;  // how much of that time the program slept by its own will
  double whole = 0;   // until the program was through, by its own log
  double wholePaused = 0;
};

struct Sleeps {
  explicit Sleeps(std::string file) : file_(std::move(file)) {}

  void forget() const { std::ofstream(file_, std::ios::trunc).close(); }

  [[nodiscard]] double between(Clock::time_point begin, Clock::time_point end) const {
    Clock::duration sum{};
    std::ifstream file(file_);
    for (std::int64_t start = 0, length = 0; file >> start >> length;) {
      const Clock::time_point from{std::chrono::nanoseconds(start)};
      const Clock::time_point to = from + std::chrono::nanoseconds(length);
      if (from < end && to > begin) sum += std::min(to, end) - std::max(from, begin);
    }
    return milliseconds(sum);
  }

 private:
  std::string file_;
};

class Desk {
 public:
  explicit Desk(const Server& server)
      : server_(server),
        session_(WithActivatable({server.command})),
        environment_(session_.environment()),
        sleeps_(session_.directory() + "/sleeps"),
        process_(session_.startServer(server.command)),
        tray_(session_.startTray()) {}

  [[nodiscard]] bool begin() {
    if (!screen_.waitForTray()) return false;
    sleeps_.forget();
    program_ = session_.start(
        {"env", "LD_PRELOAD=" HL_SLEEP_RECORDER, "HL_SLEEPS=" + session_.directory() + "/sleeps", HL_HUSHLET});
    icon_ = screen_.waitForIcon();
    if (!icon_) return false;
    // What is done for the first time only has been done.
    return clickProgram(1, false) && clickCloser(1, false);
  }

  [[nodiscard]] std::optional<Run> clickProgram(int banners, bool several) {
    const std::vector<std::uint32_t> ids = send(banners, several);
    if (ids.empty()) return std::nullopt;
    const std::size_t outcomes = countOutcomes();
    sleeps_.forget();
    std::optional<Run> run = click(icon_->x, icon_->y, program_->pid(), ids);
    if (!run || !Eventually([&] { return countOutcomes() > outcomes; }, kTimeout)) return std::nullopt;
    run->paused = sleeps_.between(clicked_, empty_);
    run->wholePaused = sleeps_.between(clicked_, Clock::now());
    const std::string log = statusLog(session_);
    const std::string outcome = log.substr(log.rfind(kOutcome));
    run->whole = std::strtod(outcome.c_str() + outcome.find("elapsedMs=") + 10, nullptr);
    return outcome.find("status=success") != std::string::npos ? run : std::nullopt;
  }

  [[nodiscard]] std::optional<Run> clickCloser(int banners, bool several) {
    const std::vector<std::uint32_t> ids = send(banners, several);
    if (ids.empty()) return std::nullopt;
    std::vector<std::string> command = {HL_SMALLEST_CLOSER};
    for (std::uint32_t id : ids) command.push_back(std::to_string(id));
    const std::unique_ptr<ChildProcess> closer = session_.start(command);
    constexpr int kX = HLCloserX + HLCloserSize / 2;
    constexpr int kY = HLCloserY + HLCloserSize / 2;
    if (!screen_.waitForWindowAt(kX, kY)) return std::nullopt;
    return click(kX, kY, closer->pid(), ids);
  }

 private:
  // Sends them and waits until the interface shows them all; none when it does not.
  std::vector<std::uint32_t> send(int count, bool several) {
    // A server that has been restarted counts from the beginning.
    sender_ = std::make_unique<NotificationSender>(session_.environment());
    std::vector<std::uint32_t> ids;
    for (int i = 1; i <= count; ++i) {
      const std::string number = std::to_string(++sent_);
      ids.push_back(sender_->send(several ? "Application " + std::to_string(i) : "Mail", "Title " + number,
                                  "What number " + number + " has to say"));
    }
    const std::string wanted = "targets=" + std::to_string(count);
    const bool shown = Eventually(
        [&] {
          const std::unique_ptr<ChildProcess> check = session_.start({HL_HUSHLET, "--self-check"});
          return check->wait(kTimeout).has_value() && check->output().find(wanted) != std::string::npos;
        },
        kTimeout);
    return shown ? ids : std::vector<std::uint32_t>();
  }

  std::optional<Run> click(int x, int y, pid_t program, const std::vector<std::uint32_t>& ids) {
    const std::map<std::string, double> before = processorTimes();
    const double ownBefore = processorTime(program);
    const pid_t server = session_.serverPid();
    const double serverBefore = processorTime(server);
    clicked_ = screen_.click(x, y);
    if (!sender_->waitUntilClosed(ids, kTimeout)) return std::nullopt;
    empty_ = Clock::now();
    Run run;
    run.own = processorTime(program) - ownBefore;
    run.server = processorTime(server) - serverBefore;
    run.others = sum(processorTimes()) - sum(before) - run.own - run.server;
    run.empty = milliseconds(empty_ - clicked_);
    screen_.movePointerAway();
    return run;
  }

  static double sum(const std::map<std::string, double>& times) {
    double sum = 0;
    for (const auto& [name, time] : times) sum += time;
    return sum;
  }

  [[nodiscard]] std::size_t countOutcomes() const {
    const std::string log = statusLog(session_);
    std::size_t count = 0;
    for (std::size_t at = 0; (at = log.find(kOutcome, at)) != std::string::npos; ++at) ++count;
    return count;
  }

  const Server server_;
  DesktopSession session_;
  SessionEnvironment environment_;
  const Sleeps sleeps_;
  std::unique_ptr<ChildProcess> process_;
  std::unique_ptr<ChildProcess> tray_;
  std::unique_ptr<NotificationSender> sender_;
  Screen screen_;
  std::unique_ptr<ChildProcess> program_;
  std::optional<Icon> icon_;
  Clock::time_point clicked_;
  Clock::time_point empty_;
  int sent_ = 0;
};

double medianOf(const std::vector<Run>& runs, double Run::*field) {
  std::vector<double> values;
  for (const Run& run : runs) values.push_back(run.*field);
  return median(std::move(values));
}

bool measure(Desk& desk, int banners, bool several) {
  std::vector<Run> floors;
  std::vector<Run> runs;
  std::vector<double> ratios;
  std::vector<double> unpaused;
  for (int i = 0; i < kRounds; ++i) {
    const std::optional<Run> floor = desk.clickCloser(banners, several);
    const std::optional<Run> run = floor ? desk.clickProgram(banners, several) : std::nullopt;
    if (!run) return false;
    floors.push_back(*floor);
    runs.push_back(*run);
    ratios.push_back(run->empty / floor->empty);
    unpaused.push_back((run->empty - run->paused) / floor->empty);
  }
  std::printf("%3d %-8s%7.1f%9.1f%9.1f%9.1f%7.1f%7.1f%7.1f%7.1f%9.0f%9.0f\n", banners, several ? "several" : "one",
              medianOf(floors, &Run::empty), medianOf(runs, &Run::empty), medianOf(runs, &Run::paused),
              medianOf(runs, &Run::own), medianOf(runs, &Run::server), medianOf(runs, &Run::others), median(ratios),
              median(unpaused), medianOf(runs, &Run::whole), medianOf(runs, &Run::wholePaused));
  std::fflush(stdout);
  return true;
}

bool measure(const Server& server, const std::vector<int>& counts) {
  Desk desk(server);
  std::printf("%s\n", server.name.c_str());
  if (!desk.begin()) return false;
  for (int banners : counts) {
    for (bool several : {false, true}) {
      if (banners == 1 && several) continue;
      if (!measure(desk, banners, several)) return false;
    }
  }
  return true;
}

}  // namespace

int main() {
  std::printf("\nfrom a click to an empty screen, ms (median of %d)\n", kRounds);
  std::printf("%-12s%7s%9s%9s%25s%14s%18s\n", "", "calls", "program", "of which", "processor time by then", "ratio",
              "until it is done");
  std::printf("%-12s%7s%9s%9s%9s%7s%7s%7s%7s%9s%9s\n", "banners of", "alone", "", "pauses", "program", "server", "rest",
              "", "unp.", "", "pauses");
  const bool all = measure(kMate, {1, 5, 19, 20}) && measure(kLxqt, {1, 5, 19, 20, 40});
  if (!all) std::fprintf(stderr, "bench_linux_menu_bar_dismissal: a screen was not cleared\n");
  return all ? EXIT_SUCCESS : EXIT_FAILURE;
}
