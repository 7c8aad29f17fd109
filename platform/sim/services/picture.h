// The simulated screen drawn in characters, for people who watch a run.
#pragma once

#include <string>

#include "platform/sim/desktop/world.h"

// The screen with its windows and notifications, some hundred columns wide; an empty screen where nothing is to be
// seen.
[[nodiscard]] std::string HLPictureOfScreen(const HLSimWorld& world);
