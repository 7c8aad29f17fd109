// What a Mac reports about itself and about Notification Center.
#pragma once

#include "platform/host_report.h"

class HLMacHostReport : public HLHostReport {
 public:
  // Returns version and build, as in "macOS 14.5 (23F79)".
  [[nodiscard]] std::string systemVersion() override;
  [[nodiscard]] std::string programBundle() override;
  // Returns name, version, build and path of the process's bundle.
  [[nodiscard]] HLServerVersion serverVersion(std::int32_t pid) override;
  [[nodiscard]] std::vector<HLRawElement> rawElements(std::int32_t) override { return {}; }
};
