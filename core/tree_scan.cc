#include "core/tree_scan.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <set>
#include <unordered_set>
#include <utility>

#include "core/scoring.h"
#include "daemon/log/log.h"

namespace {

constexpr std::int64_t kPruningScore = 150;
constexpr double kPruningWidth = 120;
constexpr double kPruningHeight = 80;

}  // namespace

std::vector<HLQueueItem> HLChildQueueItems(const HLElementFacts& facts,
                                           const std::shared_ptr<const HLContext>& context) {
  std::vector<HLQueueItem> items;
  items.reserve(facts.children.size());
  for (const HLElementRef& child : facts.children) items.push_back({child, context});
  return items;
}

bool HLShouldPruneDescendantsAfterCandidate(const HLDismissTarget& target) {
  if (target.score < kPruningScore) return false;
  return target.frame.isNull() || (target.frame.width <= kPruningWidth && target.frame.height <= kPruningHeight);
}

std::vector<HLDismissTarget> HLTargetsInRoot(const HLElementRef& root, std::string_view label) {
  std::vector<HLDismissTarget> targets;
  std::set<std::string> keys;
  std::deque<HLQueueItem> queue = {{root, std::make_shared<const HLContext>()}};
  // Holds the handles themselves: an address that was given back and used again would hide a node.
  std::unordered_set<HLElementRef> visited;

  while (!queue.empty() && visited.size() < HLScanLimit) {
    const HLQueueItem item = std::move(queue.front());
    queue.pop_front();
    if (!visited.insert(item.element).second) continue;

    const HLElementFacts facts = HLReadElementFacts(*item.element);
    const std::string own = HLSearchableContext(facts);
    const auto context = std::make_shared<const HLContext>(item.context->extendedBy(own));
    std::optional<HLDismissTarget> candidate = HLCandidateForElement(item.element, facts, *context, own);
    const bool prune = candidate && HLShouldPruneDescendantsAfterCandidate(*candidate);
    if (candidate && keys.insert(HLDeduplicationKeyForTarget(*candidate)).second) {
      targets.push_back(*std::move(candidate));
    }
    if (!prune) {
      for (HLQueueItem& child : HLChildQueueItems(facts, context)) queue.push_back(std::move(child));
    }
  }
  HLAppendDiagnostics("scan root=%@ visited=%ld candidates=%lu", label, static_cast<std::int64_t>(visited.size()),
                      targets.size());
  return targets;
}
