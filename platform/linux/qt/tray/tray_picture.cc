#include "platform/linux/qt/tray/tray_picture.h"

#include <QApplication>
#include <QFont>
#include <QPainter>
#include <QPainterPathStroker>
#include <QPen>
#include <QRegularExpression>
#include <QString>
#include <QTransform>
#include <algorithm>

namespace {

constexpr double kPictureGrid = 16;
constexpr double kContourWidth = 1.0;  // pixels on each side
constexpr int kContourStrength = 120;
constexpr double kGap = 1.1;         // between the number and the symbol behind it, in grid units
constexpr double kNumberHeight = 9;  // of a digit, in grid units
const QRegularExpression kSecondLine("[ …]");

QPainterPath stroked(const QPainterPath& path, double width) {
  QPainterPathStroker stroker;
  stroker.setWidth(width);
  stroker.setCapStyle(Qt::RoundCap);
  stroker.setJoinStyle(Qt::RoundJoin);
  return stroker.createStroke(path);
}

// A banner.
QPainterPath card() {
  QPainterPath path;
  path.moveTo(3.6, 2.3);
  path.lineTo(12.4, 2.3);
  path.cubicTo(14.3, 2.3, 15.4, 3.4, 15.4, 5.2);
  path.lineTo(15.4, 10.8);
  path.cubicTo(15.4, 12.6, 14.3, 13.7, 12.4, 13.7);
  path.lineTo(3.6, 13.7);
  path.cubicTo(1.7, 13.7, 0.6, 12.6, 0.6, 10.8);
  path.lineTo(0.6, 5.2);
  path.cubicTo(0.6, 3.4, 1.7, 2.3, 3.6, 2.3);
  path.closeSubpath();
  return path;
}

QPainterPath line(QPointF from, QPointF to) {
  QPainterPath path(from);
  path.lineTo(to);
  return path;
}

QPainterPath corners() {
  QPainterPath path;
  path.moveTo(8, 2.2);
  path.lineTo(14.6, 13.8);
  path.lineTo(1.4, 13.8);
  path.closeSubpath();
  return path;
}

// QPainterPath flattens curves for boolean operations; scaling up first keeps the segments small.
const QTransform kLarge = QTransform::fromScale(16, 16);

QPainterPath joined(const QPainterPath& a, const QPainterPath& b) {
  return kLarge.inverted().map(kLarge.map(a).united(kLarge.map(b)));
}

QPainterPath cut(const QPainterPath& a, const QPainterPath& b) {
  return kLarge.inverted().map(kLarge.map(a).subtracted(kLarge.map(b)));
}

// A banner with two lines of text and a close button. A bell with a stroke, as on macOS, means "do not disturb" on
// Linux.
QPainterPath bannerWithCross() {
  QPainterPath cross = line({8.8, 5.8}, {13.2, 10.2});
  cross.addPath(line({13.2, 5.8}, {8.8, 10.2}));
  QPainterPath text = line({3.2, 6.2}, {6.3, 6.2});
  text.addPath(line({3.2, 9.8}, {4.9, 9.8}));
  return cut(cut(card(), stroked(cross, 1.7)), stroked(text, 1.4));
}

QPainterPath triangle() {
  QPainterPath dot;
  dot.addEllipse(QPointF(8, 12.4), 1.1, 1.1);
  return cut(cut(joined(corners(), stroked(corners(), 2)), stroked(line({8, 6}, {8, 9.6}), 1.9)), dot);
}

QPainterPath textPath(const QString& text) {
  QFont font = QApplication::font();
  font.setWeight(QFont::Bold);
  font.setPixelSize(64);
  QPainterPath path;
  path.addText(0, 0, font, text);
  return path;
}

// Scales `path` to fit `box`. Counts `reference` in the height, so that "…" stays on its baseline.
QPainterPath fitted(const QPainterPath& path, const QRectF& reference, const QRectF& box) {
  const QRectF bounds =
      path.boundingRect().united(QRectF(path.boundingRect().left(), reference.top(), 0.1, reference.height()));
  const double scale = std::min(box.width() / bounds.width(), box.height() / bounds.height());
  QTransform transform;
  transform.translate(box.center().x(), box.center().y());
  transform.scale(scale, scale);
  transform.translate(-bounds.center().x(), -bounds.center().y());
  return transform.map(path);
}

// Puts the word on one line, and a number or ellipsis after it on a second line.
QPainterPath titlePath(const QString& title) {
  const QRectF capital = textPath("H").boundingRect();
  const qsizetype second = title.indexOf(kSecondLine);
  if (second < 0) return fitted(textPath(title), capital, QRectF(0.5, 3, 15, 10));
  QPainterPath path = fitted(textPath(title.left(second)), capital, QRectF(1, 0.6, 14, 7));
  path.addPath(fitted(textPath(title.mid(second).trimmed()), capital, QRectF(1, 8.4, 14, 7)));
  return path;
}

// Puts the number in the lower right corner, in front of the symbol's outline. The outline lacks the symbol's inner
// parts: only fragments of them would stay visible.
QPainterPath withNumber(const QPainterPath& outline, const QString& number) {
  const QPainterPath digits = textPath(number);
  const QRectF bounds = digits.boundingRect();
  const double scale = std::min(kNumberHeight / bounds.height(), kPictureGrid / bounds.width());
  QTransform corner;
  corner.translate(kPictureGrid - bounds.right() * scale, kPictureGrid - bounds.bottom() * scale);
  corner.scale(scale, scale);
  const QPainterPath placed = corner.map(digits);
  QTransform smaller;
  smaller.scale(0.72, 0.72);
  QPainterPath room;
  room.addRect(placed.boundingRect().adjusted(-2 * kGap, -kGap, kGap, kGap));
  QPainterPath path = cut(smaller.map(outline), room);
  path.addPath(placed);
  return path;
}

QPainterPath pathOf(const HLTrayLook& look) {
  const QPainterPath symbol = HLTraySymbol(look.symbol);
  const QString title = QString::fromStdString(look.title).trimmed();
  if (title.isEmpty()) return symbol;
  return symbol.isEmpty() ? titlePath(title) : withNumber(HLTraySymbolBody(look.symbol), title);
}

}  // namespace

QPainterPath HLTraySymbol(const std::string& name) {
  static const QPainterPath bannerPath = bannerWithCross();
  static const QPainterPath trianglePath = triangle();
  if (name == "bell.slash") return bannerPath;
  if (name == "exclamationmark.triangle") return trianglePath;
  return {};
}

QPainterPath HLTraySymbolBody(const std::string& name) {
  if (name == "bell.slash") return card();
  if (name == "exclamationmark.triangle") return corners();
  return {};
}

QImage HLDrawTrayPicture(const HLTrayLook& look, int size, const QColor& color) {
  QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QTransform grid;
  const double scale = (size - 2 * kContourWidth) / kPictureGrid;
  grid.translate(kContourWidth, kContourWidth);
  grid.scale(scale, scale);
  const QPainterPath path = grid.map(pathOf(look));

  QColor contour = color.lightness() > 127 ? Qt::black : Qt::white;
  contour.setAlpha(kContourStrength);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.strokePath(path, QPen(contour, 2 * kContourWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.fillPath(path, color);
  return image;
}
