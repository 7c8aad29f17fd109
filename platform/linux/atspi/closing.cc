#include "platform/linux/atspi/closing.h"

#include <cstddef>
#include <memory>
#include <utility>

HLClosingActions HLFindClosingActions(const HLRawTree& tree, const std::vector<HLBanner>& banners,
                                      HLOpenNotifications* notifications) {
  HLClosingActions closings(banners.size());
  std::vector<std::size_t> uncontrolled;
  std::vector<HLShownTexts> texts;
  for (std::size_t i = 0; i < banners.size(); ++i) {
    if (const std::optional<HLRawAction> control = HLFindCloseControl(tree, banners[i])) {
      closings[i] = *control;
    } else if (HLShownTexts shown = HLBannerTexts(tree, banners[i]); !shown.empty()) {
      uncontrolled.push_back(i);
      texts.push_back(std::move(shown));
    }
  }
  if (notifications == nullptr || texts.empty()) return closings;
  std::vector<std::optional<HLNotificationName>> names = notifications->match(texts);
  names.resize(texts.size());
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (names[i]) closings[uncontrolled[i]] = *std::move(names[i]);
  }
  return closings;
}

std::vector<HLEventSource> HLEventsOfNotifications(HLOpenNotifications* notifications) {
  std::shared_ptr<HLNotificationChanges> changes = notifications == nullptr ? nullptr : notifications->watch();
  if (changes == nullptr) return {};
  const int descriptor = changes->descriptor();
  return {{descriptor, [changes = std::move(changes)]() -> std::optional<int> {
             if (!changes->take()) return std::nullopt;
             return 1;
           }}};
}
