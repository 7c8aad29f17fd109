#include "core/dismissal/attempt_loop.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

#include "base/format.h"
#include "base/log.h"
#include "core/dismissal/ordering.h"
#include "core/scan/alert_description.h"
#include "core/scan/element_access.h"
#include "core/scan/notification_center.h"

namespace {

constexpr std::size_t kTopCandidates = 6;

std::int64_t signedCount(const std::vector<HLDismissTarget>& targets) {
  return static_cast<std::int64_t>(targets.size());
}

// Returns the larger of the removed targets and the drop in their number. Unsigned on purpose: if targets increased,
// before - after wraps, wins max(), and adding it subtracts the net increase from the total.
std::uint64_t gained(std::int64_t removed, std::size_t before, std::size_t after) {
  return std::max(static_cast<std::uint64_t>(removed), static_cast<std::uint64_t>(before) - after);
}

}  // namespace

HLDismissResult HLRunDirectDismiss(const HLElement& application, std::int64_t* maxAlertsPerApp) {
  HLKeySet ineffective;
  std::vector<HLDismissTarget> targets = HLCurrentTargets(application);
  HLReportProgress(signedCount(targets));
  if (maxAlertsPerApp != nullptr) *maxAlertsPerApp = HLMaxAlertsPerApp(targets);

  std::uint64_t total = 0;
  const auto result = [&total](HLDismissStatus status, std::int64_t remaining) {
    return HLDismissResult{status, static_cast<std::int64_t>(total), remaining};
  };
  for (std::int64_t iteration = 0; iteration < HLAttemptLimit; ++iteration) {
    if (targets.empty()) {
      return result(static_cast<std::int64_t>(total) > 0 ? HLDismissStatusSuccess : HLDismissStatusNothing, 0);
    }
    const std::vector<HLDismissTarget> sorted = HLSortedTargets(std::move(targets));
    const std::vector<HLDismissTarget> eligible = HLTargetsExcludingKeys(sorted, ineffective);
    HLAppendDiagnostics("attempt iteration=%ld targetCount=%lu eligible=%lu top=%@", iteration, sorted.size(),
                        eligible.size(), HLTopCandidateSummary(eligible.empty() ? sorted : eligible));
    if (eligible.empty()) {
      HLAppendDiagnostics("aborting because all remaining targets were previously ineffective remaining=%ld",
                          signedCount(sorted));
      return result(HLDismissStatusFailed, signedCount(sorted));
    }

    const std::vector<HLDismissTarget> succeeded = HLRunDismissBatch(eligible, ineffective);
    if (succeeded.empty()) {
      const std::int64_t remaining = signedCount(HLCurrentTargets(application));
      HLAppendDiagnostics("batch had no successful actions remaining=%ld", remaining);
      return result(HLDismissStatusFailed, remaining);
    }

    std::vector<HLDismissTarget> after = HLWaitForBatchProgress(application, sorted);
    const std::int64_t removed = HLRemovedTargetCount(sorted, after);
    if (removed <= 0 && after.size() >= sorted.size()) {
      for (const HLDismissTarget& target : succeeded) ineffective.insert(HLProgressIdentityKeyForTarget(target));
      HLAppendDiagnostics("batch made no observable progress attempted=%lu remaining=%lu", succeeded.size(),
                          after.size());
      targets = HLCurrentTargets(application);
      continue;
    }
    total += gained(removed, sorted.size(), after.size());
    HLAppendDiagnostics("batch progress before=%lu after=%lu removed=%ld", sorted.size(), after.size(), removed);
    targets = std::move(after);
  }
  return result(HLDismissStatusSuccess, signedCount(HLCurrentTargets(application)));
}

std::int64_t HLMaxAlertsPerApp(const std::vector<HLDismissTarget>& targets) {
  std::vector<std::pair<std::string, std::size_t>> counts;  // in the order in which the names are met
  for (const HLDismissTarget& target : targets) {
    std::string name = HLAlertAppName(target);
    const auto known =
        std::find_if(counts.begin(), counts.end(), [&name](const auto& entry) { return entry.first == name; });
    if (known == counts.end()) {
      counts.emplace_back(std::move(name), 1);
    } else {
      ++known->second;
    }
  }
  std::size_t largest = 0;
  std::string summary;
  for (const auto& [name, count] : counts) {
    largest = std::max(largest, count);
    if (!summary.empty()) summary += ' ';
    summary += HLFormat("%@=%lu", name.empty() ? std::string_view("?") : std::string_view(name), count);
  }
  if (!counts.empty()) HLAppendDiagnostics("alerts per app %@", summary);
  return static_cast<std::int64_t>(largest);
}

std::string HLAlertAppName(const HLDismissTarget& target) {
  if (target.element == nullptr) return "";
  const std::string description = HLStringAttribute(*target.element, "AXDescription").value_or("");
  return std::string(HLSplitAlertDescription(description).application);
}

std::vector<HLDismissTarget> HLTargetsExcludingKeys(const std::vector<HLDismissTarget>& targets, const HLKeySet& keys) {
  std::vector<HLDismissTarget> left;
  std::copy_if(targets.begin(), targets.end(), std::back_inserter(left), [&keys](const HLDismissTarget& target) {
    return keys.count(HLProgressIdentityKeyForTarget(target)) == 0;
  });
  return left;
}

std::string HLTopCandidateSummary(const std::vector<HLDismissTarget>& targets) {
  std::string summary;
  for (std::size_t i = 0; i < std::min(kTopCandidates, targets.size()); ++i) {
    const HLDismissTarget& target = targets[i];
    const HLRect& frame = target.frame;
    const std::string frameText =
        frame.isNull() ? "frame=null"
                       : HLFormat("frame=(%.1f,%.1f,%.1f,%.1f)", frame.x, frame.y, frame.width, frame.height);
    if (i > 0) summary += " | ";
    summary += HLFormat("#%ld score=%ld action=%@ reason=%@ %@ snapshot=%@", static_cast<std::int64_t>(i), target.score,
                        target.action, target.reason, frameText, target.snapshot);
  }
  return summary;
}
