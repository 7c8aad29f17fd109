// A scene and its recording come to the same: trust, number of targets, the first attempt's line in the log (without
// its snapshots where texts were replaced), and the presses of the first batch. For every scene of the collection, and
// for random ones.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <unordered_set>
#include <utility>
#include <variant>
#include <vector>

#include "core/dismissal/batch.h"
#include "core/dismissal/dismiss_run.h"
#include "core/dismissal/ordering.h"
#include "core/scan/element_access.h"
#include "core/scan/notification_center.h"
#include "report/record_scene.h"
#include "tests/support/forwarding.h"
#include "tests/support/processes.h"
#include "tests/support/simulated_desktop.h"
#include "tests/support/temporary_directory.h"
#include "tests/swarm/generate/plan.h"

namespace {

namespace fs = std::filesystem;

// The elements of the screen with their places: windows and children by number, down to the element.
class Places {
 public:
  explicit Places(const HLElement& application) {
    constexpr std::size_t kMost = 6000;
    std::unordered_set<HLElementRef> known;
    for (const HLElementRef& window : HLNotificationWindows(application)) {
      places_.push_back({window, "w" + std::to_string(places_.size())});
    }
    for (std::size_t next = 0; next < places_.size() && places_.size() < kMost; ++next) {
      const Place place = places_[next];
      if (!known.insert(place.element).second) continue;
      const std::vector<HLElementRef> children = place.element->copyFacts().children;
      for (std::size_t i = 0; i < children.size(); ++i) {
        places_.push_back({children[i], place.path + "." + std::to_string(i)});
      }
    }
  }

  // The first place of the element, or of the element that names it as its close control.
  [[nodiscard]] std::string of(const HLElement& wanted) const {
    for (const Place& place : places_) {
      if (place.element->isEqual(wanted)) return place.path;
    }
    for (const Place& place : places_) {
      for (const char* attribute : {"AXCloseButton", "AXCancelButton"}) {
        const HLElementRef control = HLElementAttribute(*place.element, attribute);
        if (control != nullptr && control->isEqual(wanted)) return place.path + attribute;
      }
    }
    return "?";
  }

 private:
  struct Place {
    HLElementRef element;
    std::string path;
  };
  std::vector<Place> places_;
};

struct Course {
  bool trusted = false;
  std::size_t targets = 0;
  std::string attempt;
  std::vector<std::string> presses;  // of the first batch: path and action
  std::vector<std::string> begun;    // actions in the order in which the run began them
  bool operator==(const Course&) const = default;
};

// The line of an attempt without the texts that end each of its targets.
std::string withoutSnapshots(const std::string& line) {
  const std::string before = " snapshot=";
  std::string stripped;
  std::size_t at = 0;
  for (int i = 1;; ++i) {
    const std::size_t text = line.find(before, at);
    if (text == std::string::npos) return stripped + line.substr(at);
    stripped += line.substr(at, text + before.size() - at);
    at = line.find(" | #" + std::to_string(i) + " score=", text);
    if (at == std::string::npos) return stripped;
  }
}

struct FirstBatchIsOver {};

// The engine waits for the first time behind its first batch.
class FirstBatchOnly : public ForwardingRunLoop {
 public:
  using ForwardingRunLoop::ForwardingRunLoop;
  void sleep(double) override { throw FirstBatchIsOver(); }
};

void runFirstBatch(const HLPlatform& platform) {
  FirstBatchOnly runLoop(platform.runLoop);
  HLPlatform stopping = platform;
  stopping.runLoop = runLoop;
  HLInstallPlatform(&stopping);
  try {
    (void)HLDismissNotificationsNow();
  } catch (const FirstBatchIsOver&) {
  }
  HLInstallPlatform(&platform);
}

// Looks before it runs, since the run presses.
Course courseOf(SimulatedDesktop& desktop) {
  Course course;
  course.trusted = HLIsAccessibilityTrusted(false);
  const auto center = HLNotificationCenterApplication();
  const HLElementRef application = center && course.trusted ? HLNotificationCenterElement(center->pid) : nullptr;
  if (application != nullptr) {
    const auto targets = HLSortedTargets(HLCurrentTargets(*application));
    course.targets = targets.size();
    const Places places(*application);
    for (const HLDismissTarget& control : HLPrepareBatch(targets).resolved) {
      course.presses.push_back(places.of(*control.element) + " " + control.action);
    }
  }
  runFirstBatch(desktop.platform());
  for (const std::string& line : desktop.diagnostics()) {
    if (!line.starts_with("attempt iteration=0 ")) continue;
    course.attempt = line;
    break;
  }
  for (const HLSimulatedAction& action : desktop.simulator().actions()) {
    if (course.begun.size() < course.presses.size()) course.begun.push_back(action.action);
  }
  return course;
}

void print(const Course& course) {
  std::cout << "  trusted " << course.trusted << " targets " << course.targets << "\n  " << course.attempt << "\n";
  for (const std::string& press : course.presses) std::cout << "  press " << press << "\n";
  for (const std::string& action : course.begun) std::cout << "  begun " << action << "\n";
}

// A recording, or why there is none.
using Recorded = std::variant<HLRecording, std::string>;

// Returns "" or what is wrong.
std::string mistakeOf(const Recorded& recorded, Course wanted, HLTexts texts) {
  if (const auto* reason = std::get_if<std::string>(&recorded)) return *reason;
  SimulatedDesktop desktop(std::get<HLRecording>(recorded).scene);
  Course found = courseOf(desktop);
  if (texts == HLTexts::replaced) {
    wanted.attempt = withoutSnapshots(wanted.attempt);
    found.attempt = withoutSnapshots(found.attempt);
  }
  if (found == wanted) return "";
  print(wanted);
  print(found);
  return "the recording comes to something else";
}

class Count {
 public:
  void check(const std::string& name, const std::string& scene) {
    ++scenes_;
    std::vector<std::pair<HLTexts, Recorded>> recordings;
    Course wanted;
    {
      SimulatedDesktop desktop(scene);
      for (HLTexts texts : {HLTexts::replaced, HLTexts::kept}) {
        recordings.emplace_back(texts, HLRecordingOf(HLCaptureScreen(), texts, "hushlet test"));
      }
      wanted = courseOf(desktop);
    }
    for (const auto& [texts, recorded] : recordings) {
      const std::string mistake = mistakeOf(recorded, wanted, texts);
      if (mistake.empty()) continue;
      ++mistakes_;
      std::cout << name << (texts == HLTexts::kept ? ", texts kept: " : ", texts replaced: ") << mistake << std::endl;
    }
  }

  [[nodiscard]] int end() const {
    std::cout << scenes_ << " scenes, each recorded with its texts kept and replaced: " << mistakes_ << " mistakes\n";
    return mistakes_ == 0 && scenes_ > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
  }

 private:
  int scenes_ = 0;
  int mistakes_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  std::uint64_t first = 0;
  std::uint64_t count = 100;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string option = argv[i];
    (option == "--first" ? first : count) = std::strtoull(argv[i + 1], nullptr, 10);
  }
  const TemporaryDirectory folder;  // random scenes write their records anywhere
  fs::current_path(folder.path());
  Count checked;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(HUSHLET_SCENES)) {
    if (entry.path().extension() == ".json" && first == 0) {
      checked.check(entry.path().string(), FileContent(entry.path().string()));
    }
  }
  for (std::uint64_t seed = first; seed < first + count; ++seed) {
    PlanShape shape;
    checked.check("seed " + std::to_string(seed), MakePlan(seed, shape).scene);
  }
  return checked.end();
}
