#include "core/scan/tree_scan.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "base/log.h"
#include "core/scan/scoring.h"
#include "core/scan/tree_walk.h"

namespace {

constexpr std::int64_t kPruningScore = 150;
constexpr double kPruningWidth = 120;
constexpr double kPruningHeight = 80;

}  // namespace

bool HLShouldPruneDescendantsAfterCandidate(const HLDismissTarget& target) {
  if (target.score < kPruningScore) return false;
  return target.frame.isNull() || (target.frame.width <= kPruningWidth && target.frame.height <= kPruningHeight);
}

std::vector<HLDismissTarget> HLTargetsInRoot(const HLElementRef& root, std::string_view label,
                                             const HLScanListener& listener) {
  std::vector<HLDismissTarget> targets;
  std::set<std::string> keys;
  const auto look = [&targets, &keys, &listener](const HLVisit& visit) {
    HLScoreDetails details;
    std::optional<HLDismissTarget> candidate =
        HLCandidateForElement(visit.element, visit.facts, visit.context, listener ? &details : nullptr);
    const bool prune = candidate && HLShouldPruneDescendantsAfterCandidate(*candidate);
    const HLDescent descent = prune ? HLDescent::prune : HLDescent::enter;
    if (listener) listener({visit, details, candidate, descent});
    if (candidate && keys.insert(HLDeduplicationKeyForTarget(*candidate)).second) {
      targets.push_back(*std::move(candidate));
    }
    return descent;
  };
  const std::size_t visited = HLWalkTree({root, HLContext()}, HLScanLimit, look);
  if (listener) return targets;
  HLAppendDiagnostics("scan root=%@ visited=%ld candidates=%lu", label, static_cast<std::int64_t>(visited),
                      targets.size());
  return targets;
}
