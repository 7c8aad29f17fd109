#include "platform/linux/qt/tray/application_icon.h"

#include <QColor>
#include <QLinearGradient>
#include <QPainter>
#include <QPen>
#include <QPixmap>

#include "platform/linux/qt/tray/tray_picture.h"

namespace {

constexpr int kIconSizes[] = {16, 24, 32, 48, 64, 128};
constexpr double kIconGrid = 128;

QLinearGradient downwards(double top, double bottom, const QColor& first, const QColor& last) {
  QLinearGradient gradient(0, top, 0, bottom);
  gradient.setColorAt(0, first);
  gradient.setColorAt(1, last);
  return gradient;
}

}  // namespace

QImage HLDrawApplicationIcon(int size) {
  QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(size / kIconGrid, size / kIconGrid);
  painter.setPen(QPen(QColor(255, 255, 255, 46), 1));
  painter.setBrush(downwards(8, 120, QColor(0x4B, 0x5F, 0xC4), QColor(0x27, 0x30, 0x6E)));
  painter.drawRoundedRect(QRectF(8.5, 8.5, 111, 111), 25.5, 25.5);

  painter.translate(19.2, 19.2);
  painter.scale(5.6, 5.6);  // scales to the symbol's grid
  painter.fillPath(HLTraySymbol("bell.slash"),
                   downwards(2.3, 13.7, QColor(0xFF, 0xFF, 0xFF), QColor(0xD5, 0xDC, 0xF7)));
  return image;
}

QIcon HLApplicationIcon() {
  QIcon icon;
  for (int size : kIconSizes) icon.addPixmap(QPixmap::fromImage(HLDrawApplicationIcon(size)));
  return icon;
}
