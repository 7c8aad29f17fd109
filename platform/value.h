// The one value type of everything that a host hands over untyped: accessibility attributes, property lists, the
// information dictionary, user defaults.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/geometry.h"

class HLElement;
// A reference-counted handle. Pointers compare handles; HLElement::isEqual() compares the nodes that they represent.
using HLElementRef = std::shared_ptr<HLElement>;

struct HLValue;
struct HLDictionaryEntry;
using HLArray = std::vector<HLValue>;
// Entries in the order of their source, where it has one; keys are unique.
using HLDictionary = std::vector<HLDictionaryEntry>;

// std::monostate is "nothing", and stands too for what a source holds but this program has no use for (dates, data).
struct HLValue : std::variant<std::monostate, bool, std::int64_t, double, std::string, HLPoint, HLSize, HLElementRef,
                              HLArray, HLDictionary> {
  using variant::variant;

  [[nodiscard]] bool isMissing() const { return std::holds_alternative<std::monostate>(*this); }

  // The value as a T, or nullptr when it is of another type.
  template <class T>
  [[nodiscard]] const T* as() const {
    return std::get_if<T>(this);
  }
};

struct HLDictionaryEntry {
  std::string key;
  HLValue value;
};

// The value under the key, or nullptr.
[[nodiscard]] const HLValue* HLDictionaryValue(const HLDictionary& dictionary, std::string_view key);

// A number as text: a boolean as "1" or "0", an integer in decimal, any other by "%0.16g" in the C locale. Nothing for
// a value of another type.
[[nodiscard]] std::optional<std::string> HLNumberText(const HLValue& value);

// Returns the integer part of an integer or a real; nullopt for a value of another type, a boolean included, and for a
// real beyond 64 bits.
[[nodiscard]] std::optional<std::int64_t> HLIntegerPart(const HLValue& value);
