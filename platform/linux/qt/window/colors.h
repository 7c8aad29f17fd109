// The colors of texts, legible on light and on dark.
#pragma once

#include <QColor>
#include <QPalette>

#include "platform/application/windows.h"

[[nodiscard]] QColor HLQtTextColor(HLTextColor color, const QPalette& palette);
[[nodiscard]] QPalette HLQtDarkPalette();
