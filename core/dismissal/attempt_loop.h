// Pressing until nothing is left, nothing helps, or the limit is reached.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/dismissal/batch.h"
#include "core/dismissal/result.h"
#include "core/scan/records.h"

inline constexpr std::int64_t HLAttemptLimit = 64;

// Blocks until done. maxAlertsPerApp, where given, receives the largest number of alerts of one application at the
// start.
[[nodiscard]] HLDismissResult HLRunDirectDismiss(const HLElement& application, std::int64_t* maxAlertsPerApp = nullptr);

// 0 for no targets.
[[nodiscard]] std::int64_t HLMaxAlertsPerApp(const std::vector<HLDismissTarget>& targets);

// The part of the alert's description before the first ", ", or all of it.
[[nodiscard]] std::string HLAlertAppName(const HLDismissTarget& target);

[[nodiscard]] std::vector<HLDismissTarget> HLTargetsExcludingKeys(const std::vector<HLDismissTarget>& targets,
                                                                  const HLKeySet& keys);

// The first six targets, for the log.
[[nodiscard]] std::string HLTopCandidateSummary(const std::vector<HLDismissTarget>& targets);
