#include "platform/linux/settings/do_not_disturb.h"

#include <array>
#include <string_view>

#include "platform/linux/files/files.h"
#include "platform/linux/notifications/screen_list.h"
#include "platform/linux/settings/program_output.h"

namespace {

// A key of the desktop's settings that says whether a server shows banners.
struct SilencingKey {
  std::string_view server;
  std::string_view vendor;
  const char* schema;
  const char* key;
  const char* silencing;  // the value
};

constexpr std::array<SilencingKey, 3> kKeys = {{
    {"gnome-shell", "GNOME", "org.gnome.desktop.notifications", "show-banners", "false"},
    {"cinnamon", "GNOME", "org.cinnamon.desktop.notifications", "display-notifications", "false"},
    {"Notification Daemon", "MATE", "org.mate.NotificationDaemon", "do-not-disturb", "true"},
}};

std::optional<bool> booleanIn(const HLBusReply& reply, const char* container) {
  if (!reply) return std::nullopt;
  int value = 0;
  if (container != nullptr && sd_bus_message_enter_container(reply.message.get(), 'v', container) <= 0) {
    return std::nullopt;
  }
  if (sd_bus_message_read_basic(reply.message.get(), 'b', &value) <= 0) return std::nullopt;
  return value != 0;
}

// A property of the notification server's object.
std::optional<bool> property(HLServerConnection& connection, const char* interface, const char* name) {
  const HLBusCall get{HLNotificationService, HLNotificationPath, HLPropertiesInterface, "Get"};
  return booleanIn(connection.call(get, "ss", interface, name), "b");
}

std::optional<bool> swayncSetting(HLServerConnection& connection) {
  constexpr const char* kService = "org.erikreider.swaync.cc";
  return booleanIn(connection.call({kService, "/org/erikreider/swaync/cc", kService, "GetDnd"}), nullptr);
}

std::optional<bool> budgieSetting(HLServerConnection& connection) {
  return booleanIn(connection.call({"org.budgie_desktop.Notifications", "/org/budgie_desktop/Notifications",
                                    "org.buddiesofbudgie.budgie.Dispatcher", "GetDoNotDisturb"}),
                   nullptr);
}

std::optional<bool> xfceSetting(HLServerConnection& connection) {
  constexpr const char* kService = "org.xfce.Xfconf";
  const HLBusReply reply = connection.call({kService, "/org/xfce/Xfconf", kService, "GetProperty"}, "ss",
                                           "xfce4-notifyd", "/do-not-disturb");
  if (reply.error == "org.xfce.Xfconf.Error.PropertyNotFound") return false;
  return booleanIn(reply, "b");
}

std::optional<bool> lxqtSetting(const std::string& configHome) {
  const HLFileContent file = HLReadFile(configHome + "/lxqt/notifications.conf");
  return file.error == 0 && ("\n" + file.content).find("\ndoNotDisturb=true\n") != std::string::npos;
}

std::optional<bool> desktopSetting(const HLServerInformation& server) {
  for (const SilencingKey& known : kKeys) {
    if (server.name != known.server || server.vendor != known.vendor) continue;
    const std::optional<std::string> value = HLReadDesktopSetting(known.schema, known.key);
    if (value) return *value == known.silencing;
  }
  return std::nullopt;
}

}  // namespace

std::optional<bool> HLReadDoNotDisturb(HLServerConnection& connection, const std::string& configHome) {
  const std::optional<HLPresentServer> present = connection.server();
  if (!present) return std::nullopt;
  const HLServerInformation& server = present->information;
  if (const auto inhibited = property(connection, HLNotificationService, "Inhibited")) return inhibited;
  if (const auto paused = property(connection, "org.dunstproject.cmd0", "paused")) return paused;
  if (const auto silenced = swayncSetting(connection)) return silenced;
  if (server.name == "Budgie Notification Server") return budgieSetting(connection);
  if (server.name == "mako") return HLIsMakoQuiet(connection);
  if (server.name == "Xfce Notify Daemon") return xfceSetting(connection);
  if (server.name == "lxqt-notificationd") return lxqtSetting(configHome);
  return desktopSetting(server);
}
