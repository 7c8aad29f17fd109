// The build flavor and the paths of the state. The flavor is decided once per process, a path at each call.
// Thread-safe.
#pragma once

#include <optional>
#include <string>

// Returns whether "HLProductFlavor" is the text "product" in the bundle's information dictionary.
[[nodiscard]] bool HLIsProductFlavor();

// Return nullopt in the product flavor where the host has no Application Support directory.
[[nodiscard]] std::optional<std::string> HLStateDirectoryPath();
[[nodiscard]] std::optional<std::string> HLStatusLogPath();
[[nodiscard]] std::optional<std::string> HLDiagnosticsLogPath();
[[nodiscard]] std::optional<std::string> HLLocalSocketPath();

// Creates a missing state directory with mode 0700; keeps the mode of an existing one. Ignores errors.
void HLEnsureStateDirectory();

// Creates a directory and its parents with the default permissions of the process. Ignores errors.
void HLCreateDirectories(const std::string& path);
