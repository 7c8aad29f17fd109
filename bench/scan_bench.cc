// A scan of one window on the simulator, beside the floor of merely reading the same facts of the same elements.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <deque>
#include <iterator>
#include <string>
#include <unordered_set>

#include "core/scan/tree_scan.h"
#include "platform/element_facts.h"
#include "tests/support/simulated_desktop.h"

namespace {

// Alerts of ten elements each, as macOS shows them; the window is one of the elements.
std::string bushyWindow(std::int64_t elements) {
  std::string window = R"({"id": "window", "role": "AXWindow", "subrole": "AXSystemDialog",)"
                       R"("title": "Notification Center", "frame": [1080, 0, 360, 900], "children": [)";
  std::int64_t made = 1;
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
std::string chainWindow(std::int64_t elements, const std::string& title = "") {
  std::string window = R"({"id": "window", "role": "AXWindow", "title": "Notification Center")";
  for (int depth = 1; depth < elements; ++depth) {
    window += R"(, "children": [{"role": "AXGroup", "value": "Level )" + std::to_string(depth) + R"(", )" +
              (title.empty() ? "" : R"("title": ")" + title + R"(", )") + R"("frame": [0, 0, 400, 400])";
  }
  for (int depth = 1; depth < elements; ++depth) window += "}]";
  return window + "}";
}

// A window with a title of that many bytes, the text repeated, over 699 elements, each with these further keys.
std::string titledWindow(std::int64_t bytes, const std::string& text, const std::string& keys = "") {
  std::string window = R"({"id": "window", "role": "AXWindow", "title": ")";
  while (std::ssize(window) < bytes) window += text;
  window += R"(or not", "children": [)";
  for (int i = 0; i < 699; ++i) {
    window += i == 0 ? "" : ",";
    window +=
        R"({"role": "AXGroup", "value": "Level )" + std::to_string(i) + R"(", "frame": [0, 0, 400, 400])" + keys + "}";
  }
  return window + "]}";
}

// The window is the one of Notification Center.
template <class Work>
void measure(benchmark::State& state, const std::string& window, const Work& work) {
  SimulatedDesktop desktop(
      R"({"applications": [{"pid": 400, "bundleIdentifier": "com.apple.notificationcenterui", "windows": [)" + window +
      "]}]}");
  const HLElementRef root = desktop.element("window");
  for (auto _ : state) work(root);
}

void scan(const HLElementRef& root) { benchmark::DoNotOptimize(HLTargetsInRoot(root, "window-0").data()); }

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

void floorBushy(benchmark::State& state) { measure(state, bushyWindow(state.range(0)), readFacts); }
BENCHMARK(floorBushy)->Arg(1400)->Unit(benchmark::kMillisecond);

void scanBushy(benchmark::State& state) { measure(state, bushyWindow(state.range(0)), scan); }
BENCHMARK(scanBushy)->Arg(350)->Arg(700)->Arg(1400)->Unit(benchmark::kMillisecond);

void floorChain(benchmark::State& state) { measure(state, chainWindow(state.range(0)), readFacts); }
BENCHMARK(floorChain)->Arg(1400)->Unit(benchmark::kMillisecond);

void scanChain(benchmark::State& state) { measure(state, chainWindow(state.range(0)), scan); }
BENCHMARK(scanChain)->Arg(1400)->Unit(benchmark::kMillisecond);

// Twice the depth costs twice the time.
void scanTitledChain(benchmark::State& state) {
  measure(state, chainWindow(state.range(0), std::string(12'000, 'x')), scan);
}
BENCHMARK(scanTitledChain)->Arg(350)->Arg(700)->Arg(1400)->Unit(benchmark::kMillisecond);

const std::string kAscii = "Lunch on Friday at the usual place, ";
const std::string kCyrillic = "Обед в Пятницу на обычном месте, ";
const std::string kGreek = "ΓΕΥΜΑ την Παρασκευή στο συνηθισμένο ΜΕΡΟΣ, ";
const std::string kChinese = "星期五在老地方吃午饭，大家都来。";
const std::string kMixture = kAscii + kCyrillic + kGreek + kChinese + "İstanbul’da\u00A0öğle yemeği 🍲, ";

void floorTitled(benchmark::State& state) { measure(state, titledWindow(1'000'000, kAscii), readFacts); }
BENCHMARK(floorTitled)->Unit(benchmark::kMillisecond);

// The cost of the text is the difference to the same tree without it.
void scanTitled(benchmark::State& state, const std::string& text) {
  measure(state, titledWindow(text.empty() ? 0 : 1'000'000, text), scan);
}
BENCHMARK_CAPTURE(scanTitled, none, "")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scanTitled, ascii, kAscii)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scanTitled, cyrillic, kCyrillic)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scanTitled, greek, kGreek)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scanTitled, chinese, kChinese)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scanTitled, mixture, kMixture)->Unit(benchmark::kMillisecond);

// Whether an element that can be pressed is a notification depends on the title, too.
void scanTitledButtons(benchmark::State& state, const std::string& text) {
  measure(state, titledWindow(text.empty() ? 0 : 1'000'000, text, R"(, "actions": ["AXPress"])"), scan);
}
BENCHMARK_CAPTURE(scanTitledButtons, none, "")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scanTitledButtons, ascii, kAscii)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scanTitledButtons, cyrillic, kCyrillic)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scanTitledButtons, greek, kGreek)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scanTitledButtons, chinese, kChinese)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scanTitledButtons, mixture, kMixture)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
