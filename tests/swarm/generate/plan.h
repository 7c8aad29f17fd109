// What one seed runs: a scene, and what no scene can express.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/accessibility.h"

enum class Mode { dismissal, application, daemon, autoClose, closeMatching };
inline constexpr int ModeCount = 5;
[[nodiscard]] std::string_view NameOfMode(Mode mode);

// In a scene's texts this private-use character stands for half of a pair, which JSON cannot hold.
inline constexpr std::string_view kHalfMark = "\xEE\x80\x80";
inline constexpr std::string_view kHalfOfPair = "\xED\xA0\xBD";

// The accessibility call with that number, 1 first, gives the code and has no effect.
struct CallFault {
  std::int64_t call = 0;
  HLAXError code = 0;
};

// From the clock reading with that number on, the wall clock is off by so much.
struct ClockJump {
  std::int64_t reading = 0;
  double seconds = 0;
};

// Threads are refused from the start with that number, 1 first, as many times as said.
struct ThreadRefusal {
  std::int64_t start = 0;
  std::int64_t count = 0;
};

// The reading of a whole element with that number, 1 first, ends behind so many of the attributes that were asked for.
struct ShortAnswer {
  std::int64_t reading = 0;
  std::size_t attributes = 0;
};

// From the log record with that number on, 1 first, so many find room for that many bytes only; for a negative number
// the log does not open. It may be more bytes, where a character of several bytes is to be cut.
struct LogFault {
  std::int64_t record = 0;
  std::int64_t count = 0;
  std::int64_t room = 0;
  bool cutsCharacter = false;
};

enum class Manner { asks, sendsInPieces, leavesEarly, staysIdle, asksWithoutEnd };

// One connection to the daemon.
struct Caller {
  Manner manner = Manner::asks;
  std::string request;
};

struct Plan {
  std::uint64_t seed = 0;
  Mode mode = Mode::dismissal;
  bool isProduct = false;
  std::string scene;  // as hushlet-sim reads it
  std::vector<std::string> arguments = {"hushlet-sim"};
  std::vector<CallFault> callFaults;
  std::vector<ClockJump> clockJumps;
  std::int64_t failingAllocation = 0;  // of a batch's arrays, 1 first; 0 for none
  std::vector<ThreadRefusal> threadRefusals;
  std::vector<ShortAnswer> shortAnswers;
  std::vector<LogFault> logFaults;
  std::vector<Caller> callers;  // of the daemon, which is told to quit behind them
  // Of a daemon beside the application, by their kinds in turn; empty where there is none.
  std::vector<std::size_t> daemonReplies;
};

struct PlanShape {
  std::int64_t elements = 0;
  std::int64_t sceneFaults = 0;
  std::int64_t inputs = 0;
};

// Seeds come in blocks of one flavor, since a process has one flavor for its life.
inline constexpr std::uint64_t kBlock = 100;
[[nodiscard]] inline bool IsProductSeed(std::uint64_t seed) { return seed / kBlock % 2 == 1; }

[[nodiscard]] Plan MakePlan(std::uint64_t seed, PlanShape& shape);
