// A process as a test would have it: an executable, an environment, a home.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/process_info.h"

class FakeProcess : public HLProcessInfo {
 public:
  explicit FakeProcess(std::string home) : home_(std::move(home)) {}

  std::map<std::string, std::string, std::less<>> variables;
  std::optional<std::string> executable = "/usr/bin/env";
  std::optional<std::string> identifier = "org.example.one";

  std::vector<std::string> arguments() override { return {executable.value_or("")}; }
  std::optional<std::string> environment(std::string_view name) override {
    const auto found = variables.find(name);
    return found == variables.end() ? std::nullopt : std::optional(found->second);
  }
  std::int32_t processIdentifier() override { return 1; }
  std::int32_t parentProcessIdentifier() override { return 1; }
  std::string homeDirectory() override { return home_; }
  std::optional<std::string> applicationSupportDirectory() override { return std::nullopt; }
  std::optional<std::string> bundlePath() override { return std::nullopt; }
  std::optional<std::string> executablePath() override { return executable; }
  std::optional<std::string> bundleIdentifier() override { return identifier; }
  HLDictionary informationDictionary() override { return {}; }

 private:
  const std::string home_;
};
