// Which notification a banner shows, by its texts. All functions are pure.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "platform/linux/notifications/notification_server.h"
#include "platform/linux/notifications/notification_table.h"
#include "platform/linux/notifications/open_notifications.h"

// Whether these may be the texts of a banner of the notification: the summary, and one form of the body where that is
// not empty, in this order; before them the application, if anything. Blanks and line breaks are alike. One other text
// may be among them, such as a time or another name of the application. Texts without a word, and notifications whose
// texts were cut, fit nothing.
enum class HLTextFit {
  none,
  doubtful,  // with another text and without a body; never matched, but others that fit are in doubt
  loose,     // with another text, or with an application that is not the one that posted it
  exact,
};
[[nodiscard]] HLTextFit HLFitOfTexts(const HLShownTexts& shown, const HLPostedNotification& posted);

// Returns for each banner the index of the notification in `open` (oldest first) that it shows, each index at most
// once, or nullopt.
//
// Banners of equal texts are matched together. As many notifications as banners fit: all of them are on screen. More
// fit: they must have been sent with equal texts and urgency, and those that posted under the application's name shown
// come first; of them the server's traits say which are on screen. A notification that fits banners of different texts
// is in doubt, and these banners match none.
[[nodiscard]] std::vector<std::optional<std::size_t>> HLMatchShownTexts(const std::vector<HLShownTexts>& banners,
                                                                        const HLServerTraits& server,
                                                                        const std::vector<HLOpenNotificationRef>& open);
