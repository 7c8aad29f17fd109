// Do not disturb, as real servers keep it, and as others answer on the bus.
#include "platform/linux/settings/do_not_disturb.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "platform/linux/settings/program_output.h"
#include "tests/platform/linux/desktop/servers.h"
#include "tests/platform/linux/support/desktop_session.h"

namespace {

// A notification server with one property that says whether it is silent.
class FakeServer {
 public:
  FakeServer(std::string interface, std::string property)
      : interface_(std::move(interface)), property_(std::move(property)) {
    sd_bus_open_user(&bus_);
    vtable_[0] = SD_BUS_VTABLE_START(0);
    vtable_[1] = SD_BUS_PROPERTY(property_.c_str(), "b", &FakeServer::read, 0, 0);
    vtable_[2] = SD_BUS_VTABLE_END;
    sd_bus_add_object_vtable(bus_, nullptr, kPath, HLNotificationService, kInformation, nullptr);
    sd_bus_add_object_vtable(bus_, nullptr, kPath, interface_.c_str(), vtable_, &silent_);
    sd_bus_request_name(bus_, HLNotificationService, 0);
    thread_ = std::thread([this] {
      while (!ends_) {
        while (sd_bus_process(bus_, nullptr) > 0) {
        }
        sd_bus_wait(bus_, 20'000);
      }
    });
  }

  ~FakeServer() {
    ends_ = true;
    thread_.join();
    sd_bus_flush_close_unref(bus_);
  }

  void setSilent(bool silent) { silent_ = silent ? 1 : 0; }

 private:
  static constexpr const char* kPath = "/org/freedesktop/Notifications";

  static int read(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void* silent, sd_bus_error*) {
    return sd_bus_message_append(reply, "b", static_cast<std::atomic<int>*>(silent)->load());
  }
  static int answer(sd_bus_message* call, void*, sd_bus_error*) {
    return sd_bus_reply_method_return(call, "ssss", "Fake", "Test", "3.1", "1.2");
  }
  static const sd_bus_vtable kInformation[];

  // sd-bus keeps the addresses.
  const std::string interface_;
  const std::string property_;
  sd_bus_vtable vtable_[3];
  sd_bus* bus_ = nullptr;
  std::atomic<int> silent_ = 0;
  std::atomic<bool> ends_ = false;
  std::thread thread_;
};

const sd_bus_vtable FakeServer::kInformation[] = {
    SD_BUS_VTABLE_START(0), SD_BUS_METHOD("GetServerInformation", "", "ssss", &FakeServer::answer, 0),
    SD_BUS_VTABLE_END};

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

TEST_F(DoNotDisturb, IsReadOfThePropertiesOfServers) {
  const std::pair<std::string, std::string> properties[] = {{HLNotificationService, "Inhibited"},
                                                            {"org.dunstproject.cmd0", "paused"}};
  for (const auto& [interface, property] : properties) {
    FakeServer server(interface, property);
    EXPECT_EQ(isOn(), false) << property;
    server.setSilent(true);
    EXPECT_EQ(isOn(), true) << property;
  }
}

TEST_F(DoNotDisturb, IsUnknownOfAnUnknownServer) {
  const FakeServer server("org.example", "Other");
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
