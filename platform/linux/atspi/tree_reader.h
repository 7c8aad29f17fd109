// Reads an application's elements over AT-SPI in as few round trips as its toolkit allows.
#pragma once

#include <string>
#include <vector>

#include "platform/linux/atspi/raw_tree.h"
#include "platform/linux/session/bus.h"

inline constexpr const char* HLAccessibleInterface = "org.a11y.atspi.Accessible";
inline constexpr const char* HLAccessibleRootPath = "/org/a11y/atspi/accessible/root";

// Reads all elements except their actions and extents. Windows that are not showing are left out. Elements that
// disappear during the call are missing or not showing. `tree` is complete only when the result is `answered`. Blocks.
[[nodiscard]] HLBusOutcome HLReadTree(HLBus& bus, const std::string& application, HLRawTree& tree);

// Reads the extents and actions of the given nodes. Off-screen extents become nullopt. Blocks.
[[nodiscard]] HLBusOutcome HLReadDetails(HLBus& bus, const std::string& application, HLRawTree& tree,
                                         const std::vector<int>& extentsOf, const std::vector<int>& actionsOf);
