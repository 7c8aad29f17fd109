// Pressing a list of targets, and measuring what it did by what vanished.
#pragma once

#include <array>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "core/scan/records.h"

// Progress identity keys of controls that are not to be tried again in this run.
using HLKeySet = std::set<std::string>;

inline constexpr std::array<double, 2> HLBatchVerificationDelays = {0.08, 0.32};  // seconds

// Action, "|", snapshot: recognizes a control with the same content across scans.
[[nodiscard]] std::string HLProgressIdentityKeyForTarget(const HLDismissTarget& target);

// Resolves the targets and performs their actions, up to four at once, each control once. Returns those whose action
// was accepted, in their order; adds to ineffective the keys of those that failed. Blocks until all are done.
[[nodiscard]] std::vector<HLDismissTarget> HLRunDismissBatch(const std::vector<HLDismissTarget>& eligible,
                                                             HLKeySet& ineffective);

// Gives the screen two short chances to change; returns the ordered targets that are then there.
[[nodiscard]] std::vector<HLDismissTarget> HLWaitForBatchProgress(const HLElement& application,
                                                                  const std::vector<HLDismissTarget>& before);

// How many targets of before are not among after. Keys are compared in lower case; equal ones count one by one.
[[nodiscard]] std::int64_t HLRemovedTargetCount(const std::vector<HLDismissTarget>& before,
                                                const std::vector<HLDismissTarget>& after);
