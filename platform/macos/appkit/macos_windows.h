// Windows of AppKit, laid out by stack views and constraints.
#pragma once

#include <memory>
#include <vector>

#include "platform/application/windows.h"

class HLMacWindows : public HLWindows {
 public:
  [[nodiscard]] std::unique_ptr<HLWindow> makeWindow(HLWindowDescription description) override;
  [[nodiscard]] std::vector<HLWindowView> views() override;
};
