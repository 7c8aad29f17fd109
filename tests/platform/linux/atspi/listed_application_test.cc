// A server without a tree, read and closed through the platform's own interface.
#include "platform/linux/atspi/listed_application.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/dismissal/attempt_loop.h"
#include "core/scan/notification_center.h"
#include "platform/linux/linux_host.h"
#include "tests/platform/linux/atspi/known_notifications.h"
#include "tests/platform/linux/atspi/own_process.h"
#include "tests/platform/linux/session/fake_process.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class ListedServer : public testing::Test {
 protected:
  ListedServer() : host_(makeHost()), platform_(host_->platform()) {
    known_.setTraits({.screen = HLScreenSource::list});
    platform_.accessibility = accessibility_;
    HLInstallPlatform(&platform_);
  }
  ~ListedServer() override { HLInstallPlatform(nullptr); }

  static std::unique_ptr<HLLinuxHost> makeHost() {
    char name[] = "test";
    char* arguments[] = {name, nullptr};
    return std::make_unique<HLLinuxHost>(1, arguments);
  }

  HLElementRef application() { return accessibility_.createApplication(getpid()); }

  static std::vector<HLElementRef> banners(const HLElement& application) {
    std::vector<HLElementRef> found;
    for (const HLElementRef& window : HLNotificationWindows(application)) {
      for (const HLElementRef& child : window->copyFacts().children) found.push_back(child);
    }
    return found;
  }

  static std::vector<std::string> descriptions(const HLElement& application) {
    std::vector<std::string> texts;
    for (const HLElementRef& banner : banners(application)) texts.push_back(banner->copyFacts().description);
    return texts;
  }

  KnownNotifications known_;
  OwnProcess servers_;
  FakeProcess process_{"/nonexistent"};
  HLLinuxRunLoop runLoop_;
  HLLinuxAccessibility accessibility_{servers_, known_, process_, runLoop_,
                                      [](std::int32_t, const std::function<bool()>&) {}};
  std::unique_ptr<HLLinuxHost> host_;
  HLPlatform platform_;
};

TEST_F(ListedServer, ShowsABannerPerNotification) {
  known_.post(1, "Mail", "Lunch", "at noon");
  known_.post(2, "", "Title", "Body");
  known_.post(3, "Chat", "Ada", "");
  known_.post(4, "Calendar", "", "");  // as a one-shot command is told
  const HLElementRef root = application();
  ASSERT_NE(root, nullptr);
  EXPECT_THAT(descriptions(*root), ElementsAre("Mail, Lunch, at noon", ", Title, Body", "Chat, Ada", "Calendar, "));
  for (const HLElementRef& banner : banners(*root)) {
    EXPECT_EQ(banner->copyFacts().subrole, "AXNotificationCenterAlert");
    EXPECT_THAT(banner->copyActionNames().names, ElementsAre("Name:Close"));
  }
}

TEST_F(ListedServer, ShowsNoWindowWhenEmpty) {
  const HLElementRef root = application();
  ASSERT_NE(root, nullptr);
  EXPECT_THAT(HLNotificationWindows(*root), IsEmpty());
  EXPECT_EQ(HLRunDirectDismiss(*root), (HLDismissResult{HLDismissStatusNothing, 0, 0}));
}

TEST_F(ListedServer, IsNoApplicationWhileUnreadable) {
  known_.setReadable(false);
  EXPECT_EQ(application(), nullptr);
}

TEST_F(ListedServer, ClosesByNumber) {
  known_.post(7, "Mail", "Lunch", "at noon");
  known_.post(9, "Mail", "Dinner", "at eight");
  const std::vector<HLElementRef> found = banners(*application());
  ASSERT_THAT(found, SizeIs(2));
  EXPECT_EQ(found[1]->performAction("AXPress"), HLAXErrorActionUnsupported);
  EXPECT_EQ(found[1]->performAction("Name:Close"), HLAXErrorSuccess);
  EXPECT_EQ(found[1]->copyAttributeValue("AXDescription").error, HLAXErrorInvalidElement);
  EXPECT_EQ(found[1]->performAction("Name:Close"), HLAXErrorInvalidElement);
  EXPECT_THAT(known_.closed(), ElementsAre(9));
}

TEST_F(ListedServer, IsClearedOfEqualNotifications) {
  constexpr int kCount = 5;
  for (std::uint32_t i = 1; i <= kCount; ++i) known_.post(i, "Chat", "Ada", std::string(400, 'x'));
  EXPECT_EQ(HLRunDirectDismiss(*application()), (HLDismissResult{HLDismissStatusSuccess, kCount, 0}));
}

TEST_F(ListedServer, FailsWhereNothingIsClosed) {
  known_.post(1, "Mail", "Lunch", "at noon");
  known_.setTakesClosing(false);
  EXPECT_EQ(HLRunDirectDismiss(*application()), (HLDismissResult{HLDismissStatusFailed, 0, 1}));
}

TEST_F(ListedServer, FailsWhenUnreadableLater) {
  known_.post(1, "Mail", "Lunch", "at noon");
  const HLElementRef root = application();
  EXPECT_THAT(banners(*root), SizeIs(1));
  known_.setReadable(false);
  known_.setTakesClosing(false);
  EXPECT_THAT(banners(*root), SizeIs(1)) << "it never looks like an empty screen";
  EXPECT_EQ(HLRunDirectDismiss(*root), (HLDismissResult{HLDismissStatusFailed, 0, 1}));
}

TEST_F(ListedServer, KeepsTheIdentityOfANumber) {
  known_.post(1, "Mail", "Lunch", "at noon");
  known_.post(2, "Mail", "Lunch", "at noon");
  const HLElementRef root = application();
  const std::vector<HLElementRef> before = banners(*root);
  const std::vector<HLElementRef> after = banners(*root);
  ASSERT_THAT(before, SizeIs(2));
  EXPECT_TRUE(before[0]->isEqual(*after[0]));
  EXPECT_FALSE(before[0]->isEqual(*after[1]));
}

TEST_F(ListedServer, TellsItsObserverOfChanges) {
  known_.post(1, "Mail", "Lunch", "at noon");
  std::vector<std::string> events;
  const std::unique_ptr<HLObserver> observer =
      accessibility_.createObserver(getpid(), [&events](const HLElementRef& element, std::string_view event) {
        events.push_back(std::string(event) + " " + element->copyFacts().description);
      });
  ASSERT_NE(observer, nullptr);
  const HLElementRef root = application();
  for (std::string_view event : {"AXCreated", "AXLayoutChanged", "AXChildrenChanged", "AXUIElementDestroyed"}) {
    EXPECT_EQ(observer->addNotification(root, event), HLAXErrorSuccess);
  }
  observer->attach();
  known_.post(2, "Chat", "Ada", "Hello");
  runLoop_.runFor(0.01);
  EXPECT_THAT(events,
              ElementsAre("AXCreated Chat, Ada, Hello", "AXLayoutChanged Chat, Ada, Hello", "AXChildrenChanged "));
  events.clear();
  EXPECT_TRUE(known_.close({2, "", ""}));
  runLoop_.runFor(0.01);
  EXPECT_THAT(events, ElementsAre("AXUIElementDestroyed ", "AXChildrenChanged "));
}

TEST_F(ListedServer, IsOnlyTheNotificationServer) { EXPECT_EQ(accessibility_.createApplication(getppid()), nullptr); }

}  // namespace
