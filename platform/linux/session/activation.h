// What the session bus would run to bring a service up.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The commands, split into words, of the service files of that name in the first of the directories that has any; more
// than one where the directory names several. The bus takes one of those, but does not say which.
[[nodiscard]] std::vector<std::vector<std::string>> HLActivationCommands(const std::vector<std::string>& directories,
                                                                         std::string_view service);

// Where the session bus looks for service files, in its order.
[[nodiscard]] std::vector<std::string> HLServiceDirectories();
