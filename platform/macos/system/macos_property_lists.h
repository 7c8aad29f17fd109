// Property lists, read by Foundation.
#pragma once

#include <optional>
#include <string>

#include "platform/property_lists.h"

class HLMacPropertyLists : public HLPropertyLists {
 public:
  [[nodiscard]] std::optional<HLDictionary> readDictionary(const std::string& path) override;
};
