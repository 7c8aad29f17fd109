// Records as one line of text, so that a test compares all fields and prints differences readably.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "core/dismissal/result.h"
#include "core/scan/records.h"

// "Name:Close 220 (1060,40,360,80) [snapshot] reason"; "nothing" for no target, "no frame" for the null rectangle.
[[nodiscard]] std::string Describe(const std::optional<HLDismissTarget>& target);
[[nodiscard]] std::vector<std::string> Describe(const std::vector<HLDismissTarget>& targets);

void PrintTo(const HLDismissResult& result, std::ostream* stream);
