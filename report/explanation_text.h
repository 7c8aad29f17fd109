// An explanation as text for a person.
#pragma once

#include <iosfwd>

#include "report/explanation.h"

struct HLExplanationStyle {
  int columns = 120;  // names are cut so that lines are no longer
  bool hasColors = false;
  bool keepsTexts = true;
};

// Prints the explanation. Control characters are spelled out.
void HLPrintExplanation(const HLExplanation& explanation, const HLExplanationStyle& style, std::ostream& out);
