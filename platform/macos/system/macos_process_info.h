// This process and its main bundle, as Foundation knows them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/process_info.h"

// An executable outside a bundle has its folder for a bundle, without an identifier or information.
class HLMacProcessInfo : public HLProcessInfo {
 public:
  [[nodiscard]] std::vector<std::string> arguments() override;
  [[nodiscard]] std::optional<std::string> environment(std::string_view name) override;
  [[nodiscard]] std::int32_t processIdentifier() override;
  [[nodiscard]] std::int32_t parentProcessIdentifier() override;
  [[nodiscard]] std::string homeDirectory() override;
  [[nodiscard]] std::optional<std::string> applicationSupportDirectory() override;
  [[nodiscard]] std::optional<std::string> bundlePath() override;
  [[nodiscard]] std::optional<std::string> executablePath() override;
  [[nodiscard]] std::optional<std::string> bundleIdentifier() override;
  [[nodiscard]] HLDictionary informationDictionary() override;
};
