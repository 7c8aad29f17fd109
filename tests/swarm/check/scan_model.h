// The rules of scanning, scoring and resolution, said once more: plainly, over what the program was told, and without a
// line of the program's own.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/swarm/check/seen.h"

struct ModelTarget {
  Seen* element = nullptr;
  std::string action;
  bool framed = false;
  HLRect frame;
  std::int64_t score = 0;
  std::string snapshot;

  // Recognizes a control across scans.
  [[nodiscard]] std::string key() const { return action + "|" + snapshot; }
};

struct ModelScan {
  std::int64_t visited = 0;
  std::vector<ModelTarget> targets;  // one for each deduplication key, in the order of discovery
};

[[nodiscard]] std::string DeduplicationKey(const ModelTarget& target);

// One window, from the last readings of its elements.
[[nodiscard]] ModelScan ScanWindow(Seen* window);

// Whether it is a whole notification, in whose place its close control is pressed.
[[nodiscard]] bool NeedsResolution(const ModelTarget& target);
// The target's own control, or what is pressed in its place.
[[nodiscard]] ModelTarget Resolve(const ModelTarget& target);

// The order in which targets are considered.
[[nodiscard]] std::vector<ModelTarget> Sorted(std::vector<ModelTarget> targets);

// How many of the targets before are gone: a difference of multisets of lower-cased keys.
[[nodiscard]] std::int64_t RemovedCount(const std::vector<ModelTarget>& before, const std::vector<ModelTarget>& after);

// Whether the description is one that the built-in rule closes by itself.
[[nodiscard]] bool IsAutomation(const std::string& description);
// The action by which such a banner is closed.
[[nodiscard]] std::optional<std::string> AutoCloseAction(const std::vector<std::string>& actions);
