// What the menu-bar application costs while nothing happens, beside the smallest program with an icon in the tray.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <thread>

#include "bench/linux/menu_bar/menu_bar_screen.h"
#include "tests/platform/linux/desktop/servers.h"

namespace {

constexpr std::chrono::seconds kSettling{4};
constexpr std::chrono::seconds kWatching{20};

struct Idleness {
  Memory memory;
  double mainWaits = 0;  // a second
  double allWaits = 0;
  double processor = 0;  // milliseconds a second
  int threads = 0;
};

struct Counted {
  explicit Counted(pid_t process) : pid(process), before(waits(process)), processor(processorTime(process)) {}

  [[nodiscard]] Idleness since(double seconds) const {
    const Waits now = waits(pid);
    return {memory(pid), static_cast<double>(now.main - before.main) / seconds,
            static_cast<double>(now.all - before.all) / seconds, (processorTime(pid) - processor) / seconds,
            now.threads};
  }

  pid_t pid;
  Waits before;
  double processor;
};

void print(const char* title, const Idleness& idle) {
  std::printf("%-44s%9.1f%9.1f%10.2f%8.2f%10.3f%9d\n", title, idle.memory.resident, idle.memory.proportional,
              idle.allWaits, idle.mainWaits, idle.processor, idle.threads);
  std::fflush(stdout);
}

void switchAutoCloserOn(const DesktopSession& session) {
  const std::filesystem::path folder = session.environment().at("HOME") + "/.config/com.tessaly.hushlet";
  std::filesystem::create_directories(folder);
  std::ofstream(folder / "defaults.json")
      << R"({"HLAutoCloseAutomationBanners": true, "HLAutoCloseRules": ["Backup|Backup finished"]})";
}

enum class State { trusted, autoCloser, untrusted };

bool measure(State state, const char* title, const std::string& line) {
  DesktopSession session(state == State::untrusted ? WithoutAccessibility() : SessionSetup());
  const SessionEnvironment environment(session.environment());
  const std::unique_ptr<ChildProcess> server = session.startServer(kMate.command);
  const std::unique_ptr<ChildProcess> tray = session.startTray();
  Screen screen;
  if (!screen.waitForTray()) return false;
  if (state == State::autoCloser) switchAutoCloserOn(session);
  const std::unique_ptr<ChildProcess> program = session.start({HL_HUSHLET});
  if (!screen.waitForIcon()) return false;
  const std::unique_ptr<ChildProcess> smallest = session.start({HL_SMALLEST_TRAY});
  if (!screen.waitForIcon()) return false;
  if (!Eventually([&] { return statusLog(session).find(line) != std::string::npos; })) return false;
  std::this_thread::sleep_for(kSettling);

  const Counted one(program->pid());
  const Counted other(smallest->pid());
  const Clock::time_point begin = Clock::now();
  std::this_thread::sleep_for(kWatching);
  const double seconds = milliseconds(Clock::now() - begin) / 1e3;
  const Idleness idle = one.since(seconds);
  const Idleness floor = other.since(seconds);
  print("smallest program with an icon", floor);
  print(title, idle);
  std::printf("%-44s%9.2f%9.2f\n", "  ratio", idle.memory.resident / floor.memory.resident,
              idle.memory.proportional / floor.memory.proportional);
  return true;
}

}  // namespace

int main() {
  std::printf("\nnothing happens for %d s\n", static_cast<int>(kWatching.count()));
  std::printf("%-44s%9s%9s%18s%10s%9s\n", "", "RSS", "PSS", "wake-ups a second", "processor", "threads");
  std::printf("%-44s%9s%9s%10s%8s%10s\n", "", "MiB", "MiB", "all", "main", "ms/s");
  const bool all =
      measure(State::trusted, "the application", "refreshStatusItem available=true") &&
      measure(State::autoCloser, "the application with the auto-closer", "auto-close watching") &&
      measure(State::untrusted, "the application with the setup window", "refreshStatusItem available=false");
  return all ? EXIT_SUCCESS : EXIT_FAILURE;
}
