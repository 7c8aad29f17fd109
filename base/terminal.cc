#include "base/terminal.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <ostream>

#include "platform/text.h"

namespace {

// The slot of each stream for its terminal mark.
int markIndex() {
  static const int index = std::ios_base::xalloc();
  return index;
}

int columnsIndex() {
  static const int index = std::ios_base::xalloc();
  return index;
}

// C0, DEL, C1; direction controls, line and paragraph separators.
bool isControl(char32_t c) {
  return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x200E || c == 0x200F || (c >= 0x2028 && c <= 0x202E) ||
         (c >= 0x2066 && c <= 0x2069);
}

// Ranges of East Asian wide characters and emoji, coarsely.
bool isWide(char32_t c) {
  return (c >= 0x1100 && c <= 0x115F) || (c >= 0x2E80 && c <= 0xA4CF) || (c >= 0xAC00 && c <= 0xD7A3) ||
         (c >= 0xF900 && c <= 0xFAFF) || (c >= 0xFE30 && c <= 0xFE6F) || (c >= 0xFF00 && c <= 0xFF60) ||
         (c >= 0xFFE0 && c <= 0xFFE6) || (c >= 0x1F300 && c <= 0x1FAFF) || (c >= 0x20000 && c <= 0x3FFFD);
}

std::size_t columnsOf(char32_t codePoint) { return isWide(codePoint) ? 2 : 1; }

}  // namespace

void HLMarkAsTerminal(std::ostream& stream, int columns) {
  stream.iword(markIndex()) = 1;
  stream.iword(columnsIndex()) = columns;
}

bool HLIsTerminal(std::ostream& stream) { return stream.iword(markIndex()) == 1; }

int HLTerminalColumns(std::ostream& stream, int otherwise) {
  const auto columns = static_cast<int>(stream.iword(columnsIndex()));
  return HLIsTerminal(stream) && columns > 0 ? columns : otherwise;
}

std::string HLVisibleText(std::string_view text) {
  std::string visible;
  for (std::size_t next = 0; next < text.size();) {
    const std::size_t begin = next;
    const char32_t codePoint = HLNextCodePoint(text, next);
    if (isControl(codePoint)) {
      std::array<char, 8> escape{};
      std::snprintf(escape.data(), escape.size(), "\\u%04X", static_cast<unsigned>(codePoint));
      visible += escape.data();
    } else {
      visible += text.substr(begin, next - begin);
    }
  }
  return visible;
}

std::size_t HLColumns(std::string_view text) {
  std::size_t columns = 0;
  for (std::size_t next = 0; next < text.size();) columns += columnsOf(HLNextCodePoint(text, next));
  return columns;
}

std::string HLCutToColumns(std::string_view text, std::size_t columns) {
  if (HLColumns(text) <= columns) return std::string(text);
  std::size_t end = 0;
  std::size_t used = 1;  // by the ellipsis
  for (std::size_t next = 0; next < text.size(); end = next) {
    used += columnsOf(HLNextCodePoint(text, next));
    if (used > columns) break;
  }
  return std::string(text.substr(0, end)) + "…";
}
