// Reading an application's interface from the accessibility bus, with as few round trips as the application allows.
#pragma once

#include <string>
#include <vector>

#include "platform/linux/atspi/raw_tree.h"
#include "platform/linux/session/bus.h"

inline constexpr const char* HLAccessibleInterface = "org.a11y.atspi.Accessible";
inline constexpr const char* HLAccessibleRootPath = "/org/a11y/atspi/accessible/root";

// Everything on screen but actions and extents; windows that are not showing are left out. Elements that vanish
// meanwhile are missing or not showing. The tree is only of use when the answer is "answered".
[[nodiscard]] HLBusOutcome HLReadTree(HLBus& bus, const std::string& application, HLRawTree& tree);

// Adds the extents and the actions of those nodes; off-screen extents read as none.
[[nodiscard]] HLBusOutcome HLReadDetails(HLBus& bus, const std::string& application, HLRawTree& tree,
                                         const std::vector<int>& extentsOf, const std::vector<int>& actionsOf);
