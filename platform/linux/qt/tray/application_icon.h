// What stands for the application in title bars and lists of windows.
#pragma once

#include <QIcon>
#include <QImage>

// The same drawing as the installed icon file, for which the toolkit may have no reader. Main thread.
[[nodiscard]] QImage HLDrawApplicationIcon(int size);

[[nodiscard]] QIcon HLApplicationIcon();
