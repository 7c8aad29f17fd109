// Finds the process that shows notifications, and its dismissible controls. Nothing is cached.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "core/scan/records.h"
#include "core/scan/tree_scan.h"
#include "platform/accessibility.h"
#include "platform/running_applications.h"

inline constexpr std::string_view HLNotificationCenterBundleIdentifier = "com.apple.notificationcenterui";

// Returns the first running one, in the platform's order.
[[nodiscard]] std::optional<HLRunningApplication> HLNotificationCenterApplication();

// Returns the root element of a Notification Center process, or nullptr if it cannot be created.
[[nodiscard]] HLElementRef HLNotificationCenterElement(std::int32_t pid);

[[nodiscard]] std::vector<HLElementRef> HLNotificationWindows(const HLElement& application);

// Whether an element that a scan visits fits.
[[nodiscard]] bool HLShowsElement(const HLElement& application, const std::function<bool(const HLVisit&)>& fits);

// Returns the targets of all windows, unsorted; of several with equal keys the first. The listener is that of
// HLTargetsInRoot.
[[nodiscard]] std::vector<HLDismissTarget> HLCurrentTargets(const HLElement& application,
                                                            const HLScanListener& listener = nullptr);
