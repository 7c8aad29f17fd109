// The application's name, and the way to the grant that it needs.
#pragma once

#include <string>

#include "platform/application/workspace.h"

// What the bundle calls itself, "Hushlet" where it does not.
[[nodiscard]] std::string HLAppDisplayName();

// Whether notifications can be cleared from here: this process is trusted, or a trusted daemon answers. The daemon is
// asked only where this process is not, and for as long as it is busy the call blocks.
[[nodiscard]] bool HLAccessibilityAvailable();

// Whether the system's own screen for the grant has opened.
bool HLOpenAccessibilitySettingsPane(HLWorkspace& workspace);
