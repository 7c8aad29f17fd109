#include "core/scan/records.h"

#include <cmath>

#include "base/format.h"
#include "platform/text.h"

namespace {

// Whether the text is ASCII and compact already. Looks at every byte, which is quicker than stopping at the first one
// that is not.
bool isCompactAscii(std::string_view text) {
  if (text.starts_with(' ') || text.ends_with(' ')) return false;
  bool other = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    other |= byte >= 0x80 || (byte >= 0x09 && byte <= 0x0D) || (byte == ' ' && text[i - 1] == ' ');
  }
  return !other;
}

}  // namespace

std::string HLCompactSnapshot(std::string_view text) {
  if (isCompactAscii(text)) return std::string(text);
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
