// Why a dismissal would press what it would press, as values.
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
  belowStrongTarget,  // the scan leaves out what is below a control that it is sure of
  beyondLimit,        // the scan of the window had visited as many elements as it may
  no,                 // this process may not read the other one
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
  std::optional<std::size_t> target;  // its place in the order of targets; none for one with the key of another
  std::string doubt;                  // the host's own reason
};

// What a target comes to.
struct HLExplainedTarget {
  HLDismissTarget target;
  HLDismissTarget control;  // what it resolves to, itself or another
  std::size_t press = 0;    // the place of that control in the order of presses
  bool presses = false;     // false when an earlier target leads to the same control
};

struct HLExplanation {
  const HLCapture& capture;
  std::vector<HLExplainedElement> elements;  // in tree order, window by window
  std::vector<HLExplainedTarget> targets;    // in the order in which they are considered
  std::vector<HLDismissTarget> presses;      // in the order in which they would begin
};

// Explains the first attempt of a dismissal. The explanation refers to the capture. Presses nothing, logs nothing.
[[nodiscard]] HLExplanation HLExplain(HLCapture& capture);

// Returns why the element is not pressed, for a person; "" when it is a candidate, or when there is nothing to say of
// it because it is no button, no banner and cannot be pressed.
[[nodiscard]] std::string HLRefusalText(const HLExplainedElement& element);

struct HLExplanationStyle {
  int columns = 120;  // names are cut so that lines are no longer
  bool hasColors = false;
};

// Prints the explanation for a person. Control characters are spelled out.
void HLPrintExplanation(const HLExplanation& explanation, const HLExplanationStyle& style, std::ostream& out);

// Returns the explanation as data.
[[nodiscard]] HLValue HLExplanationData(const HLExplanation& explanation);
