// "Try It": posts a notification, clears only that one, and reports the outcome.
#pragma once

#include <string>

#include "platform/application/trials.h"
#include "platform/application/windows.h"

struct HLTrialReport {
  std::string text;  // for the user
  HLTextColor color = HLTextColor::secondary;
};

// Runs the trial with a notification of this title, which must be unique: no other notification is pressed. Blocks for
// up to about 15 seconds; not for the main thread.
[[nodiscard]] HLTrialReport HLRunTrial(HLTrials& trials, const std::string& title);
