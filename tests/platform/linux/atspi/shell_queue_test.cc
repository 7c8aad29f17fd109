// A shell that shows one banner at a time, and the next of its queue some time after the last was closed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/scan/notification_center.h"
#include "platform/linux/atspi/atspi_accessibility.h"
#include "platform/linux/linux_host_report.h"
#include "platform/linux/session/bus.h"
#include "tests/platform/linux/atspi/known_notifications.h"
#include "tests/platform/linux/atspi/own_process.h"
#include "tests/platform/linux/notifications/bus_session.h"
#include "tests/platform/linux/session/fake_process.h"

namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

using Clock = std::chrono::steady_clock;

constexpr const char* kRegistry = "org.a11y.atspi.Registry";
constexpr std::string_view kElements = "/org/a11y/atspi/accessible/";
constexpr milliseconds kLong{20'000};  // no test waits so long

// The elements of the test's own process, which is a shell: a clock, and a banner deep within its window or none.
class Shell {
 public:
  std::atomic<int> banner = 1;  // the number of its notification; 0 for none
  // The next banner, and after how many reads without one it comes; 0 for never.
  std::atomic<int> next = 0;
  std::atomic<int> emptyReads = 0;

  [[nodiscard]] int reads() const { return reads_; }

 private:
  bool answer(sd_bus_message* call) {
    const std::string_view member = sd_bus_message_get_member(call);
    if (member == "RegisterEvent") return sd_bus_reply_method_return(call, "") >= 0;
    if (std::string_view(sd_bus_message_get_destination(call)) == kRegistry) {
      const char* name = nullptr;
      sd_bus_get_unique_name(sd_bus_message_get_bus(call), &name);
      return member == "GetChildren" &&
             sd_bus_reply_method_return(call, "a(so)", 1, name, (std::string(kElements) + "root").c_str()) >= 0;
    }
    return answerAs(std::string_view(sd_bus_message_get_path(call)), member, call);
  }

  bool answerAs(std::string_view path, std::string_view member, sd_bus_message* call) {
    if (!path.starts_with(kElements)) return false;
    const std::string element(path.substr(kElements.size()));
    if (member == "GetRole")
      return sd_bus_reply_method_return(call, "u", static_cast<std::uint32_t>(roleOf(element))) >= 0;
    if (member == "GetState")
      return sd_bus_reply_method_return(call, "au", 2, static_cast<std::uint32_t>(HLRawState::kShowing), 0U) >= 0;
    if (member == "GetExtents") return sd_bus_reply_method_return(call, "(iiii)", 0, 0, 300, 60) >= 0;
    if (member == "GetActions") return sd_bus_reply_method_return(call, "a(sss)", 1, "press", "", "") >= 0;
    if (member == "Get") return sd_bus_reply_method_return(call, "v", "s", element.c_str()) >= 0;
    if (member != "GetChildren") return false;
    const std::vector<std::string> children = childrenOf(element);
    sd_bus_message* reply = nullptr;
    sd_bus_message_new_method_return(call, &reply);
    const HLBusMessage owner(reply);
    sd_bus_message_open_container(reply, 'a', "(so)");
    for (const std::string& child : children)
      sd_bus_message_append(reply, "(so)", "", (std::string(kElements) + child).c_str());
    sd_bus_message_close_container(reply);
    return sd_bus_send(nullptr, reply, nullptr) >= 0;
  }

  static HLRawRole roleOf(std::string_view element) {
    constexpr HLRawRole kPanel{39};
    if (element == "root") return HLRawRole::application;
    if (element == "window") return HLRawRole::window;
    if (element == "clock") return HLRawRole::pushButton;
    if (element.starts_with("banner")) return HLRawRole::notification;
    return element.starts_with("panel") ? kPanel : HLRawRole::label;
  }

  std::vector<std::string> childrenOf(const std::string& element) {
    if (element == "root") return {"window"};
    if (element == "window") return {"clock", "panel"};
    if (element == "panel") return {"panel2"};
    if (element == "panel2") return banners();
    const std::string number = element.substr(element.size() - 1);
    if (element.starts_with("banner")) return {"title" + number, "body" + number};
    return {};
  }

  std::vector<std::string> banners() {
    ++reads_;
    if (banner == 0 && emptyReads > 0 && --emptyReads == 0) banner = next.load();
    if (banner == 0) return {};
    return {"banner" + std::to_string(banner)};
  }

  std::atomic<int> reads_ = 0;
  FakeServer server_{{}, [this](sd_bus_message* call) { return answer(call); }, kRegistry};
};

class ShellQueue : public testing::Test {
 protected:
  ShellQueue() {
    setenv("AT_SPI_BUS_ADDRESS", session_.environment().at("DBUS_SESSION_BUS_ADDRESS").c_str(), 1);
    for (std::uint32_t number : {1U, 2U}) {
      known_.post(number, "Mail", "title" + std::to_string(number), "body" + std::to_string(number));
    }
  }

  ~ShellQueue() override { unsetenv("AT_SPI_BUS_ADDRESS"); }

  static std::vector<HLElementRef> banners(const HLElement& application) {
    std::vector<HLElementRef> found;
    for (const HLElementRef& window : HLNotificationWindows(application)) {
      for (const HLElementRef& child : window->copyFacts().children) {
        if (!child->copyActionNames().names.empty()) found.push_back(child);
      }
    }
    return found;
  }

  static std::vector<std::string> descriptions(const HLElement& application) {
    std::vector<std::string> texts;
    for (const HLElementRef& banner : banners(application)) texts.push_back(banner->copyFacts().description);
    return texts;
  }

  // The first banner is closed, and its place is empty.
  void close(const HLElementRef& banner) {
    shell_.banner = 0;
    EXPECT_EQ(banner->performAction("Name:Close"), HLAXErrorSuccess);
    reads_ = shell_.reads();
  }

  HLElementRef applicationAfterClosing() {
    const HLElementRef application = accessibility_.createApplication(getpid());
    const std::vector<HLElementRef> shown = banners(*application);
    EXPECT_EQ(shown.size(), 1U);
    if (!shown.empty()) close(shown.front());
    return application;
  }

  [[nodiscard]] int readsSinceClosing() const { return shell_.reads() - reads_; }

  BusSession session_;
  Shell shell_;
  KnownNotifications known_;
  OwnProcess servers_;
  FakeProcess process_{"/nonexistent"};
  HLLinuxRunLoop runLoop_;
  HLLinuxAccessibility accessibility_{servers_, known_, process_, runLoop_,
                                      [](std::int32_t, const std::function<bool()>&) {}};
  int reads_ = 0;
};

TEST_F(ShellQueue, IsAwaitedAfterAClosing) {
  known_.setTraits({.queueTime = kLong});
  const HLElementRef application = applicationAfterClosing();
  shell_.next = 2;
  shell_.emptyReads = 3;
  EXPECT_THAT(descriptions(*application), ElementsAre(", title2, body2"));
}

TEST_F(ShellQueue, IsNotAwaitedWithoutQueueTime) {
  const HLElementRef application = applicationAfterClosing();
  shell_.next = 2;
  shell_.emptyReads = 2;
  EXPECT_THAT(descriptions(*application), IsEmpty());
  EXPECT_EQ(readsSinceClosing(), 1);
}

TEST_F(ShellQueue, IsGivenUpWhenNothingComes) {
  known_.setTraits({.queueTime = milliseconds(200)});
  const HLElementRef application = applicationAfterClosing();
  EXPECT_THAT(descriptions(*application), IsEmpty());
  EXPECT_GT(readsSinceClosing(), 1);
}

class ShellReport : public ShellQueue {};

TEST_F(ShellReport, HasActionsOfEveryElement) {
  std::vector<std::string> lines;
  for (const HLRawElement& element : HLLinuxHostReport().rawElements(getpid()))
    lines.push_back(HLRawElementLine(element));
  EXPECT_THAT(lines, testing::Contains("  button 'clock' / 'clock' [0 0 300x60] <press>"));
}

TEST_F(ShellQueue, NeverKeepsAnObserverWaiting) {
  known_.setTraits({.queueTime = kLong});
  std::vector<HLElementRef> created;
  const std::unique_ptr<HLObserver> observer = accessibility_.createObserver(
      getpid(), [&created](const HLElementRef& element, std::string_view) { created.push_back(element); });
  ASSERT_NE(observer, nullptr);
  EXPECT_EQ(observer->addNotification(accessibility_.createApplication(getpid()), "AXCreated"), HLAXErrorSuccess);
  observer->attach();
  shell_.banner = 2;
  known_.post(3, "Mail", "title3", "body3");  // a change, on which the observer reads
  runLoop_.runFor(0.01);
  ASSERT_EQ(created.size(), 1U);
  const auto began = Clock::now();
  close(created.front());
  runLoop_.runFor(0.01);
  EXPECT_GE(readsSinceClosing(), 1);
  EXPECT_LT(Clock::now() - began, kLong / 2);
}

}  // namespace
