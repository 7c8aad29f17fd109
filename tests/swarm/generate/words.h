// The texts that desktops are made of.
#pragma once

#include <string>

#include "tests/swarm/generate/random.h"

// A text without regard to what bears it: ordinary, empty, huge, of any script, with control characters, with half of a
// pair, with words that the program looks for. UTF-8; half of a pair is written as kHalfMark.
[[nodiscard]] std::string HostileText(Random& random);

// "Mail, Letter" and the like; now and then of the automation that is closed by itself.
[[nodiscard]] std::string AlertText(Random& random);

[[nodiscard]] std::string ActionName(Random& random);
[[nodiscard]] std::string RoleName(Random& random);
[[nodiscard]] std::string SubroleName(Random& random);

// As a JSON string.
[[nodiscard]] std::string Quoted(std::string_view text);
