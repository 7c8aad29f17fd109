// A raw tree for reports, in the words of AT-SPI.
#pragma once

#include <vector>

#include "platform/host_report.h"
#include "platform/linux/atspi/raw_tree.h"

// Returns the tree's elements, the application apart, whose children have no depth. Pure.
[[nodiscard]] std::vector<HLRawElement> HLRawElementsOf(const HLRawTree& tree);
