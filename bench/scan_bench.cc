// A scan of one window on the simulator, beside the floor of merely reading the same facts of the same elements.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <deque>
#include <iostream>
#include <memory>
#include <string>
#include <unordered_set>
#include <variant>

#include "core/scan/notification_center.h"
#include "core/scan/tree_scan.h"
#include "platform/element_facts.h"
#include "platform/platform.h"
#include "platform/sim/simulator.h"

namespace {

// Alerts of ten elements each, as macOS shows them; the window is one of the elements.
std::string bushyWindow(int elements) {
  std::string window = R"({"id": "window", "role": "AXWindow", "subrole": "AXSystemDialog",)"
                       R"("title": "Notification Center", "frame": [1080, 0, 360, 900], "children": [)";
  int made = 1;
  for (int alert = 0; made < elements; ++alert) {
    const std::string number = std::to_string(alert);
    window += alert == 0 ? "" : ",";
    window += R"({"role": "AXGroup", "subrole": "AXNotificationCenterAlert", "frame": [1080, 40, 344, 96],)"
              R"("description": "Mail, Message )" +
              number +
              R"(, Lunch on Friday at the usual place?",)"
              R"("actions": ["AXPress", "Name:Show Details"], "children": [)";
    ++made;
    for (int part = 0; part < 9 && made < elements; ++part, ++made) {
      window += part == 0 ? "" : ",";
      window += R"({"role": "AXStaticText", "identifier": "body", "value": "Lunch on Friday )" + number + "-" +
                std::to_string(part) + R"(", "frame": [1090, 50, 200, 16]})";
    }
    window += "]}";
  }
  return window + "]}";
}

// Each element is the only child of the one before.
std::string chainWindow(int elements, const std::string& title = "") {
  std::string window = R"({"id": "window", "role": "AXWindow", "title": "Notification Center")";
  for (int depth = 1; depth < elements; ++depth) {
    window += R"(, "children": [{"role": "AXGroup", "value": "Level )" + std::to_string(depth) + R"(", )" +
              (title.empty() ? "" : R"("title": ")" + title + R"(", )") + R"("frame": [0, 0, 400, 400])";
  }
  for (int depth = 1; depth < elements; ++depth) window += "}]";
  return window + "}";
}

// A window with a title of that many bytes over 699 elements, each with these further keys.
std::string titledWindow(int bytes, const std::string& keys = "") {
  std::string window = R"({"id": "window", "role": "AXWindow", "title": ")";
  while (window.size() < static_cast<std::size_t>(bytes)) window += "Lunch on Friday at the usual place, ";
  window += R"(or not", "children": [)";
  for (int i = 0; i < 699; ++i) {
    window += i == 0 ? "" : ",";
    window +=
        R"({"role": "AXGroup", "value": "Level )" + std::to_string(i) + R"(", "frame": [0, 0, 400, 400])" + keys + "}";
  }
  return window + "]}";
}

class Desktop {
 public:
  explicit Desktop(const std::string& window) {
    const std::string scene =
        R"({"applications": [{"pid": 400, "bundleIdentifier": "com.apple.notificationcenterui", "windows": [)" +
        window + "]}]}";
    const char* home = std::getenv("HOME");
    auto made = HLMakeSimulator(scene, "bench", {{"hushlet-sim"}, {{"HOME", home != nullptr ? home : "/tmp"}}});
    if (const auto* error = std::get_if<std::string>(&made)) {
      std::cerr << *error << '\n';
      std::exit(2);
    }
    simulator_ = std::get<std::unique_ptr<HLSimulator>>(std::move(made));
    HLInstallPlatform(&simulator_->platform());
    window_ = HLNotificationWindows(*simulator_->platform().accessibility->createApplication(400)).at(0);
  }
  ~Desktop() { HLInstallPlatform(nullptr); }
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;

  [[nodiscard]] const HLElementRef& window() const { return window_; }

 private:
  std::unique_ptr<HLSimulator> simulator_;
  HLElementRef window_;
};

void readFacts(const HLElementRef& root) {
  std::deque<HLElementRef> queue = {root};
  std::unordered_set<HLElementRef> visited;
  while (!queue.empty()) {
    const HLElementRef element = queue.front();
    queue.pop_front();
    if (!visited.insert(element).second) continue;
    const HLElementFacts facts = element->copyFacts();
    queue.insert(queue.end(), facts.children.begin(), facts.children.end());
    benchmark::DoNotOptimize(facts.role.data());
  }
}

void floorBushy(benchmark::State& state) {
  const Desktop desktop(bushyWindow(static_cast<int>(state.range(0))));
  for (auto _ : state) readFacts(desktop.window());
}
BENCHMARK(floorBushy)->Arg(1400)->Unit(benchmark::kMillisecond);

void scanBushy(benchmark::State& state) {
  const Desktop desktop(bushyWindow(static_cast<int>(state.range(0))));
  for (auto _ : state) benchmark::DoNotOptimize(HLTargetsInRoot(desktop.window(), "window-0").data());
}
BENCHMARK(scanBushy)->Arg(350)->Arg(700)->Arg(1400)->Unit(benchmark::kMillisecond);

void floorChain(benchmark::State& state) {
  const Desktop desktop(chainWindow(static_cast<int>(state.range(0))));
  for (auto _ : state) readFacts(desktop.window());
}
BENCHMARK(floorChain)->Arg(1400)->Unit(benchmark::kMillisecond);

void scanChain(benchmark::State& state) {
  const Desktop desktop(chainWindow(static_cast<int>(state.range(0))));
  for (auto _ : state) benchmark::DoNotOptimize(HLTargetsInRoot(desktop.window(), "window-0").data());
}
BENCHMARK(scanChain)->Arg(1400)->Unit(benchmark::kMillisecond);

// Twice the depth costs twice the time.
void scanTitledChain(benchmark::State& state) {
  const Desktop desktop(chainWindow(static_cast<int>(state.range(0)), std::string(12'000, 'x')));
  for (auto _ : state) benchmark::DoNotOptimize(HLTargetsInRoot(desktop.window(), "window-0").data());
}
BENCHMARK(scanTitledChain)->Arg(350)->Arg(700)->Arg(1400)->Unit(benchmark::kMillisecond);

void floorTitled(benchmark::State& state) {
  const Desktop desktop(titledWindow(static_cast<int>(state.range(0))));
  for (auto _ : state) readFacts(desktop.window());
}
BENCHMARK(floorTitled)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

// The cost of the text is the difference to the same tree without it.
void scanTitled(benchmark::State& state) {
  const Desktop desktop(titledWindow(static_cast<int>(state.range(0))));
  for (auto _ : state) benchmark::DoNotOptimize(HLTargetsInRoot(desktop.window(), "window-0").data());
}
BENCHMARK(scanTitled)->Arg(0)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

// Whether an element that can be pressed is a notification depends on the title, too.
void scanTitledButtons(benchmark::State& state) {
  const Desktop desktop(titledWindow(static_cast<int>(state.range(0)), R"(, "actions": ["AXPress"])"));
  for (auto _ : state) benchmark::DoNotOptimize(HLTargetsInRoot(desktop.window(), "window-0").data());
}
BENCHMARK(scanTitledButtons)->Arg(0)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
