// What a tray of either kind shows, and what it tells of.
#pragma once

#include <QColor>
#include <QImage>
#include <QPoint>
#include <QRect>
#include <QString>
#include <cstdint>
#include <functional>

struct HLTrayClick {
  std::int64_t type = 0;  // of the event
  std::uint64_t modifiers = 0;
  QRect item;  // on screen; empty where only its place is known
};

struct HLTrayItem {
  QString identifier;
  QString displayName;
  QString toolTip;
  std::function<QImage(int size, const QColor& color)> draw;
  std::function<void(const HLTrayClick& click)> clicked;
};

// On dark, and where a tray does not say what its background is: most are dark, and the picture has a contour.
inline const QColor HLTrayLightColor(0xF4, 0xF4, 0xF4);
inline const QColor HLTrayDarkColor(0x26, 0x26, 0x28);
