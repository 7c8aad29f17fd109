// Which of the toolkit's platforms can be had. The toolkit itself ends the process where it finds none.
#pragma once

#include <string>

struct HLQtDisplay {
  std::string platform;  // the toolkit's name for it; "" leaves the choice to QT_QPA_PLATFORM
  std::string failure;   // one line, where there is none
};

[[nodiscard]] HLQtDisplay HLQtFindDisplay();
