// The names that xkb gives to keys.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

// Returns, for example, "n" or "Page_Up"; nullopt for a key without a name. A name means a letter, not a position: on
// another layout than the American one it is the key with that letter.
[[nodiscard]] std::optional<std::string> HLKeyNameForVirtualKey(std::uint32_t code);
