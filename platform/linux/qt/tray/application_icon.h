// The application icon of title bars and window lists.
#pragma once

#include <QIcon>
#include <QImage>

// Draws the same picture as the installed SVG file, which Qt can read only with its SVG plugin. Main thread only.
[[nodiscard]] QImage HLDrawApplicationIcon(int size);

[[nodiscard]] QIcon HLApplicationIcon();
