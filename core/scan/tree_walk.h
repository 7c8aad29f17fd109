// Walks a tree of elements breadth-first, each handle once.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "core/scan/context.h"
#include "core/scan/records.h"
#include "platform/element_facts.h"

// An element that is visited.
struct HLVisit {
  const HLElementRef& element;
  const HLElementFacts& facts;
  const HLContext& context;  // the words of its ancestors, then its own
};

enum class HLDescent {
  enter,
  prune,  // the walk leaves out everything below the element
};

// Visits at most `limit` elements breadth-first, each handle once. Returns the visited count.
std::size_t HLWalkTree(const HLQueueItem& root, std::size_t limit,
                       const std::function<HLDescent(const HLVisit&)>& visit);

// Returns the children in order, repetitions included, each with its parent's context.
[[nodiscard]] std::vector<HLQueueItem> HLChildQueueItems(const HLElementFacts& facts, const HLContext& context);
