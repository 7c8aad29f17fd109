// Decides how each banner is closed: by its close control or, where it has none, by the name of its notification.
#pragma once

#include <vector>

#include "platform/linux/atspi/banners.h"
#include "platform/linux/atspi/mapped_tree.h"
#include "platform/linux/atspi/shown_application.h"
#include "platform/linux/notifications/open_notifications.h"

// `banners` are those of HLFindBanners(), with the details that HLDetailsNeeded() names. Without `notifications`, only
// close controls count. Calls match() once if any banner with texts has no close control; blocks meanwhile.
[[nodiscard]] HLClosingActions HLFindClosingActions(const HLRawTree& tree, const std::vector<HLBanner>& banners,
                                                    HLOpenNotifications* notifications);

// Returns the source of an event for each change of the open notifications; none where changes are not known.
[[nodiscard]] std::vector<HLEventSource> HLEventsOfNotifications(HLOpenNotifications* notifications);
