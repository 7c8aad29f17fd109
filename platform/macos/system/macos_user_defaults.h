// The standard user defaults.
#pragma once

#include <string_view>

#include "platform/application/user_defaults.h"

class HLMacUserDefaults : public HLUserDefaults {
 public:
  void registerDefaults(const HLDictionary& defaults) override;
  [[nodiscard]] HLValue value(std::string_view key) override;
  void setValue(std::string_view key, const HLValue& value) override;
};
