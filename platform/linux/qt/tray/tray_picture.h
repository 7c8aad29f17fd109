// What stands in the tray: a symbol, a short title, or a symbol with a number.
#pragma once

#include <QColor>
#include <QImage>
#include <QPainterPath>
#include <string>

struct HLTrayLook {
  std::string symbol;  // "bell.slash" or "exclamationmark.triangle"; "" for none
  std::string title;
  bool operator==(const HLTrayLook&) const = default;
};

// On a grid of 16 by 16, from the top left corner. Empty for a name that is not known.
[[nodiscard]] QPainterPath HLTraySymbol(const std::string& name);
// Without what is cut out of it and laid over it.
[[nodiscard]] QPainterPath HLTraySymbolBody(const std::string& name);

// A square in that color on nothing, within a faint contour of the opposite lightness, so that it can be read where the
// color was a wrong guess. Main thread.
[[nodiscard]] QImage HLDrawTrayPicture(const HLTrayLook& look, int size, const QColor& color);
