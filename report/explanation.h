// What a dismissal would press, and why it would not press the rest.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "core/scan/records.h"
#include "core/scan/scoring.h"
#include "platform/element_facts.h"
#include "platform/value.h"
#include "report/capture.h"
#include "report/judgement.h"

enum class HLScanned {
  yes,
  belowStrongTarget,  // the scan skips everything below a control with a high score
  beyondLimit,        // the scan of the window had visited HLScanLimit elements
  no,                 // this process is not trusted
};

struct HLExplainedElement {
  int number = 0;
  int window = 0;
  int depth = 0;
  bool isRepeat = false;  // listed before; its children are not listed again
  HLElementFacts facts;
  HLScanned scanned = HLScanned::no;
  HLScoreDetails details;
  std::optional<HLDismissTarget> candidate;
  std::optional<std::size_t> target;  // its index in `targets`; nullopt if an earlier target has the same key
  std::string doubt;                  // why the host does not offer the element as a close control; may be empty
};

struct HLExplainedTarget {
  HLDismissTarget target;
  HLDismissTarget control;  // the control that it resolves to; may be the target itself
  std::size_t press = 0;    // the index of that control in `presses`
  bool isFirst = false;     // of the targets that resolve to that control
};

struct HLExplanation {
  const HLCapture& capture;
  std::vector<HLExplainedElement> elements;  // in tree order, window by window
  std::vector<HLExplainedTarget> targets;    // in the order in which they are considered
  std::vector<HLDismissTarget> presses;      // in the order in which they would start
};

// Explains the first attempt of a dismissal. The explanation refers to the capture. Presses nothing, logs nothing.
[[nodiscard]] HLExplanation HLExplain(HLCapture& capture);

// Returns a phrase for the user that says why the element would not be pressed; "" for a candidate, and for an element
// that is no button, no banner and has no press action.
[[nodiscard]] std::string HLRefusalText(const HLExplainedElement& element);

struct HLExplanationStyle {
  int columns = 120;  // names are cut to this line width
  bool hasColors = false;
};

// Prints the explanation as text, with control characters escaped.
void HLPrintExplanation(const HLExplanation& explanation, const HLExplanationStyle& style, std::ostream& out);

// Returns the explanation as data.
[[nodiscard]] HLValue HLExplanationData(const HLExplanation& explanation);
