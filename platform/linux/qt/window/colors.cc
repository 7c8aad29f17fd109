#include "platform/linux/qt/window/colors.h"

#include <QtGlobal>

namespace {

constexpr double kSecondaryStrength = 0.68;

QColor mixed(const QColor& over, const QColor& under, double strength) {
  const auto mix = [strength](int a, int b) { return qRound(a * strength + b * (1 - strength)); };
  return {mix(over.red(), under.red()), mix(over.green(), under.green()), mix(over.blue(), under.blue())};
}

}  // namespace

QColor HLQtTextColor(HLTextColor color, const QPalette& palette) {
  const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
  const QColor background = palette.color(QPalette::Active, QPalette::Window);
  const bool dark = background.lightness() < text.lightness();
  switch (color) {
    case HLTextColor::secondary:
      return mixed(text, background, kSecondaryStrength);
    case HLTextColor::green:
      return dark ? QColor(0x30, 0xD1, 0x58) : QColor(0x1B, 0x74, 0x31);
    case HLTextColor::orange:
      return dark ? QColor(0xFF, 0x9F, 0x0A) : QColor(0xB8, 0x30, 0x00);
    case HLTextColor::label:
      break;
  }
  return text;
}

QPalette HLQtDarkPalette() {
  const QColor window(0x26, 0x26, 0x28);
  const QColor base(0x40, 0x40, 0x44);  // of check boxes; must be lighter than the window to be visible
  const QColor button(0x48, 0x48, 0x4C);
  const QColor text(0xF2, 0xF2, 0xF4);
  const QColor disabled(0x8A, 0x8A, 0x8E);
  const QColor accent(0x2F, 0x7B, 0xE0);
  QPalette palette(button, window);
  for (QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
    palette.setColor(role, text);
    palette.setColor(QPalette::Disabled, role, disabled);
  }
  palette.setColor(QPalette::Base, base);
  palette.setColor(QPalette::AlternateBase, window);
  palette.setColor(QPalette::ToolTipBase, button);
  palette.setColor(QPalette::BrightText, Qt::white);
  palette.setColor(QPalette::PlaceholderText, disabled);
  palette.setColor(QPalette::Highlight, accent);
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::Link, accent.lighter());
  return palette;
}
