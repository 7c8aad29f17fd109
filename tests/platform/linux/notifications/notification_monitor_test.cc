// The monitor on a real session bus.
#include "platform/linux/notifications/notification_monitor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "platform/linux/notifications/bus_events.h"
#include "platform/linux/session/bus.h"
#include "tests/platform/linux/notifications/bus_session.h"
#include "tests/support/sanitizers.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kObject = "/org/freedesktop/Notifications";
constexpr const char* kNamed = "org.gtk.Notifications";

// Answers no question.
class NoAnswers : public HLOpenNotifications {
 public:
  [[nodiscard]] std::vector<std::optional<HLNotificationName>> match(
      const std::vector<HLShownTexts>& banners) override {
    return std::vector<std::optional<HLNotificationName>>(banners.size());
  }
  [[nodiscard]] std::optional<std::vector<HLListedNotification>> shown() override { return std::nullopt; }
  [[nodiscard]] bool close(const HLNotificationName&) override { return false; }
};

class NotificationMonitor : public testing::Test {
 protected:
  void watch() {
    monitor_.start();
    ASSERT_TRUE(Eventually([this] { return monitor_.isWatching(); }));
  }

  // As "7 summary".
  [[nodiscard]] std::vector<std::string> open() const {
    std::vector<std::string> open;
    for (const HLOpenNotificationRef& one : table_.open()) {
      const HLNotificationName& name = one->name;
      open.push_back((name.number != 0 ? std::to_string(name.number) : name.application + "/" + name.identifier) + " " +
                     one->posted.summary);
    }
    return open;
  }
  // Waits until a notification that is posted now is known, and so whatever came before.
  void settle(Poster& poster) {
    const std::uint32_t number = poster.post("marker");
    ASSERT_NE(number, 0U);
    const auto has = [this, number] {
      const auto all = table_.open();
      return std::any_of(all.begin(), all.end(), [number](const auto& one) { return one->name.number == number; });
    };
    ASSERT_TRUE(Eventually(has));
    poster.close(number);
    ASSERT_TRUE(Eventually([&has] { return !has(); }));
  }

  BusSession session_;
  HLNotificationTable table_;
  NoAnswers answers_;
  HLNotificationMonitor monitor_{table_, answers_};
};

// The directory of the monitor's thread, "" while it does not run.
std::string monitorTask() {
  for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
    std::ifstream file(task.path() / "comm");
    std::string name;
    if (std::getline(file, name) && name == "notifications") return task.path();
  }
  return "";
}

// The number of times that the thread has waited.
long waitsOf(const std::string& task) {
  std::ifstream file(task + "/status");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("voluntary_ctxt_switches:")) return std::stol(line.substr(line.find('\t')));
  }
  return -1;
}

// Of the thread, in milliseconds.
double processorTime(const std::string& task) {
  std::ifstream file(task + "/schedstat");
  double nanoseconds = 0;
  file >> nanoseconds;
  return nanoseconds / 1e6;
}

// In mebibytes.
double residentMemory() {
  std::ifstream file("/proc/self/statm");
  double total = 0;
  double resident = 0;
  file >> total >> resident;
  return resident * 4096 / (1 << 20);
}

Poster::Hints image(std::size_t size) {
  return [size](sd_bus_message* message) {
    const std::vector<unsigned char> pixels(size, 0x7F);
    sd_bus_message_open_container(message, 'e', "sv");
    sd_bus_message_append(message, "s", "image-data");
    sd_bus_message_open_container(message, 'v', "(iiibiiay)");
    sd_bus_message_open_container(message, 'r', "iiibiiay");
    sd_bus_message_append(message, "iiibii", 1, 1, 4, 1, 8, 4);
    sd_bus_message_append_array(message, 'y', pixels.data(), pixels.size());
    sd_bus_message_close_container(message);
    sd_bus_message_close_container(message);
    sd_bus_message_close_container(message);
    sd_bus_message_append(message, "{sv}", "urgency", "y", 2);
  };
}

TEST_F(NotificationMonitor, KnowsWhatIsPostedAndClosed) {
  FakeServer server;
  watch();
  Poster poster;
  const std::uint32_t first = poster.post("first", "<b>one</b>", {.application = "Mail", .timeout = 5000});
  (void)poster.post("second");
  settle(poster);
  EXPECT_THAT(open(), ElementsAre("1 first", "2 second"));
  const HLPostedNotification posted = table_.open().front()->posted;
  EXPECT_EQ(posted.application, "Mail");
  EXPECT_EQ(posted.body, "<b>one</b>");
  EXPECT_EQ(posted.expireTimeout, 5000);
  EXPECT_EQ(posted.urgency, 1);
  EXPECT_FALSE(posted.isCut);
  server.emitClosed(first);
  EXPECT_TRUE(Eventually([this] { return open() == std::vector<std::string>{"2 second"}; }));
  poster.close(2);
  settle(poster);
  EXPECT_THAT(open(), IsEmpty());
}

TEST_F(NotificationMonitor, FollowsReplacements) {
  const FakeServer server;
  watch();
  Poster poster;
  const std::uint32_t first = poster.post("first");
  (void)poster.post("second");
  (void)poster.post("first, again", "", {.replaces = first});
  settle(poster);
  EXPECT_THAT(open(), ElementsAre("2 second", "1 first, again"));
}

TEST_F(NotificationMonitor, TakesUniqueDestinations) {
  const FakeServer server;
  watch();
  Poster poster;
  ASSERT_TRUE(Eventually([this] { return !table_.server().empty(); }));
  (void)poster.post("by unique name", "", {.destination = table_.server()});
  settle(poster);
  EXPECT_THAT(open(), ElementsAre("1 by unique name"));
}

TEST_F(NotificationMonitor, DropsRefusedAndNumberlessCalls) {
  FakeServer server;
  watch();
  Poster poster;
  server.refuses = true;
  EXPECT_EQ(poster.post("refused"), 0U);
  server.refuses = false;
  poster.postOnly("without a reply", false);
  settle(poster);
  EXPECT_THAT(open(), IsEmpty());
  EXPECT_TRUE(Eventually([this] { return table_.waitingCount() == 0; }));
}

TEST_F(NotificationMonitor, KeepsNotificationsWhoseCloseIsRefused) {
  FakeServer server;
  watch();
  Poster poster;
  (void)poster.post("stays");
  server.refusesToClose = true;
  poster.close(1);
  server.refusesToClose = false;
  settle(poster);
  EXPECT_THAT(open(), ElementsAre("1 stays"));
}

TEST_F(NotificationMonitor, BeginsAgainWithAnotherServer) {
  watch();
  auto server = std::make_unique<FakeServer>();
  Poster poster;
  (void)poster.post("first");
  settle(poster);
  EXPECT_THAT(open(), SizeIs(1));
  server = nullptr;
  EXPECT_TRUE(Eventually([this] { return open().empty() && table_.server().empty(); }));
  server = std::make_unique<FakeServer>();
  (void)poster.post("anew");
  settle(poster);
  EXPECT_THAT(open(), ElementsAre("1 anew"));
}

TEST_F(NotificationMonitor, TakesNumbersFromTheServerOnly) {
  FakeServer server;
  const FakeServer impostor({"Fake", "Tests", "1"}, {}, "org.example.Impostor");
  watch();
  Poster poster;
  Poster stranger;
  (void)poster.post("real");
  // A call to another service of the same interface, and its reply.
  EXPECT_NE(poster.post("elsewhere", "", {.destination = "org.example.Impostor"}), 0U);
  // A closing signal that another process sends.
  sd_bus_emit_signal(stranger.bus(), kObject, "org.freedesktop.Notifications", "NotificationClosed", "uu", 1U, 1U);
  // A change of owner that another process sends.
  sd_bus_emit_signal(stranger.bus(), "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameOwnerChanged", "sss",
                     "org.freedesktop.Notifications", "", ":1.99");
  sd_bus_flush(stranger.bus());
  settle(poster);
  EXPECT_THAT(open(), ElementsAre("1 real"));
}

// The bus keeps replies of strangers from a monitor; this is about one that does not.
TEST_F(NotificationMonitor, TakesRepliesFromTheServerOnly) {
  const Poster poster;  // for its connection, without which there are no messages
  table_.setServer(":1.9");
  sd_bus_message* call = nullptr;
  sd_bus_message_new_method_call(poster.bus(), &call, "org.freedesktop.Notifications", kObject,
                                 "org.freedesktop.Notifications", "Notify");
  const HLBusMessage owner(call);
  sd_bus_message_append(call, "susssasa{sv}i", "poster", 0U, "", "posted", "", 0, 0, -1);
  sd_bus_message_set_sender(call, ":1.7");
  ASSERT_GE(sd_bus_message_seal(call, 42, 0), 0);
  HLFeedTable(table_, call, {});
  EXPECT_EQ(table_.waitingCount(), 1U);
  const auto reply = [&](const char* sender, std::uint32_t number) {
    sd_bus_message* message = nullptr;
    ASSERT_GE(sd_bus_message_new_method_return(call, &message), 0);
    const HLBusMessage replied(message);
    sd_bus_message_append(message, "u", number);
    sd_bus_message_set_sender(message, sender);
    ASSERT_GE(sd_bus_message_seal(message, 43, 0), 0);
    HLFeedTable(table_, message, {});
  };
  reply(":1.66", 666);
  EXPECT_THAT(open(), IsEmpty());
  reply(":1.9", 5);
  EXPECT_THAT(open(), ElementsAre("5 posted"));
}

TEST_F(NotificationMonitor, IgnoresHostileMessages) {
  const FakeServer server;
  watch();
  Poster poster;
  const char* service = "org.freedesktop.Notifications";
  const auto call = [&](const char* member, const char* types, auto... arguments) {
    sd_bus_call_method(poster.bus(), service, kObject, service, member, nullptr, nullptr, types, arguments...);
  };
  call("Notify", "");
  call("Notify", "s", "x");
  call("Notify", "susssasa{sv}", "", 0U, "", "", "", 0, 0);
  call("Notify", "susssaua{sv}i", "", 0U, "", "", "", 0, 0, 1);
  call("CloseNotification", "s", "1");
  call("CloseNotification", "");
  sd_bus_emit_signal(poster.bus(), kObject, service, "NotificationClosed", "s", "1");
  sd_bus_emit_signal(poster.bus(), kObject, service, "NotificationClosed", "");
  (void)poster.post("nested hints", "", {.hints = [](sd_bus_message* message) {
                      sd_bus_message_append(message, "{sv}", "a", "v", "v", "v", "v", "v", "v", "s", "deep");
                      sd_bus_message_append(message, "{sv}", "b", "aay", 1, 2, 1, 2);
                      sd_bus_message_append(message, "{sv}", "urgency", "s", "high");
                    }});
  (void)poster.post(std::string(3'000'000, 'x'), std::string(3'000'000, '<'));
  settle(poster);
  const auto all = table_.open();
  ASSERT_THAT(all, SizeIs(2));
  EXPECT_EQ(all[0]->posted.summary, "nested hints");
  EXPECT_EQ(all[0]->posted.expireTimeout, std::nullopt);
  EXPECT_EQ(all[1]->posted.summary.size(), HLNotificationTextLimit);
  EXPECT_TRUE(all[1]->posted.isCut);
}

TEST_F(NotificationMonitor, KnowsNotificationsWithoutNumbers) {
  const FakeServer server;
  const FakeServer named({"Fake", "Tests", "1"}, {}, kNamed);
  watch();
  Poster poster;
  const auto call = [&](const char* member, const char* types, auto... arguments) {
    sd_bus_call_method(poster.bus(), kNamed, "/org/gtk/Notifications", kNamed, member, nullptr, nullptr, types,
                       arguments...);
  };
  call("AddNotification", "ssa{sv}", "org.example.Clock", "alarm", 3, "title", "s", "Wake up", "icon", "(sv)", "bytes",
       "ay", 3, 1, 2, 3, "body", "s", "It is <b>late</b>");
  call("AddNotification", "ssa{sv}", "org.example.Clock", "timer", 1, "title", "s", "Tea");
  call("AddNotification", "ss", "org.example.Clock", "none");
  call("AddNotification", "ssa{sv}", "org.example.Clock", "odd", 2, "body", "aay", 1, 1, 7, "title", "s", "Odd");
  settle(poster);
  EXPECT_THAT(open(),
              ElementsAre("org.example.Clock/alarm Wake up", "org.example.Clock/timer Tea", "org.example.Clock/odd "));
  EXPECT_EQ(table_.open()[0]->posted.body, "It is <b>late</b>");
  EXPECT_FALSE(table_.open()[0]->posted.isCut);
  EXPECT_TRUE(table_.open()[2]->posted.isCut);
  call("RemoveNotification", "ss", "org.example.Clock", "alarm");
  settle(poster);
  EXPECT_THAT(open(), ElementsAre("org.example.Clock/timer Tea", "org.example.Clock/odd "));
}

TEST_F(NotificationMonitor, TakesUniqueDestinationsWithoutNumbers) {
  const FakeServer server;
  const FakeServer named({"Fake", "Tests", "1"}, {}, kNamed);
  watch();
  ASSERT_NE(table_.namedServer(), "");
  Poster poster;
  sd_bus_call_method(poster.bus(), table_.namedServer().c_str(), "/org/gtk/Notifications", kNamed, "AddNotification",
                     nullptr, nullptr, "ssa{sv}", "org.example.Clock", "timer", 1, "title", "s", "Tea");
  settle(poster);
  EXPECT_THAT(open(), ElementsAre("org.example.Clock/timer Tea"));
}

TEST_F(NotificationMonitor, ReadsUrgencyBehindImages) {
  const FakeServer server;
  watch();
  Poster poster;
  (void)poster.post("pictured", "", {.timeout = 7, .hints = image(1000)});
  settle(poster);
  EXPECT_EQ(table_.open().front()->posted.urgency, 2);
  EXPECT_EQ(table_.open().front()->posted.expireTimeout, 7);
}

TEST_F(NotificationMonitor, KeepsUpWithFloods) {
  const FakeServer server;
  watch();
  Poster poster;
  settle(poster);
  const std::string task = monitorTask();
  const double before = processorTime(task);
  constexpr int kFlood = 1000;
  for (int i = 0; i < kFlood; ++i) poster.postOnly("flood", true);
  EXPECT_TRUE(Eventually([this] { return table_.open().size() == kFlood; }));
  EXPECT_EQ(table_.waitingCount(), 0U);
  const double spent = processorTime(task) - before;
  RecordProperty("microseconds per notification", std::to_string(spent * 1000 / kFlood));
  EXPECT_LT(spent / kFlood, 1.0);
}

TEST_F(NotificationMonitor, GivesBackTheMemoryOfImages) {
  const FakeServer server;
  watch();
  Poster poster;
  constexpr std::size_t kImage = std::size_t{16} << (kIsSanitized ? 16 : 20);
  (void)poster.post("picture", "", {.hints = image(kImage)});
  settle(poster);
  const double before = residentMemory();
  for (int i = 0; i < 5; ++i) (void)poster.post("picture", "", {.hints = image(kImage)});
  settle(poster);
  EXPECT_THAT(open(), SizeIs(6));
  if (kIsSanitized) return;
  EXPECT_LT(residentMemory() - before, 16);
}

TEST_F(NotificationMonitor, SleepsWhileNothingIsPosted) {
  const FakeServer server;
  const FakeServer other({"Fake", "Tests", "1"}, {}, "org.example.Other");
  watch();
  Poster poster;
  settle(poster);
  const std::string task = monitorTask();
  ASSERT_NE(task, "");
  // Settling may have left something to read.
  long waits = -1;
  ASSERT_TRUE(Eventually([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    return waits == std::exchange(waits, waitsOf(task));
  }));
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(3);
  while (std::chrono::steady_clock::now() < end) {
    sd_bus_call_method(poster.bus(), "org.example.Other", kObject, "org.example.Other", "Ask", nullptr, nullptr, "");
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  EXPECT_EQ(waitsOf(task), waits);
}

TEST_F(NotificationMonitor, StopsWithTheBusAndRestarts) {
  auto server = std::make_unique<FakeServer>();
  watch();
  auto poster = std::make_unique<Poster>();
  (void)poster->post("first");
  settle(*poster);
  session_.killBus();
  EXPECT_TRUE(Eventually([this] { return !monitor_.isWatching(); }));
  EXPECT_TRUE(Eventually([this] { return open().empty(); }));
  monitor_.start();
  EXPECT_FALSE(monitor_.isWatching());
  server = nullptr;
  poster = nullptr;
  session_.startBus();
  EXPECT_TRUE(Eventually([this] {
    monitor_.start();
    return monitor_.isWatching();
  }));
  server = std::make_unique<FakeServer>();
  poster = std::make_unique<Poster>();
  (void)poster->post("second");
  settle(*poster);
  EXPECT_THAT(open(), ElementsAre("1 second"));
}

}  // namespace
