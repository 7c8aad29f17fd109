// Chooses a Qt platform plugin. Qt itself ends the process if it finds none.
#pragma once

#include <string>

struct HLQtDisplay {
  std::string platform;  // the plugin's name; "" leaves the choice to QT_QPA_PLATFORM
  std::string failure;   // one line if no display can be reached; else ""
};

[[nodiscard]] HLQtDisplay HLQtFindDisplay();
