// This process and the bundle that it was started from.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/value.h"

// Any thread. Paths are absolute, UTF-8, without a trailing slash.
class HLProcessInfo {
 public:
  HLProcessInfo() = default;
  HLProcessInfo(const HLProcessInfo&) = delete;
  HLProcessInfo& operator=(const HLProcessInfo&) = delete;
  virtual ~HLProcessInfo() = default;

  // The first one is the executable's path.
  [[nodiscard]] virtual std::vector<std::string> arguments() = 0;
  [[nodiscard]] virtual std::optional<std::string> environment(std::string_view name) = 0;
  [[nodiscard]] virtual std::int32_t processIdentifier() = 0;
  [[nodiscard]] virtual std::int32_t parentProcessIdentifier() = 0;

  [[nodiscard]] virtual std::string homeDirectory() = 0;
  // Where applications keep their state; nothing when the host finds no such place.
  [[nodiscard]] virtual std::optional<std::string> applicationSupportDirectory() = 0;

  // Of the bundle; nothing where the host knows none.
  [[nodiscard]] virtual std::optional<std::string> bundlePath() = 0;
  [[nodiscard]] virtual std::optional<std::string> executablePath() = 0;
  [[nodiscard]] virtual std::optional<std::string> bundleIdentifier() = 0;
  // The bundle's information dictionary, read once per process; empty where the bundle has none.
  [[nodiscard]] virtual HLDictionary informationDictionary() = 0;
};
