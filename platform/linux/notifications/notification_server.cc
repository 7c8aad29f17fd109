#include "platform/linux/notifications/notification_server.h"

#include <algorithm>
#include <array>

#include "platform/linux/session/bus.h"

namespace {

struct Row {
  std::string_view name;
  std::string_view vendor;
  HLServerTraits traits;
};

constexpr std::string_view kStandardName = HLNotificationService;

// Names are not unique: two servers are called "Notification Daemon".
constexpr auto kServers = std::to_array<Row>({
    // A helper owns the service, and lets only the sender close its notifications.
    {"gnome-shell", "GNOME", {"org.gnome.Shell", HLClosingTrust::truthful, true, HLScreenSource::tree}},
    {"cinnamon", "GNOME", {kStandardName, HLClosingTrust::truthful, true, HLScreenSource::tree}},
    {"Plasma", "KDE", {kStandardName, HLClosingTrust::truthful, true, HLScreenSource::tree}},
    {"Xfce Notify Daemon", "Xfce", {kStandardName, HLClosingTrust::truthful, false, HLScreenSource::tree}},
    {"Notification Daemon", "MATE", {kStandardName, HLClosingTrust::truthful, false, HLScreenSource::tree}},
    {"lxqt-notificationd", "lxqt.org", {kStandardName, HLClosingTrust::truthful, false, HLScreenSource::tree}},
    // Seen with 3.20, its last release: the banner stays, and later ones never appear.
    {"Notification Daemon", "GNOME", {kStandardName, HLClosingTrust::untruthful, false, HLScreenSource::tree}},
    {"dunst", "knopwob", {kStandardName, HLClosingTrust::truthful, false, HLScreenSource::counts}},
    {"mako", "emersion", {kStandardName, HLClosingTrust::truthful, false, HLScreenSource::list}},
    {"SwayNotificationCenter",
     "ErikReider",
     {kStandardName, HLClosingTrust::truthful, true, HLScreenSource::configuration}},
});

}  // namespace

HLServerTraits HLTraitsOfServer(const HLServerInformation& server) {
  const auto* const row = std::find_if(kServers.begin(), kServers.end(), [&server](const Row& known) {
    return known.name == server.name && known.vendor == server.vendor;
  });
  if (row != kServers.end()) return row->traits;
  return {kStandardName, HLClosingTrust::unknown, true, HLScreenSource::tree};
}
