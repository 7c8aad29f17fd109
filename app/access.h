// The application's name, and access to the accessibility interface.
#pragma once

#include <string>

#include "platform/application/workspace.h"

// Returns the bundle's display name, or "Hushlet" without one.
[[nodiscard]] std::string HLAppDisplayName();

// Returns whether this process is trusted or a trusted daemon replies. Queries the daemon only if this process is not
// trusted; blocks while the daemon is busy.
[[nodiscard]] bool HLAccessibilityAvailable();

// Opens the system's accessibility settings. Returns whether one of their addresses opened.
bool HLOpenAccessibilitySettingsPane(HLWorkspace& workspace);
