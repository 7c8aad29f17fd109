// Makes a failing plan small.
#pragma once

#include <string>

#include "tests/swarm/generate/plan.h"

// The plan without all that is not needed for its first violation; as it is when it has none.
[[nodiscard]] Plan Shrunk(Plan plan, const std::string& folder);
