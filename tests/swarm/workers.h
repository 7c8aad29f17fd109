// Many seeds, on several processes: a platform is one for its whole process, as is the flavor.
#pragma once

#include <cstdint>
#include <string>

#include "tests/swarm/statistics.h"

struct Workload {
  std::uint64_t first = 0;
  std::uint64_t count = UINT64_MAX;  // at most
  double seconds = 1e18;             // at most; the seeds under way are finished
  int processes = 1;
};

// Runs them and prints each violation, each crash and each run that does not end, with its seed. A folder for the
// processes' homes.
[[nodiscard]] Statistics RunSeeds(const Workload& workload, const std::string& folder);

// One plan in a process of its own: its violations, or how the process ended.
[[nodiscard]] std::vector<Violation> RunApart(const Plan& plan, const std::string& folder);
