#include "report/explanation.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "core/dismissal/batch.h"
#include "core/scan/element_access.h"
#include "core/scan/notification_center.h"
#include "core/scan/tree_scan.h"
#include "core/scan/words.h"

namespace {

// The first report of the scan about an element.
struct Step {
  HLScoreDetails details;
  std::optional<HLDismissTarget> candidate;
  HLDescent descent = HLDescent::enter;
};

class Explainer {
 public:
  explicit Explainer(HLCapture& capture) : capture_(capture), explanation_{capture, {}, {}, {}} {}

  HLExplanation run() {
    const auto addStep = [this](const HLScanStep& step) {
      steps_.try_emplace(HLCapturedNumber(*step.visit.element), Step{step.details, step.candidate, step.descent});
    };
    const auto addTarget = [this](const HLResolutionStep& step) {
      const bool isFirst = step.index == presses_;
      if (isFirst) ++presses_;
      targets_.try_emplace(HLCapturedNumber(*step.target.element), explanation_.targets.size());
      explanation_.targets.push_back({step.target, step.control, step.index, isFirst});
    };
    explanation_.presses = HLJudgeCapture(capture_, addStep, addTarget).batch.resolved;
    if (!capture_.elements.empty()) addWindows();
    return std::move(explanation_);
  }

 private:
  struct Place {
    int number;
    int window;
    int depth;
    bool isPruned;  // below a control with a high score
  };

  void addWindows() {
    std::vector<Place> stack;
    int window = 0;
    for (const HLElementRef& each : HLNotificationWindows(capture_.element(0))) {
      stack.push_back({HLCapturedNumber(*each), window++, 0, false});
    }
    std::reverse(stack.begin(), stack.end());
    while (!stack.empty()) {
      const Place place = stack.back();
      stack.pop_back();
      if (!add(place)) continue;
      const auto step = steps_.find(place.number);
      const bool isPruned = place.isPruned || (step != steps_.end() && step->second.descent == HLDescent::prune);
      std::set<int> listed;  // the same child is usually in several lists
      std::vector<Place> below;
      for (const HLElementRef& child : explanation_.elements.back().facts.children) {
        const int number = HLCapturedNumber(*child);
        if (listed.insert(number).second) below.push_back({number, place.window, place.depth + 1, isPruned});
      }
      stack.insert(stack.end(), below.rbegin(), below.rend());
    }
  }

  // Returns false for an element that was added before.
  bool add(const Place& place) {
    const HLCapturedElement& captured = capture_.element(place.number);
    HLExplainedElement& added = explanation_.elements.emplace_back();
    added.number = place.number;
    added.window = place.window;
    added.depth = place.depth;
    added.isRepeat = !added_.insert(place.number).second;
    added.facts = captured.copyFacts();
    added.doubt = HLStringAttribute(captured, HLDoubtAttributeName).value_or("");
    if (const auto step = steps_.find(place.number); step != steps_.end()) {
      added.scanned = HLScanned::yes;
      added.details = step->second.details;
      added.candidate = step->second.candidate;
    } else if (capture_.trusted) {
      added.scanned = place.isPruned ? HLScanned::belowStrongTarget : HLScanned::beyondLimit;
    }
    if (const auto target = targets_.find(place.number); target != targets_.end()) added.target = target->second;
    return !added.isRepeat;
  }

  HLCapture& capture_;
  HLExplanation explanation_;
  std::map<int, Step> steps_;
  std::map<int, std::size_t> targets_;  // by element
  std::size_t presses_ = 0;
  std::set<int> added_;
};

std::string inQuotes(std::string_view word) { return "\"" + std::string(word) + "\""; }

std::string refusalOf(const HLScoreDetails& details, bool isBanner) {
  switch (details.refusal) {
    case HLRefusal::none:
      return "";
    case HLRefusal::noPress:
      return isBanner ? "no action that closes it" : "no press action";
    case HLRefusal::outsideNotification:
      return "not in a notification";
    case HLRefusal::menu:
      return "part of a menu";
    case HLRefusal::notAButton:
      return "not a button";
    case HLRefusal::negativeWord:
      return "its words have " + inQuotes(details.negativeWord);
    case HLRefusal::tooLarge:
      return "too large for a close button without a word for closing";
    case HLRefusal::lowScore:
      return details.negativeWord.empty() ? "too few points" : "its words have " + inQuotes(details.negativeWord);
  }
  return "";
}

}  // namespace

HLExplanation HLExplain(HLCapture& capture) { return Explainer(capture).run(); }

std::string HLRefusalText(const HLExplainedElement& element) {
  const bool isBanner = HLIsNotificationBannerSubrole(element.facts.subrole);
  const bool isPressable = HLIsPressable(element.facts.actionNames);
  if (element.candidate || element.isRepeat) return "";
  if (!isBanner && !isPressable && element.facts.role != "AXButton") return "";
  std::string text;
  if (element.scanned == HLScanned::beyondLimit) {
    text = "beyond the limit of " + std::to_string(HLScanLimit) + " elements";
  } else if (element.scanned == HLScanned::belowStrongTarget) {
    text = "part of a control that is pressed";
  } else {
    text = refusalOf(element.details, isBanner);
  }
  if (!text.empty() && !element.doubt.empty()) text += "; ";
  return text + element.doubt;
}
