// Walking a tree of elements breadth first, each handle once.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "core/scan/context.h"
#include "core/scan/element_facts.h"
#include "core/scan/records.h"

// What is known of an element when it is its turn.
struct HLVisit {
  const HLElementRef& element;
  const HLElementFacts& facts;
  const std::string& own;    // its searchable context
  const HLContext& context;  // its own words behind those of its ancestors
};

// Visits the root and what lies below it, at most so many elements; what lies below one for which visit answers false
// is left out. Returns how many were visited.
std::size_t HLWalkTree(const HLQueueItem& root, std::size_t limit, const std::function<bool(const HLVisit&)>& visit);

// The children of an element whose context this is, in their order; one that is listed twice comes twice.
[[nodiscard]] std::vector<HLQueueItem> HLChildQueueItems(const HLElementFacts& facts, const HLContext& context);
