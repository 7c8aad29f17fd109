#include "platform/linux/qt/window/label.h"

#include <QApplication>
#include <QFont>
#include <QPalette>
#include <QString>
#include <algorithm>
#include <cmath>

#include "platform/linux/qt/window/colors.h"

namespace {

QFont::Weight weightOf(HLFontWeight weight) {
  switch (weight) {
    case HLFontWeight::medium:
      return QFont::Medium;
    case HLFontWeight::semibold:
      return QFont::DemiBold;
    case HLFontWeight::regular:
      break;
  }
  return QFont::Normal;
}

}  // namespace

HLQtLabel::HLQtLabel(const HLLabel& label, int widest, QWidget* parent)
    : QLabel(parent), widest_(widest), color_(label.color) {
  setTextFormat(Qt::PlainText);
  setWordWrap(true);
  setTextInteractionFlags(Qt::NoTextInteraction);
  QFont font = QApplication::font();
  font.setPixelSize(static_cast<int>(std::lround(label.size)));
  font.setWeight(weightOf(label.weight));
  setFont(font);
  setText(QString::fromStdString(label.text));
  applyColor();
}

void HLQtLabel::setText(const QString& text) {
  QLabel::setText(text);
  setHidden(text.isEmpty());
}

void HLQtLabel::setColor(HLTextColor color) {
  color_ = color;
  applyColor();
}

void HLQtLabel::applyColor() {
  const QPalette surroundings = QApplication::palette(this);
  const QColor color = HLQtTextColor(color_, surroundings);
  if (palette().color(QPalette::WindowText) == color) return;
  QPalette own;
  own.setColor(QPalette::WindowText, color);
  setPalette(own);
}

// QLabel's own hint for wrapped text is narrower than the text on one line, which would wrap short texts.
QSize HLQtLabel::sizeHint() const {
  const QSize natural = fontMetrics().size(0, text());
  const int width = std::min(natural.width() + 1, widest_);
  return {width, heightForWidth(width)};
}

QSize HLQtLabel::minimumSizeHint() const { return {0, fontMetrics().height()}; }

void HLQtLabel::changeEvent(QEvent* event) {
  QLabel::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) applyColor();
}
