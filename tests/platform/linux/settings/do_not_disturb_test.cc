// Do not disturb, as real servers keep it, and as others answer on the bus.
#include "platform/linux/settings/do_not_disturb.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "platform/linux/settings/program_output.h"
#include "tests/platform/linux/desktop/servers.h"
#include "tests/platform/linux/notifications/bus_session.h"
#include "tests/platform/linux/support/desktop_session.h"

namespace {

class DoNotDisturb : public testing::Test {
 protected:
  std::string configHome() { return session_.environment().at("HOME") + "/.config"; }

  std::optional<bool> isOn() {
    HLServerConnection connection;
    return HLReadDoNotDisturb(connection, configHome());
  }

  // Waits, since a setting may take a moment to be stored.
  void expectBecomes(bool on) {
    EXPECT_TRUE(Eventually([&] { return isOn() == on; })) << "never " << on;
  }

  DesktopSession session_;
  SessionEnvironment environment_{session_.environment()};
};

TEST_F(DoNotDisturb, IsUnknownWithoutAServer) { EXPECT_EQ(isOn(), std::nullopt); }

TEST_F(DoNotDisturb, IsReadOfPropertiesOfServers) {
  for (const std::string interface : {"org.freedesktop.Notifications", "org.dunstproject.cmd0"}) {
    std::atomic<bool> isSilent = false;
    const FakeServer server({"Fake", "Tests", "1.0"}, [&](sd_bus_message* call) {
      const char* asked = nullptr;
      return sd_bus_message_is_method_call(call, HLPropertiesInterface, "Get") > 0 &&
             sd_bus_message_read_basic(call, 's', &asked) > 0 && asked == interface &&
             sd_bus_reply_method_return(call, "v", "b", isSilent ? 1 : 0) >= 0;
    });
    EXPECT_EQ(isOn(), false) << interface;
    isSilent = true;
    EXPECT_EQ(isOn(), true) << interface;
  }
}

TEST_F(DoNotDisturb, IsReadOfBudgie) {
  std::atomic<bool> isSilent = false;
  const FakeServer::Handler answer = [&isSilent](sd_bus_message* call) {
    return sd_bus_message_is_method_call(call, "org.buddiesofbudgie.budgie.Dispatcher", "GetDoNotDisturb") > 0 &&
           sd_bus_reply_method_return(call, "b", isSilent ? 1 : 0) >= 0;
  };
  const FakeServer server({"Budgie Notification Server", "Budgie Desktop Developers", "10.7.1"});
  EXPECT_EQ(isOn(), std::nullopt);
  const FakeServer dispatcher({}, answer, "org.budgie_desktop.Notifications");
  EXPECT_EQ(isOn(), false);
  isSilent = true;
  EXPECT_EQ(isOn(), true);
}

TEST_F(DoNotDisturb, IsReadOfMakosModes) {
  std::atomic<const char*> mode = "work";
  const FakeServer server({"mako", "emersion", "1.7.1"}, [&mode](sd_bus_message* call) {
    return sd_bus_message_is_method_call(call, "fr.emersion.Mako", "ListModes") > 0 &&
           sd_bus_reply_method_return(call, "as", 2, "default", mode.load()) >= 0;
  });
  EXPECT_EQ(isOn(), false);
  mode = "do-not-disturb";
  EXPECT_EQ(isOn(), true);
}

TEST_F(DoNotDisturb, IsUnknownOfAnUnknownServer) {
  const FakeServer server;
  EXPECT_EQ(isOn(), std::nullopt);
}

TEST_F(DoNotDisturb, IsReadOfMate) {
  const SessionEnvironment stored(
      Environment{{"GSETTINGS_BACKEND", "keyfile"}});  // a session of a test forgets its settings
  const auto server = session_.startServer(kMate.command);
  EXPECT_EQ(isOn(), false);
  ASSERT_TRUE(HLProgramOutput({"gsettings", "set", "org.mate.NotificationDaemon", "do-not-disturb", "true"}));
  expectBecomes(true);
}

TEST_F(DoNotDisturb, IsReadOfSettingsOfShells) {
  const SessionEnvironment stored(Environment{{"GSETTINGS_BACKEND", "keyfile"}});
  const auto expectRead = [this](const char* name, const char* schema, const char* key) {
    const FakeServer server({name, "GNOME", "1.0"});
    EXPECT_EQ(isOn(), false) << name;
    ASSERT_TRUE(HLProgramOutput({"gsettings", "set", schema, key, "false"}));
    expectBecomes(true);
  };
  expectRead("gnome-shell", "org.gnome.desktop.notifications", "show-banners");
  expectRead("cinnamon", "org.cinnamon.desktop.notifications", "display-notifications");
}

TEST_F(DoNotDisturb, IsReadOfXfce) {
  const auto settings = session_.start({"/usr/lib/" HL_ARCHITECTURE "/xfce4/xfconf/xfconfd"});
  const auto server = session_.startServer(kXfce.command);
  expectBecomes(false);
  ASSERT_TRUE(HLProgramOutput(
      {"xfconf-query", "-c", "xfce4-notifyd", "-p", "/do-not-disturb", "-n", "-t", "bool", "-s", "true"}));
  expectBecomes(true);
}

TEST_F(DoNotDisturb, IsReadOfLxqt) {
  const auto server = session_.startServer(kLxqt.command);
  EXPECT_EQ(isOn(), false);
  std::filesystem::create_directories(configHome() + "/lxqt");
  std::ofstream(configHome() + "/lxqt/notifications.conf") << "[General]\ndoNotDisturb=true\n";
  EXPECT_EQ(isOn(), true);
}

}  // namespace
