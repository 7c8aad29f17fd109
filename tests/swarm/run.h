// One plan, run from its first moment to its last in this process.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/swarm/check/checks.h"
#include "tests/swarm/generate/plan.h"

struct RunReport {
  std::vector<Violation> violations;
  std::string outcome;  // a word for the statistics
  std::int64_t presses = 0;
  // Faults that have struck.
  std::int64_t callFaults = 0;
  std::int64_t cutAnswers = 0;
  std::int64_t refusedThreads = 0;
  std::int64_t logFaults = 0;
  double seconds = 0;  // of the scene's time
};

// The home is a folder that the program may write its state to. Main thread.
[[nodiscard]] RunReport RunPlan(const Plan& plan, const std::string& home);
