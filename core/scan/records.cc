#include "core/scan/records.h"

#include <cmath>

#include "base/format.h"
#include "platform/text.h"

std::string HLCompactSnapshot(std::string_view text) {
  std::string compact;
  compact.reserve(text.size());
  std::size_t word = 0;
  for (std::size_t position = 0; position < text.size();) {
    const std::size_t end = position;
    if (!HLIsWhitespace(HLNextCodePoint(text, position))) continue;
    if (end > word) compact.append(text, word, end - word).append(" ");
    word = position;
  }
  compact.append(text, word);
  if (compact.ends_with(' ')) compact.pop_back();
  return compact;
}

std::string HLDeduplicationKeyForTarget(const HLDismissTarget& target) {
  if (target.frame.isNull()) return HLFormat("%@|%@", target.action, target.snapshot);
  return HLFormat("%@|%.0f|%.0f|%.0f|%.0f|%@", target.action, std::round(target.frame.x), std::round(target.frame.y),
                  std::round(target.frame.width), std::round(target.frame.height), target.snapshot);
}
