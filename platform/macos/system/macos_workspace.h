// Opening addresses.
#pragma once

#include <string>

#include "platform/application/workspace.h"

class HLMacWorkspace : public HLWorkspace {
 public:
  [[nodiscard]] bool openAddress(const std::string& address) override;
};
