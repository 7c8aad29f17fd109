#include "core/scan/records.h"

#include <algorithm>
#include <cmath>

#include "base/format.h"
#include "platform/text.h"

namespace {

// Whether the text is compact, and ASCII without control characters. Reads every byte without a branch, so that
// compilers vectorize the loop.
bool isCompactAscii(std::string_view text) {
  if (text.empty()) return true;
  if (text.front() == ' ' || text.back() == ' ') return false;
  const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  unsigned char all = byte(0);
  unsigned char least = byte(0);
  unsigned char leastPair = 0xFF;  // the bits of two neighbors: ' ' only for two blanks
  for (std::size_t i = 1; i < text.size(); ++i) {
    all |= byte(i);
    least = std::min(least, byte(i));
    leastPair = std::min<unsigned char>(leastPair, byte(i - 1) | byte(i));
  }
  return all < 0x80 && least >= ' ' && leastPair > ' ';
}

}  // namespace

std::string HLCompactSnapshot(std::string text) {
  if (isCompactAscii(text)) return text;
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
