// Opening addresses.
#pragma once

#include <string>

#include "platform/workspace.h"

class HLMacWorkspace : public HLWorkspace {
 public:
  [[nodiscard]] bool openAddress(const std::string& address) override;
};
