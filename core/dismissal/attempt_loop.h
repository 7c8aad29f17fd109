// Presses until no target is left, no press helps or the limit of iterations is reached.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/dismissal/batch.h"
#include "core/dismissal/result.h"
#include "core/scan/records.h"

inline constexpr std::int64_t HLAttemptLimit = 64;

// Dismisses what the application shows. Stores in maxAlertsPerApp, unless it is nullptr, the largest number of alerts
// of one application at the start. Blocks.
[[nodiscard]] HLDismissResult HLRunDirectDismiss(const HLElement& application, std::int64_t* maxAlertsPerApp = nullptr);

// Returns the largest number of alerts of one application, 0 without targets, and logs the number of each.
[[nodiscard]] std::int64_t HLMaxAlertsPerApp(const std::vector<HLDismissTarget>& targets);

// Returns the alert's description up to the first ", ", or all of it; "" without a description or an element.
[[nodiscard]] std::string HLAlertAppName(const HLDismissTarget& target);

[[nodiscard]] std::vector<HLDismissTarget> HLTargetsExcludingKeys(const std::vector<HLDismissTarget>& targets,
                                                                  const HLKeySet& keys);

// Describes the first six targets for the log.
[[nodiscard]] std::string HLTopCandidateSummary(const std::vector<HLDismissTarget>& targets);
