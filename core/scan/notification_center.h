// Finding the process that shows notifications, and everything in it that can be dismissed now. Nothing is cached.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "core/scan/records.h"
#include "platform/accessibility.h"
#include "platform/running_applications.h"

inline constexpr std::string_view HLNotificationCenterBundleIdentifier = "com.apple.notificationcenterui";

// The first running one, in the platform's order.
[[nodiscard]] std::optional<HLRunningApplication> HLNotificationCenterApplication();

// The root element of a Notification Center process; nullptr when it cannot be made.
[[nodiscard]] HLElementRef HLNotificationCenterElement(std::int32_t pid);

[[nodiscard]] std::vector<HLElementRef> HLNotificationWindows(const HLElement& application);

// The targets of all windows, unsorted; of several with one key the first.
[[nodiscard]] std::vector<HLDismissTarget> HLCurrentTargets(const HLElement& application);
