// An explanation as data.
#pragma once

#include "platform/value.h"
#include "report/explanation.h"

[[nodiscard]] HLValue HLExplanationData(const HLExplanation& explanation, bool keepsTexts);
