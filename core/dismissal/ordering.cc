#include "core/dismissal/ordering.h"

#include <algorithm>

int HLCompareTargets(const HLDismissTarget& a, const HLDismissTarget& b) {
  if (a.score != b.score) return a.score > b.score ? -1 : 1;
  if (a.frame.y != b.frame.y) return a.frame.y < b.frame.y ? -1 : 1;
  if (a.frame.x != b.frame.x) return a.frame.x > b.frame.x ? -1 : 1;
  return 0;
}

std::vector<HLDismissTarget> HLSortedTargets(std::vector<HLDismissTarget> targets) {
  std::stable_sort(targets.begin(), targets.end(),
                   [](const HLDismissTarget& a, const HLDismissTarget& b) { return HLCompareTargets(a, b) < 0; });
  return targets;
}
