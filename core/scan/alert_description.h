// The parts of an alert's accessibility description: "APPLICATION, TITLE, BODY".
#pragma once

#include <optional>
#include <string_view>

struct HLAlertDescription {
  std::string_view application;          // before the first ", ", or the whole description
  std::optional<std::string_view> rest;  // behind the first ", "; nullopt without one
};

// The parts view the description.
[[nodiscard]] inline HLAlertDescription HLSplitAlertDescription(std::string_view description) {
  const std::size_t comma = description.find(", ");
  if (comma == std::string_view::npos) return {description, std::nullopt};
  return {description.substr(0, comma), description.substr(comma + 2)};
}
