// This process, and the bundle folder beside its executable.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/process_info.h"

// The information dictionary of an executable's bundle. The bundle folder of DIR/bin/NAME is DIR/share/hushlet.
[[nodiscard]] HLDictionary HLBundleInformation(const std::string& executable);

class HLLinuxProcessInfo : public HLProcessInfo {
 public:
  HLLinuxProcessInfo(int argc, char** argv);

  [[nodiscard]] std::vector<std::string> arguments() override { return arguments_; }
  [[nodiscard]] std::optional<std::string> environment(std::string_view name) override;
  [[nodiscard]] std::int32_t processIdentifier() override;
  [[nodiscard]] std::int32_t parentProcessIdentifier() override;
  [[nodiscard]] std::string homeDirectory() override;
  [[nodiscard]] std::optional<std::string> applicationSupportDirectory() override;
  [[nodiscard]] std::optional<std::string> bundlePath() override;
  [[nodiscard]] std::optional<std::string> executablePath() override { return arguments_.front(); }
  [[nodiscard]] std::optional<std::string> bundleIdentifier() override;
  [[nodiscard]] HLDictionary informationDictionary() override { return information_; }

 private:
  std::vector<std::string> arguments_;
  // Read at the start: the package may be removed or replaced while the process runs, and its paths must stay.
  HLDictionary information_;
};
