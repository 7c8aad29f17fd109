// Property lists, in XML or binary form.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/property_lists.h"
#include "platform/value.h"

// The list's root value, or nothing when the bytes are no property list or more than a million. A text or key that has
// a NUL makes it none; values nested more than 500 deep are missing.
[[nodiscard]] std::optional<HLValue> HLParsePropertyList(std::string_view bytes);

// The same of a file; nothing when it cannot be read.
[[nodiscard]] std::optional<HLValue> HLReadPropertyList(const std::string& path);

class HLLinuxPropertyLists : public HLPropertyLists {
 public:
  [[nodiscard]] std::optional<HLDictionary> readDictionary(const std::string& path) override;
};
