#include "core/records.h"

#include <cmath>

#include "daemon/log/format.h"
#include "platform/text.h"

std::string HLCompactSnapshot(std::string_view text) {
  std::string compact;
  compact.reserve(text.size());
  bool gap = false;
  for (std::size_t position = 0; position < text.size();) {
    const std::size_t start = position;
    if (HLIsWhitespace(HLNextCodePoint(text, position))) {
      gap = !compact.empty();
      continue;
    }
    if (gap) compact += ' ';
    gap = false;
    compact.append(text, start, position - start);
  }
  return compact;
}

std::string HLDeduplicationKeyForTarget(const HLDismissTarget& target) {
  if (target.frame.isNull()) return HLFormat("%@|%@", target.action, target.snapshot);
  return HLFormat("%@|%.0f|%.0f|%.0f|%.0f|%@", target.action, std::round(target.frame.x), std::round(target.frame.y),
                  std::round(target.frame.width), std::round(target.frame.height), target.snapshot);
}
