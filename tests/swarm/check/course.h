// What has happened in one run, beside what the rules say must happen. The checks compare the two.
#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "core/dismissal/result.h"
#include "tests/swarm/check/scan_model.h"
#include "tests/swarm/generate/plan.h"

// One prepared control of a batch.
struct BatchEntry {
  ModelTarget target;
  ModelTarget resolved;
  HLAXError code = 0;
  int presses = 0;
};

// One dismissal, followed step by step.
struct Dismissal {
  std::thread::id thread;
  bool exact = true;  // else a reading failed where the model cannot tell which one the program used
  double startedAt = 0;
  double pressSeconds = 0;  // of all batches
  int loops = 0;            // runs of the attempt loop
  std::int64_t iteration = -1;
  std::int64_t mostAlerts = 0;  // of one application at the start
  std::vector<ModelTarget> before;
  std::vector<ModelTarget> eligible;
  std::set<std::string> ineffective;
  std::vector<BatchEntry> batch;
  bool inBatch = false;
  std::uint64_t dismissed = 0;         // in this attempt loop
  std::uint64_t dismissedEarlier = 0;  // in earlier attempt loops
  bool failed = false;
  HLDismissStatus firstStatus = HLDismissStatusNothing;  // before the drain
  std::optional<HLDismissStatus> preflight;              // the result if no attempt loop has run

  [[nodiscard]] HLDismissResult expected(std::int64_t onScreen) const;
};

struct NewPress {
  std::string action;
  bool allowed = false;
  bool repeated = false;
  int atOnce = 0;
};
struct NewScan {
  std::int64_t visited = 0;
  std::int64_t candidates = 0;
  std::int64_t modelVisited = 0;
  std::int64_t modelCandidates = 0;
};
// Numbers of a log record, each beside the model's.
struct Compared {
  std::string what;
  std::int64_t logged = 0;
  std::int64_t expected = 0;
};
struct Outcome {
  HLDismissResult result;
  HLDismissResult expected;
  std::int64_t onScreen = 0;  // what the last scan saw
  bool exact = true;
  double seconds = 0;
  double longest = 0;
};
// What was handed to another thread, once it runs or is given up.
struct NewWork {
  bool isRefused = false;
  bool onOwnThread = false;  // that it was handed over on, the main thread
  double seconds = 0;        // from then on
  double pressSeconds = 0;   // for which that thread was held up meanwhile
};
// What a record left in its log when there was no room for all of it.
struct CutRecord {
  std::string record;
  std::string rest;
  std::int64_t room = 0;
};
struct CallerOutcome {
  std::string wanted;  // a reply, "" for either answer about trust, "-" for none
  std::string received;
  bool leavesEarly = false;
  bool answeredTooEarly = false;
};

class Course {
 public:
  explicit Course(const Plan& made) : plan(made) {}

  const Plan& plan;

  // The newest of each kind.
  NewPress press;
  NewScan scan;
  std::vector<Compared> numbers;
  Outcome outcome;
  std::string record;
  bool recordIsWhole = true;
  std::string path;  // that something was written to
  bool signalIsAllowed = true;
  NewWork work;
  CutRecord cut;

  // Now.
  int dismissalsAtOnce = 0;
  std::int64_t lostPresses = 0;               // prepared, but not performed
  std::map<std::string, std::int64_t> alive;  // timers, observers, monitors, hot keys, queues, element handles
  bool setupIsOpen = false;
  bool settingsIsOpen = false;
  std::string title;
  std::string image;
  std::optional<bool> available;  // as refreshed last
  bool inFlight = false;
  bool launched = false;

  // At the end.
  std::vector<CallerOutcome> callers;
  std::vector<std::string> replies;  // to "dismiss", in order, as the model has them; "" for any
  std::int64_t threadsLeft = 0;
  std::int64_t descriptorsLeft = 0;
  int exitCode = 0;
  double seconds = 0;

  // Faults that have struck; a reading that was cut short is a call, too.
  std::int64_t callFaults = 0;
  std::int64_t cutAnswers = 0;
  std::int64_t refusedThreads = 0;
  std::int64_t logFaults = 0;
  std::int64_t presses = 0;
  double otherPressSeconds = 0;  // of presses outside batches
  bool workIsRefused = false;

  // Returns the result line of the other daemon's next dismissal, or "" if its reply could not be read. Empty without
  // another daemon.
  std::function<std::string()> daemonAnswer;

  // Whether the thread that is to start now is refused.
  [[nodiscard]] bool refusesThread();

  // What the watched platform notices. All in turn, never two at once.
  void windowsRead(const std::vector<Seen*>& windows);
  void logged(const std::string& message);
  void batchBegins(double now);
  // Before the press: the entry to complete, nullptr where it is none of the batch's.
  BatchEntry* pressing(Seen* element, const std::string& action, bool inQueue);
  void batchEnds(double now);
  // Where the result is known, and where only the model knows it: a daemon's.
  void dismissalEnds(const HLDismissResult& result, double now);
  void dismissalEndsUnseen();
  void signalled(std::int32_t pid, int signal);

  double now = 0;

 private:
  struct Scans {
    std::vector<Seen*> windows;
    std::size_t next = 0;
    std::set<std::string> keys;
    std::vector<ModelTarget> targets;
    std::int64_t faultsAtStart = 0;
  };

  Dismissal* current();
  Scans& scans() { return scans_[std::this_thread::get_id()]; }
  bool isAutoClose(Seen* element, const std::string& action);
  void attempt(Dismissal& dismissal, const std::string& message);
  void progress(Dismissal& dismissal, const std::string& message);
  void batchLogged(Dismissal& dismissal, const std::string& message);
  void followDismissal(const std::string& message);
  void followApplication(const std::string& message);
  void compare(const std::string& what, std::int64_t logged, std::int64_t expected);

  std::map<std::thread::id, Scans> scans_;
  std::list<Dismissal> dismissals_;  // under way, or not yet known to have ended
  std::set<std::string> autoClosed_;
  std::int64_t threadStarts_ = 0;
  std::vector<std::int32_t> centers_;
};

// The number behind the name in a log record; 0 without one.
[[nodiscard]] std::int64_t Field(const std::string& message, const std::string& name);
