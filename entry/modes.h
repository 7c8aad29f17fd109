// The command-line modes: which one an argument list selects, and running it.
#pragma once

#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// What a mode is run with.
struct HLModeCall {
  std::string value;   // of a mode that needs one
  double seconds = 0;  // of a mode that lasts
  std::ostream& out;
  std::ostream& err;
};

// Runs the mode to completion on the main thread; the exit code.
using HLModeFunction = int (*)(const HLModeCall& call);

enum class HLModeValue {
  none,
  required,  // the argument after the switch; without one the mode does not apply
  expected,  // the argument after the switch; "" without one, which is for the mode to refuse
  seconds,   // the same as a number, with a default
};

struct HLMode {
  std::string_view switchName;  // "" for the menu-bar application, which runs when no switch applies
  HLModeValue value;
  HLModeFunction run;
};

// All modes in the order in which they are tested, the menu-bar application last.
[[nodiscard]] std::span<const HLMode> HLModes();

struct HLSelectedMode {
  const HLMode& mode;
  std::string value;
  double seconds = 0;
};

// The first mode that applies. The first argument is the executable's path. Unknown switches are ignored.
[[nodiscard]] HLSelectedMode HLSelectMode(const std::vector<std::string>& arguments);

// The mode's exit code.
[[nodiscard]] int HLRunMode(const HLSelectedMode& selected, std::ostream& out, std::ostream& err);
