// A capture whose texts are made unreadable.
#pragma once

#include <cstdint>
#include <memory>

#include "report/capture.h"
#include "report/judgement.h"

// Returns the same interface with the texts of notifications replaced, judged the same as `judgement`, which is the
// capture's; nullptr if a few tries all change the judgement. The replacements cannot be undone.
[[nodiscard]] std::unique_ptr<HLCapture> HLMaskedCapture(HLCapture& capture, const HLJudgement& judgement);

// Does so without judging; the seed is that of the HLTextMask. Roles, subroles, identifiers, action names, the host's
// own words and names of processes stay. Logs nothing.
[[nodiscard]] std::unique_ptr<HLCapture> HLMaskedCapture(HLCapture& capture, std::uint64_t seed);
