// How long it takes to scan a large window of a real program, against the straightforward way of reading it.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "core/scan/notification_center.h"
#include "core/scan/tree_scan.h"
#include "platform/linux/linux_host.h"
#include "tests/platform/linux/support/desktop_session.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kRepetitions = 9;

struct Case {
  const char* title;
  const char* program;
  const char* height;  // of the window: what does not fit is scrolled away, and not showing
  const char* aim;
};

constexpr Case kCases[] = {
    {"GTK 3, some of it showing", HL_GTK_WINDOW, "900", "20"},
    {"GTK 3, all of it showing", HL_GTK_WINDOW, "9000", "20"},
    {"Qt 6, some of it showing", HL_QT_WINDOW, "900", "8"},
    {"Qt 6, all of it showing", HL_QT_WINDOW, "9000", "8"},
};

double milliseconds(Clock::duration time) { return std::chrono::duration<double, std::milli>(time).count(); }

// Milliseconds. The fastest run is the one that the rest of the machine disturbed least.
struct Times {
  double median = 0;
  double fastest = 0;
};

Times summary(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return {values.at(values.size() / 2), values.front()};
}

void printRow(const char* title, int elements, const Times& times) {
  std::printf("  %-52s%10d%12.1f%12.1f\n", title, elements, times.median, times.fastest);
}

struct Walk {
  int elements = 0;
  double time = 0;
};

std::optional<Walk> stockWalk(DesktopSession& session, pid_t pid, const std::string& way) {
  const std::unique_ptr<ChildProcess> walk = session.start({HL_STOCK_WALK, std::to_string(pid), way});
  if (walk->wait(std::chrono::seconds(60)) != 0) return std::nullopt;
  std::istringstream out(walk->output());
  Walk result;
  double microseconds = 0;
  out >> result.elements >> microseconds;
  result.time = microseconds / 1000;
  return result;
}

// Every window of the application read and scanned.
double scan(const HLElement& application) {
  const Clock::time_point begin = Clock::now();
  int index = 0;
  for (const HLElementRef& window : HLNotificationWindows(application)) {
    (void)HLTargetsInRoot(window, "window-" + std::to_string(index++));
  }
  return milliseconds(Clock::now() - begin);
}

int elementsBelow(const HLElement& element, std::string_view list) {
  int count = 0;
  const HLAttribute attribute = element.copyAttributeValue(list);
  if (const HLArray* array = attribute.value.as<HLArray>()) {
    for (const HLValue& value : *array) count += 1 + elementsBelow(**value.as<HLElementRef>(), "AXChildren");
  }
  return count;
}

bool measure(const Case& each) {
  DesktopSession session(WithScreen("1280x9500x24"));
  const SessionEnvironment environment(session.environment());
  char name[] = "bench";
  char* arguments[] = {name, nullptr};
  const HLLinuxHost host(1, arguments);
  HLInstallPlatform(&host.platform());
  HLAccessibility& accessibility = host.platform().accessibility;
  const std::unique_ptr<ChildProcess> window = session.start({each.program, each.height});

  // The toolkits go on building for a while after the window has appeared.
  HLElementRef application;
  int elements = 0;
  const bool complete = Eventually([&] {
    application = accessibility.createApplication(window->pid());
    const int before = elements;
    elements = application == nullptr ? 0 : elementsBelow(*application, "AXWindows");
    return elements > 1300 && elements == before;
  });
  if (!complete) {
    std::fprintf(stderr, "%s: only %d elements\n", each.title, elements);
    return false;
  }

  std::vector<double> stock;
  std::vector<double> cached;
  std::vector<double> scans;
  std::vector<double> first;
  int walked = 0;
  for (int i = 0; i < kRepetitions; ++i) {  // side by side, so that a busy moment hits all alike
    const std::optional<Walk> walk = stockWalk(session, window->pid(), "fresh");
    const std::optional<Walk> withCache = stockWalk(session, window->pid(), "cached");
    if (!walk || !withCache) return false;
    stock.push_back(walk->time);
    cached.push_back(withCache->time);
    walked = walk->elements;
    scans.push_back(scan(*application));
    const Clock::time_point begin = Clock::now();
    const HLElementRef fresh = accessibility.createApplication(window->pid());
    if (fresh == nullptr) return false;
    (void)scan(*fresh);
    first.push_back(milliseconds(Clock::now() - begin));
  }
  const Times theirs = summary(stock);
  const Times ours = summary(scans);
  std::printf("%s\n", each.title);
  printRow("walk with the stock client library", walked, theirs);
  printRow("the same, with that library's cache", walked, summary(cached));
  printRow("scan by this program", elements + 1, ours);
  printRow("the same, with making the application's element", elements + 1, summary(first));
  std::printf("  %-62s%12.1f%12.1f   aim: %s\n", "stock walk / scan", theirs.median / ours.median,
              theirs.fastest / ours.fastest, each.aim);
  std::fflush(stdout);
  HLInstallPlatform(nullptr);
  return true;
}

}  // namespace

int main() {
  std::printf("\n%-54s%10s%12s%12s\n", "on a real desktop", "elements", "median, ms", "fastest, ms");
  bool all = true;
  for (const Case& each : kCases) all &= measure(each);
  return all ? EXIT_SUCCESS : EXIT_FAILURE;
}
