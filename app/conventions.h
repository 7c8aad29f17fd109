#pragma once

#include "platform/application/conventions.h"

// Returns the conventions of macOS, which apply to hosts that provide none.
[[nodiscard]] const HLConventions& HLMacConventions();
