#include "platform/linux/notifications/own_notifications.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <utility>

#include "platform/linux/notifications/screen_list.h"
#include "platform/linux/notifications/shown_text.h"

namespace {

// More than any server takes to fade a banner out.
constexpr std::chrono::seconds kFadeTime{2};

}  // namespace

std::vector<std::optional<HLNotificationName>> HLOwnNotifications::match(const std::vector<HLShownTexts>& banners) {
  std::vector<std::optional<HLNotificationName>> names(banners.size());
  const std::optional<HLPresentServer> server = connection_.server();
  if (!server || server->traits.trust == HLClosingTrust::untruthful || server->owner != table_.server()) return names;
  const std::vector<HLOpenNotificationRef> open = table_.open();
  if (server->traits.trust == HLClosingTrust::unknown && showsWhatItClosed(banners, open)) {
    connection_.distrust(*server);
    return names;
  }
  const std::vector<std::optional<std::size_t>> matches = HLMatchShownTexts(banners, server->traits, open);
  for (std::size_t i = 0; i < matches.size(); ++i) {
    if (matches[i]) names[i] = open[*matches[i]]->name;
  }
  return names;
}

HLServerTraits HLOwnNotifications::serverTraits() {
  const std::optional<HLPresentServer> server = connection_.server();
  return server ? server->traits : HLServerTraits();
}

std::optional<std::vector<HLListedNotification>> HLOwnNotifications::shown() {
  const std::optional<HLPresentServer> server = connection_.server();
  if (!server || server->owner != table_.server()) return std::nullopt;
  return HLListScreen(connection_, *server, table_.open());
}

bool HLOwnNotifications::showsWhatItClosed(const std::vector<HLShownTexts>& banners,
                                           const std::vector<HLOpenNotificationRef>& open) const {
  const HLNotificationTable::Time latest = std::chrono::steady_clock::now() - kFadeTime;
  const std::vector<HLNotificationTable::Confirmed> confirmed = table_.confirmedClosed();
  return std::any_of(banners.begin(), banners.end(), [&](const HLShownTexts& banner) {
    const auto fits = [&banner](const HLOpenNotificationRef& notification) {
      return HLFitOfTexts(banner, notification->posted) >= HLTextFit::loose;
    };
    return std::any_of(confirmed.begin(), confirmed.end(),
                       [&](const auto& closed) { return closed.time <= latest && fits(closed.notification); }) &&
           std::none_of(open.begin(), open.end(), fits);
  });
}
