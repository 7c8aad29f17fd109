// What the user of the application does, and who calls the daemon.
#pragma once

#include <string>
#include <vector>

#include "tests/swarm/generate/plan.h"
#include "tests/swarm/generate/random.h"

// Events of the timeline within so many seconds.
[[nodiscard]] std::vector<std::string> MakeInput(Random& random, bool isProduct, double seconds);

// The services, preferences and whatever else surrounds the application: further keys of the scene, each behind a
// comma.
[[nodiscard]] std::string MakeSurroundings(Random& random, bool isProduct);

[[nodiscard]] std::vector<Caller> MakeCallers(Random& random);
