// The command-line modes: which one an argument list selects, and running it.
#pragma once

#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The arguments of a mode.
struct HLModeCall {
  std::string value;   // of modes with a text
  double seconds = 0;  // of modes with a duration
  std::ostream& out;
  std::ostream& err;
};

// Runs the mode to its end and returns the exit code. Main thread only.
using HLModeFunction = int (*)(const HLModeCall& call);

enum class HLModeValue {
  none,
  required,  // the argument after the switch; without one the mode does not apply
  expected,  // the argument after the switch; without one "", which the mode refuses
  seconds,   // the same as a number, with a default
};

struct HLMode {
  std::string_view switchName;  // "" for the menu-bar application, which runs when no switch applies
  HLModeValue value;
  HLModeFunction run;
};

// Returns all modes in the order in which they are tested, the menu-bar application last.
[[nodiscard]] std::span<const HLMode> HLModes();

struct HLSelectedMode {
  const HLMode& mode;
  std::string value;
  double seconds = 0;
};

// Returns the first mode that applies. Skips the first argument, the executable's path, and unknown switches.
[[nodiscard]] HLSelectedMode HLSelectMode(const std::vector<std::string>& arguments);

// Runs the mode and returns its exit code.
[[nodiscard]] int HLRunMode(const HLSelectedMode& selected, std::ostream& out, std::ostream& err);
