// What the program was told about elements, as it was told.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/accessibility.h"

struct Seen;

// One reading of an element: every attribute that a scan asks for, and the action names. Missing texts are "".
struct Reading {
  std::array<std::string, 7> texts;  // role, subrole, role description, title, description, value, identifier
  bool framed = false;
  HLRect frame;
  std::vector<std::string> actions;
  std::vector<Seen*> children;  // of the three lists, in order

  [[nodiscard]] const std::string& role() const { return texts[0]; }
  [[nodiscard]] const std::string& subrole() const { return texts[1]; }
};

// A handle that the program was given.
struct Seen {
  HLElementRef node;  // the simulator's
  Reading last;
  std::array<Seen*, 2> closeControls = {};  // AXCloseButton, AXCancelButton, as read last
  std::string subrole;                      // read alone, as is the description
  std::string description;
};
