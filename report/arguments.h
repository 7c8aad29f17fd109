// The arguments of this process, for the modes that explain and record.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

[[nodiscard]] bool HLHasArgument(std::string_view argument);

// Returns "" if every argument is one of these, else a phrase that names the first other one. Ignores the executable's
// path.
[[nodiscard]] std::string HLUnknownArgument(std::initializer_list<std::string_view> known);
