// Draws the tray picture: a symbol, a short title, or a symbol with a number.
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

// On a 16 x 16 grid with the origin at the top left. Empty for an unknown name.
[[nodiscard]] QPainterPath HLTraySymbol(const std::string& name);
// The symbol's outline, without the slash or the exclamation mark.
[[nodiscard]] QPainterPath HLTraySymbolBody(const std::string& name);

// Draws a transparent square with the look in `color` and a faint contour of the opposite lightness, so that it stays
// legible if `color` was guessed wrong. Main thread only.
[[nodiscard]] QImage HLDrawTrayPicture(const HLTrayLook& look, int size, const QColor& color);
