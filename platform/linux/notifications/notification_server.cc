#include "platform/linux/notifications/notification_server.h"

#include <algorithm>
#include <array>

namespace {

struct Row {
  std::string_view name;
  std::string_view vendor;
  HLServerTraits traits;
};

constexpr auto kTruthful = HLClosingTrust::truthful;
constexpr auto kOldest = HLShownOfEqual::oldest;
constexpr auto kNewest = HLShownOfEqual::newest;

// Names are not unique: two servers are called "Notification Daemon".
constexpr auto kServers = std::to_array<Row>({
    // A helper owns the service, and lets only the sender close its notifications. One banner is shown, two wait, and
    // the rest is put into the tray at once.
    {"gnome-shell",
     "GNOME",
     {.closingName = "org.gnome.Shell", .trust = kTruthful, .shownOfEqual = kNewest, .mostEqual = 3}},
    // One banner is shown, and all others wait. The next was seen about 0.3 s after the last was closed.
    {"cinnamon", "GNOME", {.trust = kTruthful, .shownOfEqual = kNewest, .queueTime = std::chrono::milliseconds(600)}},
    {"Plasma", "KDE", {.trust = kTruthful}},
    {"Xfce Notify Daemon", "Xfce", {.trust = kTruthful, .shownOfEqual = kOldest}},
    {"Notification Daemon", "MATE", {.trust = kTruthful, .shownOfEqual = kOldest}},
    {"lxqt-notificationd", "lxqt.org", {.trust = kTruthful, .shownOfEqual = kOldest}},
    // Seen with 3.20, its last release: the banner stays, and later ones never appear.
    {"Notification Daemon", "GNOME", {.trust = HLClosingTrust::untruthful}},
    {"notify-osd",
     "Canonical Ltd",
     {.unclosableReason = "its bubbles have no close button and ignore requests to close; they go by themselves"}},
    {"dunst", "knopwob", {.trust = kTruthful, .screen = HLScreenSource::counts}},
    {"mako", "emersion", {.trust = kTruthful, .screen = HLScreenSource::list}},
    {"SwayNotificationCenter", "ErikReider", {.trust = kTruthful, .screen = HLScreenSource::configuration}},
});

}  // namespace

HLServerTraits HLTraitsOfServer(const HLServerInformation& server) {
  const auto* const row = std::find_if(kServers.begin(), kServers.end(), [&server](const Row& known) {
    return known.name == server.name && known.vendor == server.vendor;
  });
  return row == kServers.end() ? HLServerTraits() : row->traits;
}
