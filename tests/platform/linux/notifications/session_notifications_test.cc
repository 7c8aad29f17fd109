// Matching, listing and closing on a real session bus.
#include "platform/linux/notifications/session_notifications.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "tests/platform/linux/notifications/bus_session.h"
#include "tests/platform/linux/session/fake_process.h"

namespace {

using testing::ElementsAre;
using testing::Eq;
using testing::IsEmpty;
using testing::SizeIs;

const HLServerInformation kKnown = {"Xfce Notify Daemon", "Xfce", "0.7.3"};

HLNotificationName numbered(std::uint32_t number) { return {number, "", ""}; }

HLSessionNotifications::MayWatch always() {
  return [] { return true; };
}

// A process that stays in a session.
class SessionNotifications : public testing::Test {
 protected:
  void stay() {
    notifications_.prepareToStay();
    ASSERT_NE(notifications_.watch(), nullptr);
  }
  // Waits until the banner is matched.
  [[nodiscard]] std::optional<HLNotificationName> matchOf(HLOpenNotifications& notifications,
                                                          const HLShownTexts& banner) {
    std::optional<HLNotificationName> name;
    (void)Eventually([&] {
      name = notifications.match({banner}).front();
      return name.has_value();
    });
    return name;
  }

  BusSession session_;
  HLSessionNotifications notifications_{always()};
};

TEST_F(SessionNotifications, MatchAndClose) {
  FakeServer server(kKnown);
  stay();
  Poster poster;
  (void)poster.post("Ada", "Lunch?");
  (void)poster.post("Bob", "No");
  EXPECT_EQ(matchOf(notifications_, {"Bob", "No"}), numbered(2));
  EXPECT_THAT(notifications_.match({{"Ada", "Lunch?"}, {"Eve", "Hi"}}), ElementsAre(Eq(numbered(1)), Eq(std::nullopt)));
  EXPECT_TRUE(notifications_.close(numbered(2)));
  EXPECT_THAT(server.askedToClose(), ElementsAre(2U));
  EXPECT_TRUE(Eventually([this] { return !notifications_.match({{"Bob", "No"}}).front(); }));
}

TEST_F(SessionNotifications, MatchEqualOnesInServerOrder) {
  for (const auto& [information, number] :
       {std::pair(kKnown, 1U), std::pair(HLServerInformation{"cinnamon", "GNOME", "5.6"}, 2U)}) {
    const FakeServer server(information);
    stay();
    Poster poster;
    for (const char* summary : {"Ada", "Ada", "Bob"}) (void)poster.post(summary, "Lunch?");
    ASSERT_EQ(matchOf(notifications_, {"Bob", "Lunch?"}), numbered(3));
    EXPECT_THAT(notifications_.match({{"Ada", "Lunch?"}}), ElementsAre(Eq(numbered(number)))) << information.name;
  }
}

TEST_F(SessionNotifications, FailWhereTheServerRefuses) {
  FakeServer server(kKnown);
  server.refusesToClose = true;
  EXPECT_FALSE(notifications_.close(numbered(1)));
  EXPECT_THAT(server.askedToClose(), SizeIs(1));
}

TEST_F(SessionNotifications, FailWithoutServerOrBus) {
  EXPECT_FALSE(notifications_.close(numbered(1)));
  EXPECT_FALSE(notifications_.serverTraits().lacksTree());
  EXPECT_EQ(notifications_.shown(), std::nullopt);
  session_.stopBus();
  EXPECT_FALSE(notifications_.close(numbered(1)));
  EXPECT_THAT(notifications_.match({{"Ada"}}), ElementsAre(Eq(std::nullopt)));
}

TEST_F(SessionNotifications, WaitOnceForHangingServers) {
  std::atomic<bool> hangs = true;
  std::atomic<bool> isSlow = false;
  FakeServer server(kKnown, [&](sd_bus_message* call) {
    if (isSlow) std::this_thread::sleep_for(HLUnresponsiveTimeout * 2);
    return hangs && sd_bus_message_is_method_call(call, nullptr, "CloseNotification") > 0;
  });
  const auto began = std::chrono::steady_clock::now();
  std::vector<std::thread> threads;
  for (std::uint32_t number = 1; number <= 8; ++number)
    threads.emplace_back([this, number] { EXPECT_FALSE(notifications_.close(numbered(number))); });
  for (std::thread& thread : threads) thread.join();
  EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::milliseconds(1900));
  hangs = false;
  EXPECT_TRUE(Eventually([this] { return notifications_.close(numbered(9)); }));
  EXPECT_THAT(server.askedToClose(), ElementsAre(9U));
  isSlow = true;
  EXPECT_TRUE(notifications_.close(numbered(10))) << "the timeout is the usual one again";
}

// So that another server that takes its place never closes one of its own.
TEST_F(SessionNotifications, CloseAtTheOwnersOwnName) {
  std::mutex mutex;
  std::string destination;
  const FakeServer server(kKnown, [&](sd_bus_message* call) {
    const std::lock_guard lock(mutex);
    destination = sd_bus_message_get_destination(call);
    return false;
  });
  EXPECT_TRUE(notifications_.close(numbered(1)));
  const std::lock_guard lock(mutex);
  EXPECT_EQ(destination.front(), ':');
}

TEST_F(SessionNotifications, ConnectAgainToAnotherBus) {
  {
    const FakeServer server(kKnown);
    EXPECT_TRUE(notifications_.close(numbered(1)));
    session_.killBus();
    EXPECT_FALSE(notifications_.close(numbered(2)));
  }
  session_.startBus();
  FakeServer server(kKnown);
  EXPECT_TRUE(Eventually([this] { return notifications_.close(numbered(3)); }));
  EXPECT_THAT(server.askedToClose(), ElementsAre(3U));
}

TEST_F(SessionNotifications, NeverAskUntruthfulServers) {
  FakeServer server({"Notification Daemon", "GNOME", "3.20.0"});
  stay();
  Poster poster;
  (void)poster.post("Ada", "Lunch?");
  EXPECT_FALSE(notifications_.close(numbered(1)));
  EXPECT_THAT(server.askedToClose(), IsEmpty());
  EXPECT_THAT(notifications_.match({{"Ada", "Lunch?"}}), ElementsAre(Eq(std::nullopt)));
}

TEST_F(SessionNotifications, DistrustUnknownServersThatKeepBanners) {
  FakeServer server;
  stay();
  Poster poster;
  (void)poster.post("Ada", "Lunch?");
  (void)poster.post("Bob", "No");
  EXPECT_EQ(matchOf(notifications_, {"Ada", "Lunch?"}), numbered(1));
  EXPECT_TRUE(notifications_.close(numbered(1)));
  // The closed banner is still on screen, and soon for too long.
  EXPECT_TRUE(Eventually([this] { return !notifications_.match({{"Ada", "Lunch?"}, {"Bob", "No"}}).back(); }));
  EXPECT_FALSE(notifications_.close(numbered(2)));
  EXPECT_THAT(server.askedToClose(), ElementsAre(1U));
}

TEST_F(SessionNotifications, TrustKnownServersThatAreSlow) {
  FakeServer server(kKnown);
  stay();
  Poster poster;
  (void)poster.post("Ada", "Lunch?");
  (void)poster.post("Bob", "No");
  EXPECT_EQ(matchOf(notifications_, {"Ada", "Lunch?"}), numbered(1));
  ASSERT_EQ(matchOf(notifications_, {"Bob", "No"}), numbered(2));
  EXPECT_TRUE(notifications_.close(numbered(1)));
  EXPECT_FALSE(Eventually(
      [this] {
        return !notifications_.match({{"Ada", "Lunch?"}, {"Bob", "No"}}).back();
      },
      std::chrono::milliseconds(2500)));
}

TEST_F(SessionNotifications, CloseAtTheShellsName) {
  FakeServer helper({"gnome-shell", "GNOME", "43.9"});
  FakeServer shell({"gnome-shell", "GNOME", "43.9"}, {}, "org.gnome.Shell");
  EXPECT_TRUE(notifications_.close(numbered(5)));
  EXPECT_THAT(shell.askedToClose(), ElementsAre(5U));
  EXPECT_THAT(helper.askedToClose(), IsEmpty());
}

TEST_F(SessionNotifications, RemoveWhatHasNoNumber) {
  const FakeServer server({"gnome-shell", "GNOME", "43.9"});
  std::atomic<int> removed = 0;
  const FakeServer shell(
      {},
      [&removed](sd_bus_message* call) {
        const char* application = nullptr;
        const char* identifier = nullptr;
        if (sd_bus_message_is_method_call(call, "org.gtk.Notifications", "RemoveNotification") > 0 &&
            sd_bus_message_read(call, "ss", &application, &identifier) > 0 && std::string(identifier) == "alarm") {
          ++removed;
        }
        return sd_bus_reply_method_return(call, "") >= 0;
      },
      "org.gtk.Notifications");
  stay();
  Poster poster;
  sd_bus_call_method(poster.bus(), "org.gtk.Notifications", "/org/gtk/Notifications", "org.gtk.Notifications",
                     "AddNotification", nullptr, nullptr, "ssa{sv}", "org.example.Clock", "alarm", 1, "title", "s",
                     "Wake up");
  const std::optional<HLNotificationName> name = matchOf(notifications_, {"Wake up"});
  EXPECT_EQ(name, (HLNotificationName{0, "org.example.Clock", "alarm"}));
  EXPECT_TRUE(notifications_.close(*name));
  EXPECT_EQ(removed, 1);
  EXPECT_TRUE(Eventually([this] { return !notifications_.match({{"Wake up"}}).front(); }));
}

TEST_F(SessionNotifications, ReportChanges) {
  const FakeServer server(kKnown);
  EXPECT_EQ(notifications_.watch(), nullptr);
  stay();
  const auto changes = notifications_.watch();
  ASSERT_NE(changes, nullptr);
  const auto isReadable = [&changes] {
    pollfd entry{changes->descriptor(), POLLIN, 0};
    return poll(&entry, 1, 0) == 1;
  };
  EXPECT_TRUE(changes->take());
  EXPECT_FALSE(isReadable());
  Poster poster;
  (void)poster.post("Ada");
  EXPECT_TRUE(Eventually(isReadable));
  EXPECT_TRUE(changes->take());
  session_.stopBus();
  EXPECT_TRUE(Eventually(isReadable));
  EXPECT_TRUE(Eventually([&changes] { return !changes->take(); }));
}

// ---------------------------------------------------------------------------------------------------------------------
// Servers without a tree

// A server that answers some calls by itself.
bool answers(sd_bus_message* call, const char* interface, const char* member) {
  return sd_bus_message_is_method_call(call, interface, member) > 0;
}

std::vector<std::string> listOf(const std::optional<std::vector<HLListedNotification>>& shown) {
  if (!shown) return {"unknown"};
  std::vector<std::string> list;
  for (const HLListedNotification& one : *shown) {
    list.push_back(std::to_string(one.name.number) + " " + one.application + " " + one.summary + " " + one.body);
  }
  return list;
}

TEST_F(SessionNotifications, ListByCounts) {
  std::atomic<std::uint32_t> displayed = 2;
  const FakeServer server({"dunst", "knopwob", "1.9.0"}, [&displayed](sd_bus_message* call) {
    return answers(call, "org.freedesktop.DBus.Properties", "Get") &&
           sd_bus_reply_method_return(call, "v", "u", displayed.load()) >= 0;
  });
  EXPECT_THAT(listOf(notifications_.shown()), ElementsAre("unknown"));
  displayed = 0;
  EXPECT_THAT(listOf(notifications_.shown()), IsEmpty());
  displayed = 2;
  stay();
  EXPECT_TRUE(notifications_.serverTraits().lacksTree());
  Poster poster;
  for (const char* summary : {"first", "second"}) (void)poster.post(summary);
  const auto urgent = [](sd_bus_message* message) { sd_bus_message_append(message, "{sv}", "urgency", "y", 2); };
  (void)poster.post("third", "now", {.hints = urgent});
  EXPECT_TRUE(Eventually([this] {
    return listOf(notifications_.shown()).size() == 2 && notifications_.shown()->back().summary == "third";
  }));
  EXPECT_THAT(listOf(notifications_.shown()), ElementsAre("1 poster first ", "3 poster third now"));
  displayed = 9;
  EXPECT_THAT(listOf(notifications_.shown()), SizeIs(3));
}

TEST_F(SessionNotifications, ListByTheServersList) {
  std::atomic<const char*> mode = "default";
  const FakeServer server({"mako", "emersion", "0.0.0"}, [&mode](sd_bus_message* call) {
    if (answers(call, "fr.emersion.Mako", "ListModes")) {
      return sd_bus_reply_method_return(call, "as", 1, mode.load()) >= 0;
    }
    return answers(call, "fr.emersion.Mako", "ListNotifications") &&
           sd_bus_reply_method_return(call, "aa{sv}", 2,  //
                                      4, "app-name", "s", "Mail", "summary", "s", "Ada", "body", "s", "Lunch?", "id",
                                      "u", 9U,  //
                                      3, "id", "u", 4U, "actions", "a{ss}", 1, "k", "v", "summary", "s", "Bob") >= 0;
  });
  EXPECT_TRUE(notifications_.serverTraits().lacksTree());
  EXPECT_THAT(listOf(notifications_.shown()), ElementsAre("4  Bob ", "9 Mail Ada Lunch?"));
  mode = "do-not-disturb";
  EXPECT_THAT(listOf(notifications_.shown()), IsEmpty()) << "the mode hides them";
}

TEST_F(SessionNotifications, ListByConfiguredTimes) {
  std::atomic<bool> isQuiet = false;
  const FakeServer server({"SwayNotificationCenter", "ErikReider", "0.7.3"}, [&isQuiet](sd_bus_message* call) {
    return answers(call, "org.erikreider.swaync.cc", "GetSubscribeData") &&
           sd_bus_reply_method_return(call, "(bbu)", isQuiet ? 1 : 0, 0, 0U) >= 0;  // as for transient ones
  });
  stay();
  Poster poster;
  (void)poster.post("normal");
  (void)poster.post("short", "", {.timeout = 1});
  const auto low = [](sd_bus_message* message) { sd_bus_message_append(message, "{sv}", "urgency", "y", 0); };
  (void)poster.post("low", "", {.hints = low});
  const std::string directory = session_.environment().at("XDG_CONFIG_HOME") + "/swaync";
  std::filesystem::create_directory(directory);
  std::ofstream(directory + "/config.json") << R"({"timeout": 100, "timeout-low": 0, "timeout-critical": 0})";
  EXPECT_TRUE(Eventually([this] {
    return listOf(notifications_.shown()) == std::vector<std::string>{"1 poster normal ", "3 poster low "};
  }));
  std::ofstream(directory + "/config.json") << R"({"timeout": "long"})";
  EXPECT_THAT(listOf(notifications_.shown()), ElementsAre("unknown"));
  isQuiet = true;
  EXPECT_THAT(listOf(notifications_.shown()), IsEmpty());
}

// ---------------------------------------------------------------------------------------------------------------------
// One process asks another

// Whether a process has the name at which others ask.
bool isAnybodyAsked() {
  const auto bus = HLBus::openSession();
  return static_cast<bool>(
      bus->call({"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetNameOwner"}, "s",
                HLNotificationsName));
}

TEST_F(SessionNotifications, AskADaemon) {
  FakeServer server(kKnown);
  const std::unique_ptr<ChildProcess> daemon = session_.start({HL_PROGRAM, "--daemon"});
  ASSERT_TRUE(Eventually(isAnybodyAsked));
  Poster poster;
  (void)poster.post("Ada", "Lunch?");
  (void)poster.post("Bob", "No");
  EXPECT_EQ(matchOf(notifications_, {"Bob", "No"}), numbered(2));
  EXPECT_THAT(notifications_.match({{"Bob", "No"}, {"", "", ""}, {}, {"Ada", "Lunch?"}}),
              ElementsAre(Eq(numbered(2)), Eq(std::nullopt), Eq(std::nullopt), Eq(numbered(1))));
  EXPECT_TRUE(notifications_.close(numbered(1)));
  EXPECT_THAT(server.askedToClose(), ElementsAre(1U));
  EXPECT_EQ(notifications_.watch(), nullptr);
}

TEST_F(SessionNotifications, AskTheNextAfterFirstEnds) {
  const FakeServer server(kKnown);
  auto first = std::make_unique<HLSessionNotifications>(always());
  first->prepareToStay();
  ASSERT_NE(first->watch(), nullptr);
  HLSessionNotifications second(always());
  second.prepareToStay();
  ASSERT_NE(second.watch(), nullptr);
  Poster poster;
  (void)poster.post("Ada");
  EXPECT_EQ(matchOf(notifications_, {"Ada"}), numbered(1));
  first = nullptr;
  (void)poster.post("Bob");
  EXPECT_EQ(matchOf(notifications_, {"Bob"}), numbered(2));
}

TEST_F(SessionNotifications, AskOnlyNumbersAndApplications) {
  const FakeServer server({"dunst", "knopwob", "1.9.0"}, [](sd_bus_message* call) {
    return answers(call, "org.freedesktop.DBus.Properties", "Get") &&
           sd_bus_reply_method_return(call, "v", "u", 1U) >= 0;
  });
  HLSessionNotifications running(always());
  running.prepareToStay();
  ASSERT_NE(running.watch(), nullptr);
  Poster poster;
  (void)poster.post("secret", "more");
  EXPECT_TRUE(Eventually([this] { return listOf(notifications_.shown()) == std::vector<std::string>{"1 poster  "}; }));
}

TEST_F(SessionNotifications, LearnThatNothingIsKnown) {
  const FakeServer server({"dunst", "knopwob", "1.9.0"});  // it does not say how many it shows
  HLSessionNotifications running(always());
  running.prepareToStay();
  ASSERT_TRUE(Eventually(isAnybodyAsked));
  EXPECT_THAT(listOf(notifications_.shown()), ElementsAre("unknown"));
}

TEST_F(SessionNotifications, RefuseLargeOrOddQuestions) {
  const FakeServer server(kKnown);
  stay();
  Poster poster;
  (void)poster.post("Ada");
  ASSERT_TRUE(matchOf(notifications_, {"Ada"}));
  const auto ask = [](const std::function<int(sd_bus_message*)>& append) {
    const auto bus = HLBus::openSession();
    return bus->callWith({HLNotificationsName, HLNotificationsPath, HLNotificationsName, "Match"}, append).outcome;
  };
  const auto textsOf = [](std::size_t banners, std::size_t texts, std::size_t size) {
    return [=](sd_bus_message* message) {
      sd_bus_message_open_container(message, 'a', "as");
      for (std::size_t i = 0; i < banners; ++i) {
        sd_bus_message_open_container(message, 'a', "s");
        for (std::size_t j = 0; j < texts; ++j) sd_bus_message_append(message, "s", std::string(size, 'x').c_str());
        sd_bus_message_close_container(message);
      }
      sd_bus_message_close_container(message);
      return 0;
    };
  };
  EXPECT_EQ(ask(textsOf(HLMostBannersAsked, 2, 10)), HLBusOutcome::answered);
  EXPECT_EQ(ask(textsOf(HLMostBannersAsked + 1, 2, 10)), HLBusOutcome::refused);
  EXPECT_EQ(ask(textsOf(1, HLMostTextsAsked + 1, 10)), HLBusOutcome::refused);
  EXPECT_EQ(ask(textsOf(1, 1, HLLongestTextAsked + 1)), HLBusOutcome::refused);
  EXPECT_EQ(ask([](sd_bus_message* message) { return sd_bus_message_append(message, "s", "x"); }),
            HLBusOutcome::refused);
}

TEST_F(SessionNotifications, StayWithinTheRequestLimits) {
  const FakeServer server(kKnown);
  HLSessionNotifications running(always());
  running.prepareToStay();
  ASSERT_NE(running.watch(), nullptr);
  Poster poster;
  (void)poster.post("Ada");
  ASSERT_TRUE(matchOf(notifications_, {"Ada"}));
  std::vector<HLShownTexts> banners(HLMostBannersAsked + 1, {"none"});
  banners.front() = {"Ada"};
  banners[1] = {std::string(HLLongestTextAsked + 1, 'x')};
  const auto names = notifications_.match(banners);
  ASSERT_EQ(names.size(), banners.size());
  EXPECT_EQ(names.front(), numbered(1));
  EXPECT_EQ(names.back(), std::nullopt);
  EXPECT_EQ(notifications_.match({{std::string("Ada\0and more", 12)}}).front(), std::nullopt);
}

TEST_F(SessionNotifications, WatchNothingWhenSwitchedOff) {
  const FakeServer server(kKnown);
  HLSessionNotifications unwatching([] { return false; });
  unwatching.prepareToStay();
  EXPECT_EQ(unwatching.watch(), nullptr);
  FakeProcess process(session_.environment().at("HOME"));
  process.variables["XDG_CONFIG_HOME"] = session_.environment().at("XDG_CONFIG_HOME");
  EXPECT_TRUE(HLMayWatchNotifications(process));
  const std::string directory = session_.environment().at("XDG_CONFIG_HOME") + "/org.example.one";
  std::filesystem::create_directory(directory);
  std::ofstream(directory + "/defaults.json") << R"({"HLWatchNotifications": false})";
  EXPECT_FALSE(HLMayWatchNotifications(process));
}

}  // namespace
