#include "tests/swarm/check/course.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>

#include "platform/text.h"

namespace {

constexpr double kLongestLoop = 64 * 0.4;
constexpr double kLongestRestart = 50 * 0.1 + 16 * 0.3;

std::int64_t count(const std::vector<ModelTarget>& targets) { return static_cast<std::int64_t>(targets.size()); }

// By the text before the first ", " of each description.
std::int64_t mostAlertsOfOne(const std::vector<ModelTarget>& targets) {
  std::map<std::string, std::int64_t> counts;
  std::int64_t most = 0;
  for (const ModelTarget& target : targets) {
    const std::string& description = target.element->description;
    most = std::max(most, ++counts[description.substr(0, description.find(", "))]);
  }
  return most;
}

}  // namespace

std::int64_t Field(const std::string& message, const std::string& name) {
  const std::size_t at = message.rfind(name + "=");
  return at == std::string::npos ? 0 : std::strtoll(message.c_str() + at + name.size() + 1, nullptr, 10);
}

HLDismissResult Dismissal::expected(std::int64_t onScreen) const {
  if (preflight) return {*preflight, 0, 0};
  HLDismissStatus status = HLDismissStatusNothing;
  if (failed) {
    status = HLDismissStatusFailed;
  } else if (iteration == 63 || static_cast<std::int64_t>(dismissed) > 0) {
    status = HLDismissStatusSuccess;
  }
  if (loops > 1) status = failed ? HLDismissStatusFailed : firstStatus;
  return {status, static_cast<std::int64_t>(dismissed + dismissedEarlier), onScreen};
}

Dismissal* Course::current() {
  const auto found = std::find_if(dismissals_.begin(), dismissals_.end(), [](const Dismissal& dismissal) {
    return dismissal.thread == std::this_thread::get_id();
  });
  return found == dismissals_.end() ? nullptr : &*found;
}

void Course::compare(const std::string& what, std::int64_t logged, std::int64_t expected) {
  numbers.push_back({what, logged, expected});
}

bool Course::refusesThread() {
  ++threadStarts_;
  const bool isRefused =
      std::any_of(plan.threadRefusals.begin(), plan.threadRefusals.end(), [this](const ThreadRefusal& refusal) {
        return threadStarts_ >= refusal.start && threadStarts_ - refusal.start < refusal.count;
      });
  refusedThreads += isRefused ? 1 : 0;
  return isRefused;
}

// Scans

void Course::windowsRead(const std::vector<Seen*>& windows) {
  scans() = {windows, 0, {}, {}, callFaults};
  Dismissal* dismissal = current();
  if (dismissal != nullptr && dismissal->preflight) {
    dismissal->preflight.reset();
    dismissal->loops = 1;
  }
}

void Course::logged(const std::string& message) {
  record = message;
  numbers.clear();
  if (message.starts_with("scan root=")) {
    Scans& under = scans();
    if (under.next >= under.windows.size()) {
      scan = {1, 0, 0, 0};
      return;
    }
    const ModelScan model = ScanWindow(under.windows[under.next++]);
    scan = {Field(message, "visited"), Field(message, "candidates"), model.visited, count(model.targets)};
    for (const ModelTarget& target : model.targets) {
      if (under.keys.insert(DeduplicationKey(target)).second) under.targets.push_back(target);
    }
    return;
  }
  followDismissal(message);
  followApplication(message);
}

// Dismissals

void Course::followDismissal(const std::string& message) {
  if (message.starts_with("dismiss preflight trusted=")) {
    if (plan.mode == Mode::daemon) dismissalEndsUnseen();
    Dismissal begun;
    begun.thread = std::this_thread::get_id();
    begun.startedAt = now;
    begun.preflight = message.starts_with("dismiss preflight trusted=true")
                          ? HLDismissStatusNotificationCenterUnavailable
                          : HLDismissStatusAccessDenied;
    dismissals_.push_back(begun);
    dismissalsAtOnce = static_cast<int>(dismissals_.size());
    return;
  }
  Dismissal* dismissal = current();
  if (dismissal == nullptr) return;
  if (message.starts_with("notification center pid=")) {
    dismissal->preflight = HLDismissStatusFailed;
    centers_.push_back(static_cast<std::int32_t>(Field(message, "pid")));
  } else if (message.starts_with("attempt iteration=")) {
    attempt(*dismissal, message);
  } else if (message.starts_with("batch actions ")) {
    batchLogged(*dismissal, message);
  } else if (message.starts_with("batch progress ") || message.starts_with("batch made no ")) {
    progress(*dismissal, message);
  } else if (message.starts_with("aborting because")) {
    compare("left when all are ineffective", Field(message, "remaining"), count(dismissal->before));
    compare("eligible when all are ineffective", 0, count(dismissal->eligible));
    dismissal->failed = true;
  } else if (message.starts_with("batch had no ")) {
    compare("left when no action succeeded", Field(message, "remaining"), count(scans().targets));
    dismissal->failed = true;
  } else if (message.starts_with("batch preparation allocation failed")) {
    dismissal->failed = true;
  } else if (message.starts_with("overflow drain=")) {
    compare("presented", Field(message, "presented"), count(scans().targets));
    dismissal->firstStatus = dismissal->expected(0).status;
    dismissal->dismissedEarlier += dismissal->dismissed;
    dismissal->dismissed = 0;
    dismissal->iteration = -1;
    dismissal->ineffective.clear();
    ++dismissal->loops;
  }
}

void Course::attempt(Dismissal& dismissal, const std::string& message) {
  const std::string numbersOnly = message.substr(0, message.find(" top="));
  dismissal.before = Sorted(scans().targets);
  dismissal.eligible = dismissal.before;
  std::erase_if(dismissal.eligible,
                [&dismissal](const ModelTarget& target) { return dismissal.ineffective.count(target.key()) > 0; });
  compare("iteration", Field(numbersOnly, "iteration"), ++dismissal.iteration);
  if (dismissal.iteration > 63) compare("iterations", dismissal.iteration, 63);
  if (dismissal.exact) {
    compare("targetCount", Field(numbersOnly, "targetCount"), count(dismissal.before));
    compare("eligible", Field(numbersOnly, "eligible"), count(dismissal.eligible));
  }
  if (dismissal.loops == 1 && dismissal.iteration == 0) dismissal.mostAlerts = mostAlertsOfOne(dismissal.before);
}

void Course::batchBegins(double at) {
  Dismissal* dismissal = current();
  if (dismissal == nullptr) return;
  dismissal->inBatch = true;
  dismissal->pressSeconds -= at;
  dismissal->batch.clear();
  for (const ModelTarget& target : dismissal->eligible) {
    BatchEntry entry{target, Resolve(target), 0, 0};
    const bool known =
        std::any_of(dismissal->batch.begin(), dismissal->batch.end(), [&entry](const BatchEntry& earlier) {
          return earlier.resolved.element->node->isEqual(*entry.resolved.element->node);
        });
    if (!known) dismissal->batch.push_back(std::move(entry));
  }
  // A later search may have replaced a handle that an earlier one has gone through, and have stopped short of it.
  const bool replacesHandles = plan.scene.find("freshHandles") != std::string::npos;
  const auto searches = std::count_if(dismissal->eligible.begin(), dismissal->eligible.end(), NeedsResolution);
  if (callFaults > scans().faultsAtStart || (replacesHandles && searches > 1)) dismissal->exact = false;
}

BatchEntry* Course::pressing(Seen* element, const std::string& action, bool inQueue) {
  ++presses;
  press = {action, false, false, press.atOnce};
  if (plan.mode == Mode::closeMatching) {
    const std::vector<ModelTarget>& targets = scans().targets;
    press.allowed = std::any_of(targets.begin(), targets.end(), [&](const ModelTarget& target) {
      return target.element == element && target.action == action;
    });
    return nullptr;
  }
  if (!inQueue) {
    press.allowed = isAutoClose(element, action);
    return nullptr;
  }
  for (Dismissal& dismissal : dismissals_) {
    if (!dismissal.inBatch) continue;
    for (BatchEntry& entry : dismissal.batch) {
      if (!entry.resolved.element->node->isEqual(*element->node)) continue;
      press.repeated = entry.presses++ > 0;
      press.allowed = entry.resolved.action == action || !dismissal.exact;
      return &entry;
    }
    if (dismissal.exact) continue;
    // What is pressed lists the action, and closes or is small enough to.
    const std::vector<std::string>& names = element->last.actions;
    press.allowed = std::find(names.begin(), names.end(), action) != names.end() || callFaults > 0;
  }
  return nullptr;
}

bool Course::isAutoClose(Seen* element, const std::string& action) {
  return element->subrole == "AXNotificationCenterAlert" && IsAutomation(element->description) &&
         AutoCloseAction(element->last.actions) == action && autoClosed_.insert(element->description).second;
}

void Course::batchEnds(double at) {
  for (Dismissal& dismissal : dismissals_) {
    if (!dismissal.inBatch) continue;
    dismissal.inBatch = false;
    dismissal.pressSeconds += at;
    if (!dismissal.exact) continue;
    lostPresses += std::count_if(dismissal.batch.begin(), dismissal.batch.end(),
                                 [](const BatchEntry& entry) { return entry.presses == 0; });
  }
}

void Course::batchLogged(Dismissal& dismissal, const std::string& message) {
  std::int64_t clear = 0;
  std::int64_t close = 0;
  std::int64_t failed = 0;
  for (const BatchEntry& entry : dismissal.batch) {
    if (entry.code != 0) {
      ++failed;
      dismissal.ineffective.insert(entry.target.key());
      dismissal.ineffective.insert(entry.resolved.key());
    } else {
      ++(HLLowercase(entry.target.action).find("clear") != std::string::npos ? clear : close);
    }
  }
  if (!dismissal.exact) return;
  compare("eligible of the batch", Field(message, "eligible"), count(dismissal.eligible));
  compare("attempted", Field(message, "attempted"), clear + close);
  compare("clear", Field(message, "clear"), clear);
  compare("close", Field(message, "close"), close);
  compare("failed", Field(message, "failed"), failed);
}

void Course::progress(Dismissal& dismissal, const std::string& message) {
  const std::vector<ModelTarget> after = scans().targets;
  const std::int64_t removed = RemovedCount(dismissal.before, after);
  if (message.starts_with("batch made no ")) {
    compare("removed without progress", 0, removed);
    compare("less without progress", 0, after.size() < dismissal.before.size() ? 1 : 0);
    compare("left without progress", Field(message, "remaining"), count(after));
    for (const BatchEntry& entry : dismissal.batch) {
      if (entry.code == 0) dismissal.ineffective.insert(entry.target.key());
    }
    return;
  }
  compare("before", Field(message, "before"), count(dismissal.before));
  compare("after", Field(message, "after"), count(after));
  compare("removed", Field(message, "removed"), removed);
  compare("progress", 1, removed > 0 || after.size() < dismissal.before.size() ? 1 : 0);
  dismissal.dismissed += std::max(static_cast<std::uint64_t>(removed), dismissal.before.size() - after.size());
}

void Course::dismissalEnds(const HLDismissResult& result, double at) {
  if (dismissals_.empty()) return;
  const Dismissal dismissal = std::move(dismissals_.front());
  dismissals_.pop_front();
  dismissalsAtOnce = static_cast<int>(dismissals_.size());
  const std::int64_t onScreen = count(scans_[dismissal.thread].targets);
  outcome = {
      result,          dismissal.expected(onScreen), onScreen,
      dismissal.exact, at - dismissal.startedAt,     2 * kLongestLoop + kLongestRestart + dismissal.pressSeconds};
}

void Course::dismissalEndsUnseen() {
  if (dismissals_.empty()) return;
  const Dismissal& dismissal = dismissals_.front();
  const HLDismissResult result = dismissal.expected(count(scans_[dismissal.thread].targets));
  replies.push_back(dismissal.exact ? HLResultWireString(result) : "");
  dismissals_.pop_front();
}

void Course::signalled(std::int32_t pid, int signal) {
  const Dismissal* dismissal = current();
  const bool isCenter = std::find(centers_.begin(), centers_.end(), pid) != centers_.end();
  signalIsAllowed = dismissal != nullptr && isCenter && (signal == SIGTERM || signal == SIGKILL) &&
                    dismissal->mostAlerts >= 20 && dismissal->loops == 1 &&
                    dismissal->expected(0).status == HLDismissStatusSuccess;
}

// The application

void Course::followApplication(const std::string& message) {
  if (message == "dismissNotifications started") {
    dismissalsAtOnce = inFlight ? 2 : 1;  // from its preflight on it is counted there
    inFlight = true;
  }
  if (message.starts_with("dismissNotifications outcome ")) {
    inFlight = false;
    HLDismissResult result;
    const std::size_t word = message.find("status=") + 7;
    const std::string status = message.substr(word, message.find(' ', word) - word);
    (void)HLParseResultString(
        status + "|" + std::to_string(Field(message, "dismissed")) + "|" + std::to_string(Field(message, "remaining")),
        result);
    HLDismissResult elsewhere{workIsRefused ? HLDismissStatusFailed : HLDismissStatusAccessDenied, 0, 0};
    if (daemonAnswer && dismissals_.empty() && !workIsRefused) (void)HLParseResultString(daemonAnswer(), elsewhere);
    outcome = {result, elsewhere, 0, true, 0, 0};
    dismissalEnds(result, now);
  }
  if (message.starts_with("refreshStatusItem available=")) {
    available = message.starts_with("refreshStatusItem available=true");
  }
  if (message.starts_with("auto-close watching") || message.starts_with("autoClose want")) autoClosed_.clear();
}
