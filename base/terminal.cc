#include "base/terminal.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <ostream>

#include "platform/text.h"

namespace {

// The slot of every stream that holds whether it goes to a terminal.
int markIndex() {
  static const int index = std::ios_base::xalloc();
  return index;
}

int columnsIndex() {
  static const int index = std::ios_base::xalloc();
  return index;
}

bool isControl(char32_t codePoint) { return codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0); }

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
