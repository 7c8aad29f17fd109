// Posts a notification, clears that one only, and says what happened.
#pragma once

#include <string>

#include "platform/application/trials.h"
#include "platform/application/windows.h"

struct HLTrialReport {
  std::string text;  // for the user
  HLTextColor color = HLTextColor::secondary;
};

// Tries it with a notification of this title, which no other notification contains. Other notifications are left alone.
// Blocks for up to about 15 seconds; never on the main thread.
[[nodiscard]] HLTrialReport HLRunTrial(HLTrials& trials, const std::string& title);
