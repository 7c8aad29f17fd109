// The targets that the engine finds in a capture, and its first batch of presses.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "core/dismissal/batch.h"
#include "core/scan/records.h"
#include "core/scan/tree_scan.h"
#include "report/capture.h"

struct HLJudgement {
  std::vector<HLDismissTarget> targets;  // in the order in which they are considered
  HLPreparedBatch batch;                 // of the first attempt
};

// Scans, orders and resolves as the first attempt of a dismissal does; presses and logs nothing. The listeners are
// those of HLCurrentTargets and HLPrepareBatch. Returns an empty judgement if this process was not trusted.
[[nodiscard]] HLJudgement HLJudgeCapture(HLCapture& capture, const HLScanListener& scanListener = nullptr,
                                         const HLResolutionListener& resolutionListener = nullptr);

// The parts of a judgement that do not depend on texts. Two captures are judged the same if their outlines are equal.
struct HLJudgementOutline {
  bool trusted = false;
  std::vector<std::string> targets;       // as the log describes them, without snapshots
  std::vector<std::size_t> alike;         // for each target, the first one with the same progress identity key
  std::vector<std::size_t> applications;  // for each target, the first one of the same application
  std::vector<std::pair<int, std::string>> presses;  // number of the element, and action
  bool operator==(const HLJudgementOutline&) const = default;
};

// Replaces each element's number by `order[number]`, unless `order` is empty.
[[nodiscard]] HLJudgementOutline HLOutlineOf(const HLCapture& capture, const HLJudgement& judgement,
                                             const std::vector<int>& order = {});
