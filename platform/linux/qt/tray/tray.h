// What the application provides to a tray of either kind, and the clicks it reports.
#pragma once

#include <QColor>
#include <QImage>
#include <QPoint>
#include <QRect>
#include <QString>
#include <cstdint>
#include <functional>

struct HLTrayClick {
  std::int64_t type = 0;  // HLEventLeftMouseUp or HLEventRightMouseUp
  std::uint64_t modifiers = 0;
  QRect item;  // in screen coordinates; empty if only the position is known
};

struct HLTrayItem {
  QString identifier;
  QString displayName;
  QString toolTip;
  std::function<QImage(int size, const QColor& color)> draw;
  std::function<void(const HLTrayClick& click)> clicked;
};

// For dark and unknown backgrounds: most trays are dark, and the contour keeps the picture legible on light ones.
inline const QColor HLTrayLightColor(0xF4, 0xF4, 0xF4);
inline const QColor HLTrayDarkColor(0x26, 0x26, 0x28);
