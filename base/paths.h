// The build flavor and the places where state is kept. Paths are worked out anew at each call; the flavor once per
// process.
#pragma once

#include <optional>
#include <string>

// Whether the bundle's information dictionary says "product" under "HLProductFlavor". Any thread.
[[nodiscard]] bool HLIsProductFlavor();

// Nothing where the product flavor finds no Application Support directory.
[[nodiscard]] std::optional<std::string> HLStateDirectoryPath();
[[nodiscard]] std::optional<std::string> HLStatusLogPath();
[[nodiscard]] std::optional<std::string> HLDiagnosticsLogPath();
[[nodiscard]] std::optional<std::string> HLLocalSocketPath();

// Creates the state directory for this user alone; one that is there is left as it is. Errors are ignored.
void HLEnsureStateDirectory();

// Creates a directory and those above it with the default permissions of the process. Errors are ignored.
void HLCreateDirectories(const std::string& path);
