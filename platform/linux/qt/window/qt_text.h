// Texts as the toolkit takes them.
#pragma once

#include <QString>
#include <string>

// For buttons and menus, where a single "&" would mark a letter.
[[nodiscard]] inline QString HLQtPlain(const std::string& text) {
  return QString::fromStdString(text).replace('&', "&&");
}
