// Hot keys of a Wayland desktop, by a portal of the test's own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <systemd/sd-bus.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "platform/linux/qt/services/linux_hot_keys.h"
#include "platform/threads/thread_safety.h"
#include "tests/platform/linux/support/desktop_session.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Clock = std::chrono::steady_clock;

constexpr const char* kPath = "/org/freedesktop/portal/desktop";
constexpr const char* kShortcuts = "org.freedesktop.portal.GlobalShortcuts";

enum class Manner {
  willing,
  asking,           // its user, who has not answered yet
  denying,          // for its user
  granting,         // without saying what
  grantingNothing,  // and saying so
  early,            // binds with the session, as the first portals did
  refusing,
  silent,
  withoutShortcuts
};

// The portal, on a thread and a connection of its own.
class Portal {
 public:
  explicit Portal(Manner manner) : manner_(manner) {
    if (sd_bus_open_user(&bus_) < 0) throw std::runtime_error("no bus");
    static const sd_bus_vtable kTable[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("CreateSession", "a{sv}", "o", &Portal::createSession, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("BindShortcuts", "oa(sa{sv})sa{sv}", "o", &Portal::bindShortcuts, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_SIGNAL("Activated", "osta{sv}", 0), SD_BUS_VTABLE_END};
    if (manner != Manner::withoutShortcuts) sd_bus_add_object_vtable(bus_, nullptr, kPath, kShortcuts, kTable, this);
    if (sd_bus_request_name(bus_, "org.freedesktop.portal.Desktop", 0) < 0) throw std::runtime_error("no name");
    thread_ = std::thread([this] { run(); });
  }
  Portal(const Portal&) = delete;
  Portal& operator=(const Portal&) = delete;
  ~Portal() {
    ending_ = true;
    thread_.join();
    sd_bus_flush_close_unref(bus_);
  }

  void activate(const std::string& session, const std::string& shortcut) {
    const HLLock lock(mutex_);
    steps_.emplace_back([this, session, shortcut] {
      sd_bus_emit_signal(bus_, kPath, kShortcuts, "Activated", "osta{sv}", session.c_str(), shortcut.c_str(),
                         std::uint64_t{1}, 0);
    });
  }

  std::vector<std::string> bound() {
    const HLLock lock(mutex_);
    return bound_;
  }
  std::vector<std::string> sessions() {
    const HLLock lock(mutex_);
    return sessions_;
  }
  std::vector<std::string> clients() {
    const HLLock lock(mutex_);
    return clients_;
  }

 private:
  using Options = std::map<std::string, std::string>;

  // The texts of an a{sv}; shortcuts in it are noted.
  Options optionsOf(sd_bus_message* message) {
    Options options;
    sd_bus_message_enter_container(message, 'a', "{sv}");
    const char* key = nullptr;
    const char* value = nullptr;
    while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
      sd_bus_message_read(message, "s", &key);
      if (std::string_view(key) != "shortcuts") {
        sd_bus_message_read(message, "v", "s", &value);
        options[key] = value;
      } else if (manner_ == Manner::early) {
        sd_bus_message_enter_container(message, 'v', "a(sa{sv})");
        noteShortcuts(message);
        sd_bus_message_exit_container(message);
      } else {
        sd_bus_message_skip(message, "v");
      }
      sd_bus_message_exit_container(message);
    }
    sd_bus_message_exit_container(message);
    return options;
  }

  void noteShortcuts(sd_bus_message* message) {
    const char* shortcut = nullptr;
    sd_bus_message_enter_container(message, 'a', "(sa{sv})");
    while (sd_bus_message_enter_container(message, 'r', "sa{sv}") > 0) {
      sd_bus_message_read(message, "s", &shortcut);
      const Options options = optionsOf(message);
      sd_bus_message_exit_container(message);
      const HLLock lock(mutex_);
      lastShortcut_ = shortcut;
      bound_.push_back(lastShortcut_ + "|" + options.at("preferred_trigger") + "|" + options.at("description"));
    }
    sd_bus_message_exit_container(message);
  }

  void answer(const std::string& request, std::uint32_t response) {
    sd_bus_emit_signal(bus_, request.c_str(), "org.freedesktop.portal.Request", "Response", "ua{sv}", response, 0);
  }

  void answerWith(const std::string& request, const std::string& shortcut) {
    sd_bus_emit_signal(bus_, request.c_str(), "org.freedesktop.portal.Request", "Response", "ua{sv}", 0, 1, "shortcuts",
                       "a(sa{sv})", 2, "other", 0, shortcut.c_str(), 1, "description", "s", "");
  }

  static std::string pathFor(const char* kind, sd_bus_message* message, const std::string& token) {
    std::string sender = std::string(sd_bus_message_get_sender(message)).substr(1);
    for (char& c : sender) c = c == '.' ? '_' : c;
    return std::string(kPath) + "/" + kind + "/" + sender + "/" + token;
  }

  static int createSession(sd_bus_message* message, void* data, sd_bus_error*) {
    auto& self = *static_cast<Portal*>(data);
    const Options options = self.optionsOf(message);
    const std::string request = pathFor("request", message, options.at("handle_token"));
    const std::string session = pathFor("session", message, options.at("session_handle_token"));
    {
      const HLLock lock(self.mutex_);
      self.sessions_.push_back(session);
      self.clients_.emplace_back(sd_bus_message_get_sender(message));
    }
    sd_bus_reply_method_return(message, "o", request.c_str());
    if (self.manner_ == Manner::silent) return 1;
    if (self.manner_ == Manner::early) {
      return sd_bus_emit_signal(self.bus_, request.c_str(), "org.freedesktop.portal.Request", "Response", "ua{sv}", 0U,
                                2, "shortcuts", "a(sa{sv})", 1, self.lastShortcut_.c_str(), 0, "session_handle", "s",
                                session.c_str());
    }
    const std::uint32_t response = self.manner_ == Manner::refusing ? 2 : 0;
    return sd_bus_emit_signal(self.bus_, request.c_str(), "org.freedesktop.portal.Request", "Response", "ua{sv}",
                              response, 2, "other", "u", 5U, "session_handle", "s", session.c_str());
  }

  static int bindShortcuts(sd_bus_message* message, void* data, sd_bus_error*) {
    auto& self = *static_cast<Portal*>(data);
    const char* session = nullptr;
    const char* window = nullptr;
    sd_bus_message_read(message, "o", &session);
    self.noteShortcuts(message);
    sd_bus_message_read(message, "s", &window);
    const std::string request = pathFor("request", message, self.optionsOf(message).at("handle_token"));
    // An answer may come before the reply; so nobody need wait for it here.
    if (self.manner_ == Manner::denying) {
      self.answer(request, 1);
    } else if (self.manner_ == Manner::granting) {
      self.answer(request, 0);
    } else if (self.manner_ != Manner::asking) {
      self.answerWith(request, self.manner_ == Manner::grantingNothing ? "third" : self.lastShortcut_);
    }
    return sd_bus_reply_method_return(message, "o", request.c_str());
  }

  void run() {
    while (!ending_) {
      std::vector<std::function<void()>> steps;
      {
        const HLLock lock(mutex_);
        steps.swap(steps_);
      }
      for (const auto& step : steps) step();
      if (sd_bus_process(bus_, nullptr) > 0) continue;
      sd_bus_wait(bus_, 5'000);
    }
  }

  const Manner manner_;
  sd_bus* bus_ = nullptr;
  std::atomic<bool> ending_ = false;
  std::string lastShortcut_;  // the portal thread's
  HLMutex mutex_;
  std::vector<std::function<void()>> steps_ HL_GUARDED_BY(mutex_);
  std::vector<std::string> bound_ HL_GUARDED_BY(mutex_);
  std::vector<std::string> sessions_ HL_GUARDED_BY(mutex_);
  std::vector<std::string> clients_ HL_GUARDED_BY(mutex_);
  std::thread thread_;
};

class WaylandHotKeys : public testing::Test {
 protected:
  static Environment waylandOf(Environment environment) {
    environment["WAYLAND_DISPLAY"] = "wayland-9";
    environment["XDG_SESSION_TYPE"] = "wayland";
    return environment;
  }

  HLHotKeyRegistration add(std::uint32_t code, std::uint32_t modifiers, std::uint32_t id = 1) {
    keys_.installHandler([this](const std::optional<HLHotKeyIdentity>& identity) {
      fired_.push_back(identity ? identity->id : 0);
      return HLHotKeyStatus::success;
    });
    return keys_.registerHotKey(code, modifiers, {"HLhk", id});
  }

  bool runUntil(const std::function<bool()>& condition) {
    const Clock::time_point deadline = Clock::now() + std::chrono::seconds(20);
    while (!condition()) {
      if (Clock::now() >= deadline) return false;
      loop_.runFor(0.005);
    }
    return true;
  }

  DesktopSession session_{WithoutAccessibility()};
  SessionEnvironment environment_{waylandOf(session_.environment())};
  HLLinuxRunLoop loop_;
  HLQtHotKeys keys_{loop_, "com.example.the-program"};
  std::vector<std::uint32_t> fired_;
};

constexpr std::uint32_t kKeyN = 45;
constexpr std::uint32_t kThreeModifiers = HLHotKeyCommand | HLHotKeyOption | HLHotKeyControl;

TEST_F(WaylandHotKeys, AreRequestedAndFiredByPortal) {
  Portal portal(Manner::willing);
  const HLHotKeyRegistration registration = add(kKeyN, kThreeModifiers, 7);
  ASSERT_EQ(registration.status, HLHotKeyStatus::success);
  EXPECT_THAT(portal.bound(), ElementsAre("dismiss-CTRL+ALT+LOGO+n|CTRL+ALT+LOGO+n|Clear notifications"));
  const std::string session = portal.sessions().front();
  portal.activate(session + "x", "dismiss-CTRL+ALT+LOGO+n");
  portal.activate(session, "other");
  portal.activate(session, "dismiss-CTRL+ALT+LOGO+n");
  EXPECT_TRUE(runUntil([this] { return !fired_.empty(); }));
  EXPECT_THAT(fired_, ElementsAre(7));
}

TEST_F(WaylandHotKeys, KeepTheirNamesAcrossRestarts) {
  Portal portal(Manner::willing);
  const auto nameOfOne = [&](std::uint32_t code) {
    HLQtHotKeys keys(loop_, "com.example.the-program");
    EXPECT_EQ(keys.registerHotKey(code, kThreeModifiers, {"HLhk", 1}).status, HLHotKeyStatus::success);
    const std::string session = portal.sessions().back();
    const std::string shortcut = portal.bound().back();
    return session.substr(session.rfind('/') + 1) + " " + shortcut.substr(0, shortcut.find('|'));
  };
  EXPECT_EQ(nameOfOne(kKeyN), "com_example_the_program dismiss-CTRL+ALT+LOGO+n");
  EXPECT_EQ(nameOfOne(kKeyN), "com_example_the_program dismiss-CTRL+ALT+LOGO+n");
  EXPECT_EQ(nameOfOne(40), "com_example_the_program dismiss-CTRL+ALT+LOGO+k") << "with other keys it is another one";
}

TEST_F(WaylandHotKeys, AreNotRequestedAgainWhenBound) {
  Portal portal(Manner::early);
  const HLHotKeyRegistration registration = add(kKeyN, kThreeModifiers, 7);
  ASSERT_EQ(registration.status, HLHotKeyStatus::success);
  EXPECT_THAT(portal.bound(), ElementsAre("dismiss-CTRL+ALT+LOGO+n|CTRL+ALT+LOGO+n|Clear notifications"));
  portal.activate(portal.sessions().front(), "dismiss-CTRL+ALT+LOGO+n");
  EXPECT_TRUE(runUntil([this] { return !fired_.empty(); }));
}

TEST_F(WaylandHotKeys, UseThePortalsKeyNames) {
  Portal portal(Manner::willing);
  std::vector<HLHotKeyRegistration> kept;
  kept.push_back(add(96, 0));
  kept.push_back(add(53, HLHotKeyShift | HLHotKeyCommand));
  kept.push_back(add(49, HLHotKeyControl));
  EXPECT_THAT(portal.bound(), ElementsAre(testing::HasSubstr("|F5|"), testing::HasSubstr("|SHIFT+LOGO+Escape|"),
                                          testing::HasSubstr("|CTRL+space|")));
  EXPECT_EQ(add(0x7F, kThreeModifiers).status, HLHotKeyStatus::failed);
}

TEST_F(WaylandHotKeys, SucceedUnlessThePortalRefuses) {
  const auto statusWith = [this](Manner manner) {
    Portal portal(manner);
    return add(kKeyN, kThreeModifiers).status;
  };
  EXPECT_EQ(statusWith(Manner::granting), HLHotKeyStatus::success);
  EXPECT_EQ(statusWith(Manner::asking), HLHotKeyStatus::success) << "the user may take any time";
  EXPECT_EQ(statusWith(Manner::denying), HLHotKeyStatus::failed);
  EXPECT_EQ(statusWith(Manner::grantingNothing), HLHotKeyStatus::failed);
}

TEST_F(WaylandHotKeys, EndWithTheirConnection) {
  Portal portal(Manner::willing);
  HLHotKeyRegistration registration = add(kKeyN, kThreeModifiers);
  ASSERT_EQ(registration.status, HLHotKeyStatus::success);
  const std::string client = portal.clients().front();
  const std::unique_ptr<HLBus> bus = HLBus::openSession();
  const auto isThere = [&] {
    const HLBusReply reply = bus->call(
        {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner"}, "s", client.c_str());
    int owned = 0;
    return reply && sd_bus_message_read_basic(reply.message.get(), 'b', &owned) > 0 && owned != 0;
  };
  EXPECT_TRUE(isThere());
  registration.hotKey = nullptr;
  EXPECT_TRUE(Eventually([&] { return !isThere(); }));
}

TEST_F(WaylandHotKeys, FailWithoutAGrantingPortal) {
  const auto reason = testing::Optional(
      std::string("This desktop gives apps no shortcuts. Set one of its own for the command: hushlet --dismiss-now"));
  EXPECT_EQ(keys_.unsupportedReason(), std::nullopt) << "not asked yet";
  EXPECT_EQ(add(kKeyN, kThreeModifiers).status, HLHotKeyStatus::failed) << "no portal";
  EXPECT_THAT(keys_.unsupportedReason(), reason);
  {
    Portal portal(Manner::withoutShortcuts);
    EXPECT_EQ(add(kKeyN, kThreeModifiers).status, HLHotKeyStatus::failed) << "a portal that does not know them";
    EXPECT_THAT(keys_.unsupportedReason(), reason);
  }
  {
    Portal portal(Manner::refusing);
    EXPECT_EQ(add(kKeyN, kThreeModifiers).status, HLHotKeyStatus::failed) << "it refuses";
    EXPECT_EQ(keys_.unsupportedReason(), std::nullopt);
    EXPECT_THAT(portal.bound(), IsEmpty());
  }
  Portal portal(Manner::silent);
  const Clock::time_point begin = Clock::now();
  EXPECT_EQ(add(kKeyN, kThreeModifiers).status, HLHotKeyStatus::failed) << "it does not answer";
  EXPECT_LT(Clock::now() - begin, std::chrono::seconds(10));
}

TEST_F(WaylandHotKeys, OutliveTheirPortal) {
  auto portal = std::make_unique<Portal>(Manner::willing);
  const HLHotKeyRegistration registration = add(kKeyN, kThreeModifiers);
  ASSERT_EQ(registration.status, HLHotKeyStatus::success);
  portal = nullptr;
  loop_.runFor(0.01);
  EXPECT_THAT(fired_, IsEmpty());
}

}  // namespace
