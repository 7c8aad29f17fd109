// What a Linux desktop reports about itself.
#pragma once

#include "platform/host_report.h"

class HLLinuxHostReport : public HLHostReport {
 public:
  // Returns the names of the distribution, the desktop and the kind of session.
  [[nodiscard]] std::string systemVersion() override;
  [[nodiscard]] HLServerVersion serverVersion(std::int32_t pid) override;
  [[nodiscard]] std::vector<HLRawElement> rawElements(std::int32_t pid) override;
};
