// Text colors, legible on light and dark backgrounds.
#pragma once

#include <QColor>
#include <QPalette>

#include "platform/application/windows.h"

[[nodiscard]] QColor HLQtTextColor(HLTextColor color, const QPalette& palette);
[[nodiscard]] QPalette HLQtDarkPalette();
