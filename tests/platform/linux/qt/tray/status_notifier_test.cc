// The item on the session's bus: how it registers, and the menu that trays draw themselves.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <systemd/sd-bus.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/platform/linux/qt/tray/menu_bar_session.h"

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kWatcherPath = "/StatusNotifierWatcher";
constexpr const char* kWatcher = "org.kde.StatusNotifierWatcher";

// Trays' common book of items. It works while it is waited with, and answers a registration when it is told to.
class Watcher {
 public:
  Watcher(const Environment& environment, bool hasHost) : hasHost_(hasHost) {
    static const sd_bus_vtable kTable[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("RegisterStatusNotifierItem", "s", "", &Watcher::registerItem, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_PROPERTY("IsStatusNotifierHostRegistered", "b", &Watcher::hasHost, 0, 0),
        SD_BUS_SIGNAL("StatusNotifierHostRegistered", "", 0), SD_BUS_VTABLE_END};
    const bool works = sd_bus_new(&bus_) >= 0 &&
                       sd_bus_set_address(bus_, environment.at("DBUS_SESSION_BUS_ADDRESS").c_str()) >= 0 &&
                       sd_bus_set_bus_client(bus_, 1) >= 0 && sd_bus_start(bus_) >= 0 &&
                       sd_bus_add_object_vtable(bus_, nullptr, kWatcherPath, kWatcher, kTable, this) >= 0 &&
                       sd_bus_request_name(bus_, kWatcher, 0) >= 0;
    if (!works) throw std::runtime_error("no watcher");
  }
  Watcher(const Watcher&) = delete;
  Watcher& operator=(const Watcher&) = delete;
  ~Watcher() {
    for (sd_bus_message* message : unanswered_) sd_bus_message_unref(message);
    sd_bus_flush_close_unref(bus_);
  }

  // Looks after each message.
  [[nodiscard]] bool waitUntil(const std::function<bool()>& condition) {
    return Eventually([&] {
      do {
        if (condition()) return true;
      } while (sd_bus_process(bus_, nullptr) > 0);
      return false;
    });
  }

  void hostComes() {
    hasHost_ = true;
    sd_bus_emit_signal(bus_, kWatcherPath, kWatcher, "StatusNotifierHostRegistered", "");
  }

  void answer() {
    for (sd_bus_message* message : unanswered_) {
      sd_bus_reply_method_return(message, "");
      sd_bus_message_unref(message);
    }
    unanswered_.clear();
  }

  [[nodiscard]] int timesAsked() const { return timesAsked_; }
  [[nodiscard]] const std::vector<std::string>& items() const { return items_; }

 private:
  static int registerItem(sd_bus_message* message, void* data, sd_bus_error*) {
    auto& self = *static_cast<Watcher*>(data);
    const char* item = nullptr;
    sd_bus_message_read(message, "s", &item);
    self.items_.emplace_back(item);
    self.unanswered_.push_back(sd_bus_message_ref(message));
    return 1;
  }

  static int hasHost(sd_bus*, const char*, const char*, const char*, sd_bus_message* answer, void* data,
                     sd_bus_error*) {
    auto& self = *static_cast<Watcher*>(data);
    ++self.timesAsked_;
    return sd_bus_message_append(answer, "b", static_cast<int>(self.hasHost_));
  }

  sd_bus* bus_ = nullptr;
  bool hasHost_;
  int timesAsked_ = 0;
  std::vector<std::string> items_;
  std::vector<sd_bus_message*> unanswered_;
};

class StatusNotifier : public MenuBar {
 protected:
  [[nodiscard]] bool hasName() {
    return call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.NameHasOwner", {itemName()}) ==
           "(true,)\n";
  }

  // Returns when the program has seen to all that has come to it so far.
  void settle() {
    tell("later");
    waitFor("served", ++served_);
  }

  // The item goes there from the bus.
  void moveToXTray() {
    panel_ = session_->startTray();
    (void)dockedWindow();
    settle();
  }
};

TEST_F(StatusNotifier, KeepsNameUntilWatcherAnswers) {
  Watcher watcher(session_->environment(), true);
  startProgram();
  ASSERT_TRUE(watcher.waitUntil([&] { return !watcher.items().empty(); }));
  EXPECT_THAT(watcher.items(), ElementsAre(itemName()));
  moveToXTray();
  EXPECT_TRUE(hasName());
  watcher.answer();
  EXPECT_TRUE(watcher.waitUntil([this] { return !hasName(); }));
}

TEST_F(StatusNotifier, ReleasesNameAtOnceWhenRegistered) {
  Watcher watcher(session_->environment(), true);
  startProgram();
  ASSERT_TRUE(watcher.waitUntil([&] { return !watcher.items().empty(); }));
  watcher.answer();
  settle();
  EXPECT_TRUE(hasName());
  moveToXTray();
  EXPECT_FALSE(hasName());
}

TEST_F(StatusNotifier, RegistersOnlyWithATrayHost) {
  Watcher watcher(session_->environment(), false);
  startProgram("offscreen");
  ASSERT_TRUE(watcher.waitUntil([&] { return watcher.timesAsked() == 1; }));
  watcher.hostComes();
  ASSERT_TRUE(watcher.waitUntil([&] { return !watcher.items().empty(); }));
  EXPECT_EQ(watcher.timesAsked(), 2);
  EXPECT_THAT(watcher.items(), ElementsAre(itemName()));
}

TEST_F(StatusNotifier, SurvivesWatcherLeavingWithoutAnswer) {
  auto watcher = std::make_unique<Watcher>(session_->environment(), true);
  startProgram();
  ASSERT_TRUE(watcher->waitUntil([&] { return !watcher->items().empty(); }));
  watcher = nullptr;
  watcher = std::make_unique<Watcher>(session_->environment(), true);
  ASSERT_TRUE(watcher->waitUntil([&] { return !watcher->items().empty(); }));
  EXPECT_THAT(watcher->items(), ElementsAre(itemName()));
  watcher = nullptr;
  moveToXTray();
  EXPECT_TRUE(Eventually([this] { return !hasName(); }));
}

// The menu for trays to draw, on the connection that owns the program's own name.
class StatusNotifierMenu : public StatusNotifier {
 protected:
  void SetUp() override {
    StatusNotifier::SetUp();
    startProgram("offscreen");
  }

  [[nodiscard]] std::string menu(const std::string& method, const std::vector<std::string>& arguments) {
    return call(kIdentifier, "/MenuBar", "com.canonical.dbusmenu." + method, arguments);
  }

  [[nodiscard]] std::string layout(const std::string& id, const std::string& depth, const std::string& names = "[]") {
    return menu("GetLayout", {id, "@i " + depth, "@as " + names});
  }

  // The first item of what the panel draws, with these keys or moves. Until the panel has fetched our menu it opens its
  // own, which is closed again.
  void chooseInPanel(const std::string& picture, const std::vector<std::string>& choice) {
    const auto comes = [this](const std::string& line, int times) {
      return Eventually([&] { return count(line) >= times; }, std::chrono::seconds(1));
    };
    const bool chosen = Eventually([&] {
      const int opened = count("menu opens");
      const int before = count("chosen dismiss");
      xdotool({"mousemove", "16", "15", "click", "3"});
      if (comes("menu opens", opened + 1)) {
        settle();
        keepPicture(picture);
        xdotool(choice);
        if (comes("chosen dismiss", before + 1)) return true;
      }
      xdotool({"key", "Escape"});
      return false;
    });
    if (!chosen) throw std::runtime_error("the panel's menu does nothing:\n" + program_->output());
  }
};

constexpr const char* kUnknownItem = "InvalidArgs: There is no item of that id";

TEST_F(StatusNotifierMenu, TellsTitlesKeysAndSeparators) {
  EXPECT_EQ(layout("0", "-1"),
            "(uint32 1, (0, {'children-display': <'submenu'>}, ["
            "<(1, {'label': <'Dismiss Notifications'>}, @av [])>, "
            "<(2, {'type': <'separator'>}, @av [])>, "
            "<(3, {'label': <'Set Up Accessibility…'>}, @av [])>, "
            "<(4, {'label': <'Settings…'>, 'shortcut': <[['Control', 'comma']]>}, @av [])>, "
            "<(5, {'type': <'separator'>}, @av [])>, "
            "<(6, {'label': <'Quit Hushlet'>, 'shortcut': <[['Control', 'q']]>}, @av [])>]))\n");
}

TEST_F(StatusNotifierMenu, TellsOnlyWhatIsAsked) {
  EXPECT_EQ(layout("0", "0"), "(uint32 1, (0, {'children-display': <'submenu'>}, @av []))\n");
  EXPECT_EQ(layout("4", "-1", "['label', 'visible']"), "(uint32 1, (4, {'label': <'Settings…'>}, @av []))\n");
  EXPECT_EQ(menu("GetGroupProperties", {"[6, 99, 2]", "['label', 'type']"}),
            "([(2, {'type': <'separator'>}), (6, {'label': <'Quit Hushlet'>})],)\n");
  EXPECT_THAT(
      menu("GetGroupProperties", {"@ai []", "['label']"}),
      AllOf(HasSubstr("[(0, @a{sv} {}), (1, {'label': <'Dismiss Notifications'>}), (2, {})"), HasSubstr("(6, ")));
  EXPECT_EQ(menu("GetProperty", {"1", "label"}), "(<'Dismiss Notifications'>,)\n");
  EXPECT_EQ(call(kIdentifier, "/MenuBar", "org.freedesktop.DBus.Properties.GetAll", {"com.canonical.dbusmenu"}),
            "({'IconThemePath': <@as []>, 'Status': <'normal'>, 'TextDirection': <'ltr'>, 'Version': <uint32 3>},)\n");
  EXPECT_EQ(call(kIdentifier, "/StatusNotifierItem", "org.freedesktop.DBus.Properties.Get",
                 {"org.kde.StatusNotifierItem", "Menu"}),
            "(<objectpath '/MenuBar'>,)\n");
  EXPECT_EQ(call(kIdentifier, "/StatusNotifierItem", "org.freedesktop.DBus.Properties.Get",
                 {"org.kde.StatusNotifierItem", "ItemIsMenu"}),
            "(<false>,)\n");
}

TEST_F(StatusNotifierMenu, UpdatesBeforeItIsShown) {
  const auto monitor = session_->start({"gdbus", "monitor", "--session", "--dest", kIdentifier});
  ASSERT_TRUE(Eventually([&] { return monitor->output().find("is owned by") != std::string::npos; }));
  EXPECT_EQ(count("menu opens"), 0);
  EXPECT_EQ(menu("AboutToShow", {"0"}), "(true,)\n");
  EXPECT_EQ(count("menu opens"), 1);
  // An item that has got a check mark is another one.
  EXPECT_TRUE(Eventually([&] {
    return monitor->output().find("com.canonical.dbusmenu.LayoutUpdated (uint32 2, 0)") != std::string::npos;
  }));
  EXPECT_THAT(layout("0", "-1"), AllOf(HasSubstr("(uint32 2, (0, "),
                                       HasSubstr("<(2, {'type': <'separator'>}, @av [])>, "
                                                 "<(7, {'label': <'Accessibility Allowed'>, 'toggle-state': <1>, "
                                                 "'toggle-type': <'checkmark'>}, @av [])>, <(4, ")));
  EXPECT_THAT(layout("3", "-1"), HasSubstr(kUnknownItem));

  EXPECT_EQ(menu("AboutToShow", {"0"}), "(false,)\n");
  EXPECT_EQ(menu("AboutToShow", {"4"}), "(false,)\n");
  EXPECT_EQ(count("menu opens"), 2);
  EXPECT_EQ(menu("AboutToShowGroup", {"[0, 99]"}), "(@ai [], [99])\n");
  EXPECT_EQ(count("menu opens"), 3);
}

TEST_F(StatusNotifierMenu, TellsOfAnItemThatChanges) {
  const auto monitor = session_->start({"gdbus", "monitor", "--session", "--dest", kIdentifier});
  ASSERT_TRUE(Eventually([&] { return monitor->output().find("is owned by") != std::string::npos; }));
  tell("rename Quit_&_go");
  EXPECT_TRUE(Eventually([&] {
    return monitor->output().find(
               "com.canonical.dbusmenu.ItemsPropertiesUpdated ([(6, {'label': <'Quit__&__go'>, "
               "'shortcut': <[['Control', 'q']]>})], @a(ias) [])") != std::string::npos;
  })) << monitor->output();
  EXPECT_EQ(menu("GetProperty", {"6", "label"}), "(<'Quit__&__go'>,)\n");
  EXPECT_THAT(monitor->output(), Not(HasSubstr("LayoutUpdated")));
  EXPECT_EQ(menu("AboutToShowGroup", {"[0]"}), "([0], @ai [])\n");
}

TEST_F(StatusNotifierMenu, ActsOnChoicesAfterAnswering) {
  EXPECT_EQ(menu("Event", {"1", "hovered", "<0>", "0"}), "()\n");
  EXPECT_EQ(menu("Event", {"0", "opened", "<0>", "0"}), "()\n");
  EXPECT_EQ(menu("Event", {"2", "clicked", "<0>", "0"}), "()\n");
  settle();
  EXPECT_EQ(count("chosen dismiss"), 0);
  EXPECT_EQ(menu("Event", {"1", "clicked", "<0>", "0"}), "()\n");
  waitFor("chosen dismiss");
  EXPECT_EQ(menu("EventGroup", {"@a(isvu) [(4, 'clicked', <0>, 0), (99, 'clicked', <0>, 0)]"}), "([99],)\n");
  waitFor("chosen settings");

  // This one opens a window that waits for the user; the tray does not.
  EXPECT_EQ(menu("Event", {"3", "clicked", "<0>", "0"}), "()\n");
  waitFor("chosen accessibility");
  EXPECT_EQ(menu("GetProperty", {"1", "label"}), "(<'Dismiss Notifications'>,)\n");
  EXPECT_EQ(count("answer 0"), 0);
}

TEST_F(StatusNotifierMenu, KeepsMarkOfChosenItem) {
  EXPECT_EQ(menu("AboutToShow", {"0"}), "(true,)\n");
  EXPECT_EQ(menu("Event", {"7", "clicked", "<0>", "0"}), "()\n");
  waitFor("chosen accessibility");
  settle();
  EXPECT_EQ(menu("GetProperty", {"7", "toggle-state"}), "(<1>,)\n");
  EXPECT_EQ(menu("AboutToShow", {"0"}), "(false,)\n");
}

TEST_F(StatusNotifierMenu, RejectsUnknownItemsAndProperties) {
  EXPECT_THAT(layout("99", "-1"), HasSubstr(kUnknownItem));
  EXPECT_THAT(menu("Event", {"99", "clicked", "<0>", "0"}), HasSubstr(kUnknownItem));
  EXPECT_THAT(menu("EventGroup", {"@a(isvu) [(98, 'clicked', <0>, 0), (99, 'clicked', <0>, 0)]"}),
              HasSubstr(kUnknownItem));
  EXPECT_THAT(menu("AboutToShow", {"99"}), HasSubstr(kUnknownItem));
  EXPECT_THAT(menu("AboutToShowGroup", {"[98, 99]"}), HasSubstr(kUnknownItem));
  EXPECT_EQ(count("menu opens"), 0);
  EXPECT_THAT(menu("GetProperty", {"99", "label"}), HasSubstr("InvalidArgs: There is no such item"));
  EXPECT_THAT(menu("GetProperty", {"1", "toggle-state"}), HasSubstr("InvalidArgs: There is no such item"));
  EXPECT_EQ(menu("GetGroupProperties", {"[99]", "@as []"}), "(@a(ia{sv}) [],)\n");
}

TEST_F(StatusNotifierMenu, OpensInPanelOnRightClick) {
  startPanel();
  waitForPanelItem();
  clickPanel("click type=2 modifiers=0");
  chooseInPanel("panel-drawn-menu", {"key", "Down", "Return"});
  chooseInPanel("panel-drawn-menu-again", {"mousemove", "60", "45", "click", "1"});
  EXPECT_EQ(count("click type=4 modifiers=0"), 0);
}

}  // namespace
