// The user's preferences, which outlive the process.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/value.h"

// Main thread only.
class HLUserDefaults {
 public:
  HLUserDefaults() = default;
  HLUserDefaults(const HLUserDefaults&) = delete;
  HLUserDefaults& operator=(const HLUserDefaults&) = delete;
  virtual ~HLUserDefaults() = default;

  // Fallbacks for keys that are not stored; they are never stored themselves.
  virtual void registerDefaults(const HLDictionary& defaults) = 0;

  // What is stored under the key, else the registered fallback, else a missing value.
  [[nodiscard]] virtual HLValue value(std::string_view key) = 0;

  // Stores a boolean, an integer or a text.
  virtual void setValue(std::string_view key, const HLValue& value) = 0;
};

// A number, cut to an integer; the number that a text begins with; 0 for anything else.
[[nodiscard]] std::int64_t HLIntegerDefault(HLUserDefaults& defaults, std::string_view key);
// A boolean, a number that is not 0, or a text that says so ("YES", "true", "1"); false for anything else.
[[nodiscard]] bool HLBooleanDefault(HLUserDefaults& defaults, std::string_view key);
// A text, or a number as text; nothing for anything else.
[[nodiscard]] std::optional<std::string> HLStringDefault(HLUserDefaults& defaults, std::string_view key);
