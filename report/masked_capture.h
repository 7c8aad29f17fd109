// A capture whose texts are made unreadable.
#pragma once

#include <cstdint>
#include <memory>

#include "report/capture.h"
#include "report/judgement.h"

// Returns a copy with the texts of notifications replaced. `judgement` is the capture's; the copy is judged the same.
// Returns nullptr if several random replacements all change the judgement.
[[nodiscard]] std::unique_ptr<HLCapture> HLMaskedCapture(HLCapture& capture, const HLJudgement& judgement);

// Returns such a copy without judging it. `seed` is for HLTextMask. Keeps roles, subroles, identifiers, action names,
// the host's own words and names of processes. Logs nothing.
[[nodiscard]] std::unique_ptr<HLCapture> HLMaskedCapture(HLCapture& capture, std::uint64_t seed);
