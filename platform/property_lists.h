// Property-list files.
#pragma once

#include <optional>
#include <string>

#include "platform/value.h"

class HLPropertyLists {
 public:
  HLPropertyLists() = default;
  HLPropertyLists(const HLPropertyLists&) = delete;
  HLPropertyLists& operator=(const HLPropertyLists&) = delete;
  virtual ~HLPropertyLists() = default;

  // The dictionary that a file holds, XML or binary; nothing when the file cannot be read or holds anything else. Any
  // thread; blocks for the reading.
  [[nodiscard]] virtual std::optional<HLDictionary> readDictionary(const std::string& path) = 0;
};
