// Conversion of texts to Qt.
#pragma once

#include <QString>
#include <string>

// Escapes "&", which marks a mnemonic in buttons and menus.
[[nodiscard]] inline QString HLQtPlain(const std::string& text) {
  return QString::fromStdString(text).replace('&', "&&");
}
