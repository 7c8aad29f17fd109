#include "core/scan/records.h"

#include <cmath>

#include "base/format.h"
#include "platform/text.h"

namespace {

// Whether the text is ASCII and already compact. Tests every byte without a branch, so that compilers vectorize the
// loop.
bool isCompactAscii(std::string_view text) {
  if (text.empty()) return true;
  if (text.front() == ' ' || text.back() == ' ') return false;
  const auto isOther = [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= 0x80 ? 1 : 0) | (byte >= 0x09 && byte <= 0x0D ? 1 : 0);
  };
  auto found = static_cast<unsigned char>(isOther(text[0]));
  for (std::size_t i = 1; i < text.size(); ++i) {
    const int twoBlanks = (text[i - 1] == ' ' ? 1 : 0) & (text[i] == ' ' ? 1 : 0);
    found = static_cast<unsigned char>(found | isOther(text[i]) | twoBlanks);
  }
  return found == 0;
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
