// What short programs print.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

// Runs the program, which is looked for in the PATH, and returns what it prints, or nullopt if it fails, cannot be
// started or takes longer; then it is killed. Thread-safe. Blocks.
[[nodiscard]] std::optional<std::string> HLProgramOutput(const std::vector<std::string>& words,
                                                         std::chrono::milliseconds timeout = std::chrono::seconds(3));

// Returns what comes from the descriptor up to its end, or nullopt if reading it fails or the end has not come by the
// deadline. Thread-safe. Blocks.
[[nodiscard]] std::optional<std::string> HLReadUntilEnd(int descriptor, std::chrono::steady_clock::time_point deadline);

// Returns a value of the desktop's settings as `gsettings get` prints it, or nullopt if there is no such key. Blocks.
[[nodiscard]] std::optional<std::string> HLReadDesktopSetting(const std::string& schema, const std::string& key);
