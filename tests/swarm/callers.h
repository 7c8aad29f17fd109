// Clients of the daemon under test, one after the other, on a thread of their own and in real time.
#pragma once

#include <string>
#include <vector>

#include "tests/swarm/check/course.h"
#include "tests/swarm/generate/plan.h"

// Serves the plan's callers and tells the daemon to quit. Blocks until each has been served. What "dismiss" is answered
// with is known to the course alone: `wanted` is then "dismiss".
[[nodiscard]] std::vector<CallerOutcome> CallDaemon(const std::vector<Caller>& callers, const std::string& socketPath);
