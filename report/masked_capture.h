// A capture whose texts are made unreadable.
#pragma once

#include <memory>

#include "report/capture.h"
#include "report/judgement.h"
#include "report/text_mask.h"

// Returns the same interface, judged the same, with the texts of notifications replaced by a key that nobody learns;
// nullptr when a few keys all change the judgement. The judgement is the capture's.
[[nodiscard]] std::unique_ptr<HLCapture> HLMaskedCapture(HLCapture& capture, const HLJudgement& judgement);

// Returns the same interface with the texts of notifications replaced. Roles, subroles, identifiers, action names, what
// the host says itself, and names of processes stay. Logs nothing.
[[nodiscard]] std::unique_ptr<HLCapture> HLMaskedCapture(HLCapture& capture, HLWordMask::Key key);
