// What a program shows, as its accessible interface tells it.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "platform/geometry.h"
#include "platform/linux/atspi/roles.h"
#include "tests/platform/linux/support/child_process.h"

struct ShownPart {
  std::string name;  // what is written on it
  HLRawRole role = HLRawRole::invalid;
  bool isChecked = false;
  HLRect place;  // on the screen
};

// In the order in which a reader meets them; none where the program is not on the accessibility bus or does not answer.
[[nodiscard]] std::vector<ShownPart> ShownParts(const Environment& environment, pid_t program);
