// What is on screen of servers that show no accessibility tree.
#pragma once

#include <chrono>
#include <optional>
#include <vector>

#include "platform/linux/notifications/notification_table.h"
#include "platform/linux/notifications/server_connection.h"

// Returns the notifications on screen, oldest first, or nullopt if they are not known. `open` is nullopt where the open
// notifications are not known. Blocks.
[[nodiscard]] std::optional<std::vector<HLListedNotification>> HLListScreen(
    HLServerConnection& connection, const HLPresentServer& server,
    const std::optional<std::vector<HLOpenNotificationRef>>& open);

// Whether mako is in the mode "do-not-disturb", which hides banners as its manual proposes it; nullopt if it does not
// say.
[[nodiscard]] std::optional<bool> HLIsMakoQuiet(HLServerConnection& connection);

// How long a server that is configured so shows a banner, by urgency; zero is for ever.
struct HLShowTimes {
  std::chrono::milliseconds low{0};
  std::chrono::milliseconds normal{0};
  std::chrono::milliseconds critical{0};
};
// Reads the text of a configuration of swaync. Returns nullopt if it is not one, or leaves a time out.
[[nodiscard]] std::optional<HLShowTimes> HLShowTimesOf(std::string_view configuration);

// Whether the server still shows it. Unknown time-outs have passed.
[[nodiscard]] bool HLIsYoungEnough(const HLOpenNotification& open, const HLShowTimes& times,
                                   std::chrono::steady_clock::time_point now);

// The notifications that a server shows first: the most urgent, of these the oldest.
[[nodiscard]] std::vector<HLOpenNotificationRef> HLMostUrgent(std::vector<HLOpenNotificationRef> open,
                                                              std::size_t count);
