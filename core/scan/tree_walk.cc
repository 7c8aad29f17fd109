#include "core/scan/tree_walk.h"

#include <deque>
#include <unordered_set>
#include <utility>

std::size_t HLWalkTree(const HLQueueItem& root, std::size_t limit,
                       const std::function<HLDescent(const HLVisit&)>& visit) {
  std::deque<HLQueueItem> queue = {root};
  // Owns handles, so a freed address cannot be reused and mistaken for a visited element.
  std::unordered_set<HLElementRef> visited;
  while (!queue.empty() && visited.size() < limit) {
    const HLQueueItem item = std::move(queue.front());
    queue.pop_front();
    if (item.element == nullptr || !visited.insert(item.element).second) continue;

    const HLElementFacts facts = item.element->copyFacts();
    const HLContext context = item.context.extendedBy(HLJoinedTexts(facts));
    if (visit({item.element, facts, context}) == HLDescent::prune) continue;
    for (HLQueueItem& child : HLChildQueueItems(facts, context)) queue.push_back(std::move(child));
  }
  return visited.size();
}

std::vector<HLQueueItem> HLChildQueueItems(const HLElementFacts& facts, const HLContext& context) {
  std::vector<HLQueueItem> items;
  items.reserve(facts.children.size());
  for (const HLElementRef& child : facts.children) items.push_back({child, context});
  return items;
}
