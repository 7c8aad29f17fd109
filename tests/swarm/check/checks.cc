#include "tests/swarm/check/checks.h"

#include <algorithm>
#include <array>
#include <optional>

#include "platform/text.h"

namespace {

// What is wrong, or nullopt.
using Finding = std::optional<std::string>;

Finding pressesOnlyWhatTheRulesAllow(const Course& course) {
  if (course.press.allowed) return std::nullopt;
  return "pressed " + course.press.action;
}

Finding pressesAControlOnceInABatch(const Course& course) {
  if (!course.press.repeated) return std::nullopt;
  return "again " + course.press.action;
}

Finding pressesFourAtOnceAtMost(const Course& course) {
  if (course.press.atOnce <= 4) return std::nullopt;
  return std::to_string(course.press.atOnce) + " at once";
}

Finding pressesAllThatWasPrepared(const Course& course) {
  if (course.lostPresses == 0) return std::nullopt;
  return std::to_string(course.lostPresses) + " not pressed";
}

Finding findsWhatTheRulesFind(const Course& course) {
  const NewScan& scan = course.scan;
  if (scan.visited == scan.modelVisited && scan.candidates == scan.modelCandidates) return std::nullopt;
  return "visited " + std::to_string(scan.visited) + " for " + std::to_string(scan.modelVisited) + ", found " +
         std::to_string(scan.candidates) + " for " + std::to_string(scan.modelCandidates);
}

Finding countsAsStated(const Course& course) {
  for (const Compared& number : course.numbers) {
    if (number.logged != number.expected) {
      return number.what + " is " + std::to_string(number.logged) + " for " + std::to_string(number.expected) + ": " +
             course.record;
    }
  }
  return std::nullopt;
}

Finding givesTheResultThatFollows(const Course& course) {
  const Outcome& outcome = course.outcome;
  if (!outcome.exact || outcome.result == outcome.expected) return std::nullopt;
  return HLResultWireString(outcome.result) + " for " + HLResultWireString(outcome.expected);
}

Finding leavesNothingUnseen(const Course& course) {
  const Outcome& outcome = course.outcome;
  const bool saysNothingLeft = outcome.result.status <= HLDismissStatusNothing && outcome.result.remaining == 0;
  if (!saysNothingLeft || outcome.onScreen == 0) return std::nullopt;
  return std::to_string(outcome.onScreen) + " on screen";
}

Finding endsInTime(const Course& course) {
  if (course.outcome.seconds <= course.outcome.longest + 1e-3) return std::nullopt;
  return std::to_string(course.outcome.seconds) + " s for " + std::to_string(course.outcome.longest);
}

Finding dismissesOneAtATime(const Course& course) {
  if (course.dismissalsAtOnce <= 1) return std::nullopt;
  return std::to_string(course.dismissalsAtOnce) + " at once";
}

Finding writesWholeRecords(const Course& course) {
  if (course.recordIsWhole) return std::nullopt;
  return course.record;
}

Finding writesOnlyWhereNamed(const Course& course) {
  if (course.path.empty()) return std::nullopt;
  return course.path;
}

Finding signalsOnlyAnOverflowingCenter(const Course& course) {
  if (course.signalIsAllowed) return std::nullopt;
  return "signal";
}

Finding restoresTheButton(const Course& course) {
  if (course.plan.mode != Mode::application || course.inFlight || !course.available) return std::nullopt;
  const std::string title = course.plan.isProduct ? "" : *course.available ? "HL" : "HL!";
  const std::string image = !course.plan.isProduct ? "" : *course.available ? "bell.slash" : "exclamationmark.triangle";
  if (course.title == title && course.image == image) return std::nullopt;
  return "\"" + course.title + "\" " + course.image;
}

// Of a cut record, all but the end of its last line stays, and the next record begins on a line of its own.
Finding endsCutRecords(const Course& course) {
  constexpr std::size_t kLongestCharacter = 4;
  const CutRecord& cut = course.cut;
  const std::size_t room = static_cast<std::size_t>(cut.room);
  const std::size_t kept = room - std::min(room, kLongestCharacter);
  const bool isEnded = cut.rest.size() == room && cut.rest.ends_with('\n') && HLIsEncodable(cut.rest) &&
                       cut.rest.substr(0, kept) == cut.record.substr(0, kept);
  if (isEnded) return std::nullopt;
  return std::to_string(cut.room) + " bytes left " + cut.rest;
}

Finding worksOnThreadsOfItsOwn(const Course& course) {
  if (course.work.isRefused == course.work.onOwnThread) return std::nullopt;
  return course.work.isRefused ? "gives up elsewhere" : "works on the main thread";
}

Finding givesUpAfterFiveSecondsWithoutAThread(const Course& course) {
  constexpr double kLongestWait = 5;
  const NewWork& work = course.work;
  const bool isEarly = work.isRefused && work.seconds < kLongestWait - 1e-3;
  const bool isLate = work.seconds > kLongestWait + work.pressSeconds + 1e-3;
  if (!isEarly && !isLate) return std::nullopt;
  return std::to_string(work.seconds) + (work.isRefused ? " s, given up" : " s");
}

std::int64_t alive(const Course& course, const std::string& kind) {
  const auto found = course.alive.find(kind);
  return found == course.alive.end() ? 0 : found->second;
}

// While their owners live.
Finding keepsNoMoreThanItsOwnersNeed(const Course& course) {
  if (course.launched && alive(course, "timers") != (course.setupIsOpen ? 1 : 0)) return "timers";
  if (course.launched && alive(course, "key monitors") > (course.settingsIsOpen ? 1 : 0)) return "key monitors";
  for (const char* kind : {"observers", "attached observers", "hot keys", "queues"}) {
    if (alive(course, kind) > 1) return kind;
  }
  return std::nullopt;
}

Finding leavesNothingBehind(const Course& course) {
  for (const auto& [kind, count] : course.alive) {
    if (count != 0) return kind + " " + std::to_string(count);
  }
  if (course.threadsLeft != 0) return "threads " + std::to_string(course.threadsLeft);
  if (course.descriptorsLeft != 0) return "descriptors";
  return std::nullopt;
}

Finding answersEachCallerOnce(const Course& course) {
  for (const CallerOutcome& caller : course.callers) {
    if (caller.leavesEarly) continue;
    const bool isOne = caller.wanted.empty()
                           ? caller.received == "nothing|0|0\n" || caller.received == "accessDenied|0|0\n"
                           : caller.received == caller.wanted + "\n";
    if (!isOne) return "received " + caller.received + " for " + caller.wanted;
  }
  return std::nullopt;
}

Finding keepsCallersWaitingBehindAnIdleOne(const Course& course) {
  for (const CallerOutcome& caller : course.callers) {
    if (caller.answeredTooEarly) return "answered " + caller.received;
  }
  return std::nullopt;
}

Finding exitsAsStated(const Course& course) {
  const bool mayBeTwo = course.plan.mode == Mode::application;  // the scene names what is not there
  const bool mayFail = course.plan.mode == Mode::autoClose || course.plan.mode == Mode::closeMatching;
  if (course.exitCode == 0 || (course.exitCode == 1 && mayFail) || (course.exitCode == 2 && mayBeTwo))
    return std::nullopt;
  return std::to_string(course.exitCode);
}

struct Check {
  When when;
  const char* name;
  Finding (*find)(const Course& course);
};

constexpr std::array kChecks = {
    Check{When::press, "presses only what the rules allow", pressesOnlyWhatTheRulesAllow},
    Check{When::press, "presses a control once in a batch", pressesAControlOnceInABatch},
    Check{When::press, "presses four at once at most", pressesFourAtOnceAtMost},
    Check{When::step, "presses all that was prepared", pressesAllThatWasPrepared},
    Check{When::record, "finds what the rules find", findsWhatTheRulesFind},
    Check{When::record, "counts as stated", countsAsStated},
    Check{When::end, "gives the result that follows", givesTheResultThatFollows},
    Check{When::record, "gives the result that follows", givesTheResultThatFollows},
    Check{When::end, "says nothing is left only when nothing was seen", leavesNothingUnseen},
    Check{When::record, "says nothing is left only when nothing was seen", leavesNothingUnseen},
    Check{When::end, "ends in time", endsInTime},
    Check{When::record, "ends in time", endsInTime},
    Check{When::record, "dismisses one at a time", dismissesOneAtATime},
    Check{When::write, "writes whole records", writesWholeRecords},
    Check{When::write, "writes only where named", writesOnlyWhereNamed},
    Check{When::cut, "ends what a full disk cuts", endsCutRecords},
    Check{When::work, "works on threads of its own", worksOnThreadsOfItsOwn},
    Check{When::work, "gives up after 5 s without a thread", givesUpAfterFiveSecondsWithoutAThread},
    Check{When::signal, "signals only an overflowing Notification Center", signalsOnlyAnOverflowingCenter},
    Check{When::idle, "restores the button", restoresTheButton},
    Check{When::step, "keeps no more than its owners need", keepsNoMoreThanItsOwnersNeed},
    Check{When::end, "leaves nothing behind", leavesNothingBehind},
    Check{When::end, "answers each caller once", answersEachCallerOnce},
    Check{When::end, "keeps callers waiting behind an idle one", keepsCallersWaitingBehindAnIdleOne},
    Check{When::end, "exits as stated", exitsAsStated},
};

}  // namespace

void Checker::check(When when, const Course& course) {
  constexpr std::size_t kEnough = 20;
  for (const Check& check : kChecks) {
    if (check.when != when || violations_.size() >= kEnough) continue;
    if (const Finding finding = check.find(course)) violations_.push_back({check.name, *finding});
  }
}
