// Raw trees as text, one line a node, so that what a real server showed can be kept and read:
//
//   alert 'Notification' [820 125 454x83]
//     push button '' / 'Closes the notification.' [1220 135 44x34] <Click>
//     icon '' (hidden)
#pragma once

#include <string>
#include <string_view>

#include "platform/linux/atspi/raw_tree.h"

// The lines at the margin are the application's children. Nodes are showing unless marked as hidden, or as covered:
// visible, but not showing. Throws at what it cannot read.
[[nodiscard]] HLRawTree ParseTree(std::string_view text);

[[nodiscard]] std::string PrintTree(const HLRawTree& tree);

// One of the trees that were recorded from real servers.
[[nodiscard]] HLRawTree RecordedTree(const std::string& name);
