// Presses a list of targets, and measures progress by which of them disappeared.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "core/scan/records.h"

// Progress identity keys of the controls that this run does not try again.
using HLKeySet = std::set<std::string>;

inline constexpr std::array<double, 2> HLBatchVerificationDelays = {0.08, 0.32};  // seconds

// Returns action, "|" and snapshot, which recognize a control with the same content across scans.
[[nodiscard]] std::string HLProgressIdentityKeyForTarget(const HLDismissTarget& target);

// The targets of a batch, and at the same index the control that each resolved to.
struct HLPreparedBatch {
  std::vector<HLDismissTarget> prepared;
  std::vector<HLDismissTarget> resolved;
  double resolutionSeconds = 0;
};

struct HLResolutionStep {
  const HLDismissTarget& target;
  const HLDismissTarget& control;
  std::size_t index;  // of the control in HLPreparedBatch::resolved; equal controls share an index
};
using HLResolutionListener = std::function<void(const HLResolutionStep&)>;

// Resolves each target. Keeps only the first of several targets with equal controls. Presses nothing. Calls the
// listener, if any, for each target that has a control.
[[nodiscard]] HLPreparedBatch HLPrepareBatch(const std::vector<HLDismissTarget>& eligible,
                                             const HLResolutionListener& listener = nullptr);

// Performs the action of each prepared target, at most four concurrently, each control once. Returns the eligible
// targets whose action succeeded, in order; adds keys of failed ones to `ineffective`. Blocks.
[[nodiscard]] std::vector<HLDismissTarget> HLRunDismissBatch(const std::vector<HLDismissTarget>& eligible,
                                                             HLKeySet& ineffective);

// Rescans after 0.08 s and, unless a target disappeared, 0.32 s later. Returns the last scan, sorted. Blocks.
[[nodiscard]] std::vector<HLDismissTarget> HLWaitForBatchProgress(const HLElement& application,
                                                                  const std::vector<HLDismissTarget>& before);

// Returns the size of the multiset difference before - after, by lower-cased key.
[[nodiscard]] std::int64_t HLRemovedTargetCount(const std::vector<HLDismissTarget>& before,
                                                const std::vector<HLDismissTarget>& after);
