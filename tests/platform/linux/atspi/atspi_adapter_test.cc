// The adapter against real servers that come, go, stop and die.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <memory>
#include <string>
#include <vector>

#include "core/dismissal/attempt_loop.h"
#include "core/scan/notification_center.h"
#include "platform/linux/linux_host.h"
#include "tests/platform/linux/desktop/servers.h"
#include "tests/platform/linux/support/desktop_session.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using Clock = std::chrono::steady_clock;

class Adapter : public testing::TestWithParam<Server> {
 protected:
  void SetUp() override { begin({}); }

  void begin(const SessionSetup& setup) {
    end();
    session_ = std::make_unique<DesktopSession>(setup);
    environment_ = std::make_unique<SessionEnvironment>(session_->environment());
    server_ = session_->startServer(GetParam().command);
    sender_ = std::make_unique<NotificationSender>(session_->environment());
    char name[] = "test";
    char* arguments[] = {name, nullptr};
    host_ = std::make_unique<HLLinuxHost>(1, arguments);
    HLInstallPlatform(&host_->platform());
  }

  void end() {
    HLInstallPlatform(nullptr);
    host_ = nullptr;
    sender_ = nullptr;
    server_ = nullptr;
    environment_ = nullptr;
    session_ = nullptr;
  }

  void TearDown() override { end(); }

  std::vector<std::uint32_t> send(int count) {
    std::vector<std::uint32_t> ids;
    for (int i = 1; i <= count; ++i) ids.push_back(sender_->send("Chat", "Title " + std::to_string(i), "Body"));
    return ids;
  }

  HLElementRef application() { return host_->platform().accessibility->createApplication(server_->pid()); }

  // Sends so many notifications and waits until they are on screen.
  HLElementRef applicationShowing(int count) {
    ids_ = send(count);
    HLElementRef made;
    const bool shown = Eventually([&] {
      made = application();
      return made != nullptr && banners(*made).size() == static_cast<std::size_t>(count);
    });
    EXPECT_TRUE(shown) << "banners: " << (made == nullptr ? 0 : banners(*made).size());
    return made;
  }

  static HLArray arrayOf(const HLElement& element, std::string_view name) {
    const HLAttribute attribute = element.copyAttributeValue(name);
    const HLArray* array = attribute.value.as<HLArray>();
    return array == nullptr ? HLArray() : *array;
  }

  static std::string textOf(const HLElement& element, std::string_view name) {
    const HLAttribute attribute = element.copyAttributeValue(name);
    const std::string* text = attribute.value.as<std::string>();
    return text == nullptr ? "" : *text;
  }

  // As they are now.
  static std::vector<HLElementRef> banners(const HLElement& application) {
    std::vector<HLElementRef> found;
    for (const HLValue& window : arrayOf(application, "AXWindows")) {
      for (const HLValue& child : arrayOf(**window.as<HLElementRef>(), "AXChildren")) {
        const HLElementRef& element = *child.as<HLElementRef>();
        if (textOf(*element, "AXSubrole") == "AXNotificationCenterAlert") found.push_back(element);
      }
    }
    return found;
  }

  static milliseconds timeOf(const std::function<void()>& work) {
    const Clock::time_point begin = Clock::now();
    work();
    return std::chrono::duration_cast<milliseconds>(Clock::now() - begin);
  }

  std::unique_ptr<DesktopSession> session_;
  std::unique_ptr<SessionEnvironment> environment_;
  std::unique_ptr<ChildProcess> server_;
  std::unique_ptr<NotificationSender> sender_;
  std::unique_ptr<HLLinuxHost> host_;
  std::vector<std::uint32_t> ids_;
};

INSTANTIATE_TEST_SUITE_P(Servers, Adapter, testing::Values(kMate, kLxqt),
                         [](const auto& server) { return server.param.name; });

TEST_P(Adapter, ShowsBannerAsOneClosableElement) {
  const HLElementRef root = applicationShowing(1);
  ASSERT_NE(root, nullptr);
  EXPECT_EQ(textOf(*root, "AXRole"), "AXApplication");
  const std::vector<HLElementRef> found = banners(*root);
  ASSERT_THAT(found, SizeIs(1));
  const HLElement& banner = *found.front();
  EXPECT_EQ(textOf(banner, "AXRole"), "AXGroup");
  EXPECT_EQ(textOf(banner, "AXDescription"), GetParam().name == "lxqt" ? "Chat, Title 1, Body" : ", Title 1, Body");
  EXPECT_THAT(banner.copyActionNames().names, ElementsAre("Name:Close"));
  const HLAttribute size = banner.copyAttributeValue("AXSize");
  ASSERT_NE(size.value.as<HLSize>(), nullptr);
  EXPECT_GT(size.value.as<HLSize>()->width, 100);
  EXPECT_EQ(banner.performAction("Name:Close"), HLAXErrorSuccess);
  EXPECT_TRUE(sender_->waitUntilClosed(ids_, seconds(5)));
}

TEST_P(Adapter, OnlyListedActionsArePerformed) {
  const HLElementRef root = applicationShowing(1);
  const std::vector<HLElementRef> found = banners(*root);
  ASSERT_THAT(found, SizeIs(1));
  EXPECT_EQ(found.front()->performAction("AXPress"), HLAXErrorActionUnsupported);
  EXPECT_EQ(root->performAction("AXPress"), HLAXErrorActionUnsupported);
  EXPECT_THAT(sender_->closed(), IsEmpty());
}

TEST_P(Adapter, ReportsInvalidWhenPressingVanishedElement) {
  const HLElementRef root = applicationShowing(2);
  const std::vector<HLElementRef> found = banners(*root);
  ASSERT_THAT(found, SizeIs(2));
  for (std::uint32_t id : ids_) sender_->close(id);
  ASSERT_TRUE(sender_->waitUntilClosed(ids_, seconds(5)));
  EXPECT_TRUE(Eventually([&] { return found.front()->performAction("Name:Close") == HLAXErrorInvalidElement; }));
}

TEST_P(Adapter, KeepsHandlesEqualAcrossReads) {
  const HLElementRef root = applicationShowing(2);
  const std::vector<HLElementRef> before = banners(*root);
  const std::vector<HLElementRef> after = banners(*root);
  ASSERT_THAT(before, SizeIs(2));
  ASSERT_THAT(after, SizeIs(2));
  EXPECT_NE(before.front(), after.front());
  EXPECT_TRUE(before.front()->isEqual(*after.front()));
  EXPECT_EQ(before.front()->hash(), after.front()->hash());
  EXPECT_FALSE(before.front()->isEqual(*after.back()));
  EXPECT_EQ(textOf(*before.front(), "AXDescription"), textOf(*after.front(), "AXDescription"));
}

TEST_P(Adapter, InvalidatesClosedBannerAfterNextRead) {
  const HLElementRef root = applicationShowing(2);
  std::vector<HLElementRef> before = banners(*root);
  ASSERT_THAT(before, SizeIs(2));
  sender_->close(ids_.front());
  ASSERT_TRUE(Eventually([&] { return banners(*root).size() == 1; }));
  const HLElementRef left = banners(*root).front();
  const HLElementRef gone = before[before[0]->isEqual(*left) ? 1 : 0];
  EXPECT_EQ(gone->copyAttributeValue("AXDescription").error, HLAXErrorInvalidElement);
  EXPECT_EQ(gone->copyActionNames().error, HLAXErrorInvalidElement);
  EXPECT_EQ(gone->performAction("Name:Close"), HLAXErrorInvalidElement);
}

TEST_P(Adapter, KeepsLastBannersOfStoppedServer) {
  const HLElementRef root = applicationShowing(3);
  std::vector<HLElementRef> found = banners(*root);
  ASSERT_THAT(found, SizeIs(3));
  server_->signal(SIGSTOP);
  EXPECT_LT(timeOf([&] { EXPECT_EQ(found.front()->performAction("Name:Close"), HLAXErrorCannotComplete); }),
            seconds(3));
  EXPECT_LT(timeOf([&] { found = banners(*root); }), HLBusTimeout) << "it is known to be silent";
  EXPECT_THAT(found, SizeIs(3));
  server_->signal(SIGCONT);
}

TEST_P(Adapter, FailsRunSoonOverStoppedServer) {
  const HLElementRef root = applicationShowing(10);
  server_->signal(SIGSTOP);
  HLDismissResult result;
  EXPECT_LT(timeOf([&] { result = HLRunDirectDismiss(*root); }), seconds(12));
  EXPECT_EQ(result, (HLDismissResult{HLDismissStatusFailed, 0, 10}));
  server_->signal(SIGCONT);
}

TEST_P(Adapter, ReadsServerAgainAfterItResumes) {
  const HLElementRef root = applicationShowing(2);
  server_->signal(SIGSTOP);
  EXPECT_THAT(banners(*root), SizeIs(2));
  server_->signal(SIGCONT);
  sender_->close(ids_.front());
  EXPECT_TRUE(Eventually([&] { return banners(*root).size() == 1; }));
  EXPECT_EQ(HLRunDirectDismiss(*root), (HLDismissResult{HLDismissStatusSuccess, 1, 0}));
}

TEST_P(Adapter, RestoresFullTimeoutAfterServerAnswers) {
  const HLElementRef root = applicationShowing(1);
  server_->signal(SIGSTOP);
  EXPECT_THAT(banners(*root), SizeIs(1));
  server_->signal(SIGCONT);
  sender_->close(ids_.front());
  ASSERT_TRUE(Eventually([&] { return banners(*root).empty(); }));
  server_->signal(SIGSTOP);
  EXPECT_GE(timeOf([&] { (void)banners(*root); }), HLBusTimeout - milliseconds(50));
  server_->signal(SIGCONT);
}

TEST_P(Adapter, AStoppedServerIsNoApplication) {
  (void)applicationShowing(1);
  server_->signal(SIGSTOP);
  HLElementRef root;
  EXPECT_LT(timeOf([&] { root = application(); }), seconds(3));
  EXPECT_EQ(root, nullptr);
  server_->signal(SIGCONT);
}

TEST_P(Adapter, ReportsLaunchWhenServerBecomesObservable) {
  std::vector<std::int32_t> launched;
  host_->platform().runningApplications->observeLaunches(
      [&launched](const HLRunningApplication& server) { launched.push_back(server.pid); });
  const auto observer = [this] {
    return host_->platform().accessibility->createObserver(server_->pid(),
                                                           [](const HLElementRef&, std::string_view) {});
  };
  server_->signal(SIGSTOP);
  EXPECT_EQ(observer(), nullptr);
  host_->platform().runLoop->runFor(1);
  EXPECT_THAT(launched, IsEmpty());
  server_->signal(SIGCONT);
  EXPECT_TRUE(Eventually([&] {
    host_->platform().runLoop->runFor(0.01);
    return !launched.empty();
  }));
  EXPECT_THAT(launched, ElementsAre(server_->pid()));
  EXPECT_NE(observer(), nullptr);
}

TEST_P(Adapter, InvalidatesElementsWhenServerDies) {
  const HLElementRef root = applicationShowing(2);
  const std::vector<HLElementRef> found = banners(*root);
  ASSERT_THAT(found, SizeIs(2));
  server_->signal(SIGKILL);
  ASSERT_TRUE(server_->wait(seconds(5)));
  EXPECT_EQ(found.front()->copyAttributeValue("AXRole").error, HLAXErrorInvalidElement);
  EXPECT_EQ(found.front()->performAction("Name:Close"), HLAXErrorInvalidElement);
  EXPECT_EQ(root->copyAttributeValue("AXWindows").error, HLAXErrorInvalidElement);
  EXPECT_THAT(HLNotificationWindows(*root), IsEmpty());
  EXPECT_EQ(application(), nullptr);
}

// GTK takes calls without the bus between, Qt does not.
TEST_P(Adapter, NeverFindsScreenEmptyWithoutBus) {
  const HLElementRef root = applicationShowing(3);
  kill(session_->accessibilityBusPid(), SIGKILL);
  HLDismissResult result;
  EXPECT_LT(timeOf([&] { result = HLRunDirectDismiss(*root); }), seconds(12));
  const HLDismissResult done{HLDismissStatusSuccess, 3, 0};
  const HLDismissResult failed{HLDismissStatusFailed, 0, 3};
  EXPECT_EQ(result, GetParam().name == "mate" ? done : failed);
}

TEST_P(Adapter, FourThreadsPressAtOnce) {
  const HLElementRef root = applicationShowing(16);
  const std::vector<HLElementRef> found = banners(*root);
  ASSERT_THAT(found, SizeIs(16));
  std::atomic<int> accepted = 0;
  const auto queue = host_->platform().runLoop->makeOperationQueue("press", HLQualityOfService::userInitiated, 4);
  for (const HLElementRef& banner : found) {
    queue->addOperation([&accepted, banner] {
      if (banner->performAction("Name:Close") == HLAXErrorSuccess) ++accepted;
    });
  }
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(accepted, 16);
  EXPECT_TRUE(sender_->waitUntilClosed(ids_, seconds(5)));
}

TEST_P(Adapter, ReadsAndPressesFromSeveralThreads) {
  const HLElementRef root = applicationShowing(8);
  const std::vector<HLElementRef> found = banners(*root);
  const auto queue = host_->platform().runLoop->makeOperationQueue("both", HLQualityOfService::userInitiated, 4);
  for (const HLElementRef& banner : found) {
    queue->addOperation([banner] { (void)banner->performAction("Name:Close"); });
    queue->addOperation([&root] { (void)banners(*root); });
    queue->addOperation([banner] { (void)textOf(*banner, "AXDescription"); });
  }
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(sender_->waitUntilClosed(ids_, seconds(5)));
}

TEST_P(Adapter, FindsNoApplicationOutsideAccessibilityBus) {
  EXPECT_EQ(host_->platform().accessibility->createApplication(session_->sessionBus().pid()), nullptr);
  EXPECT_EQ(host_->platform().accessibility->createApplication(-1), nullptr);
}

TEST_P(Adapter, ListsServerAsNotificationCenter) {
  const std::vector<HLRunningApplication> list = host_->platform().runningApplications->list();
  ASSERT_THAT(list, SizeIs(1));
  EXPECT_EQ(list.front().pid, server_->pid());
  EXPECT_EQ(list.front().bundleIdentifier, "com.apple.notificationcenterui");
  EXPECT_EQ(list.front().name, GetParam().command.substr(GetParam().command.rfind('/') + 1));
  EXPECT_FALSE(list.front().terminated);
  EXPECT_TRUE(host_->platform().runningApplications->find(server_->pid()));
  EXPECT_FALSE(host_->platform().runningApplications->find(getpid()));
}

TEST_P(Adapter, SendsNoSignalToUnrestartableServer) {
  EXPECT_EQ(host_->platform().runningApplications->sendSignal(server_->pid(), SIGTERM), HLSignalOutcome::refused);
  EXPECT_FALSE(server_->wait(milliseconds(200)));
}

TEST_P(Adapter, NoSignalGoesToAnotherProcess) {
  begin(WithActivatable({GetParam().command}));
  const std::unique_ptr<ChildProcess> other = session_->start({"sleep", "60"});
  EXPECT_EQ(host_->platform().runningApplications->sendSignal(other->pid(), SIGKILL), HLSignalOutcome::refused);
  EXPECT_FALSE(other->wait(milliseconds(200)));
}

TEST_P(Adapter, RestartsStoppedServerAfterKillingIt) {
  begin(WithActivatable({GetParam().command}));
  HLRunningApplications& applications = host_->platform().runningApplications;
  const std::int32_t before = server_->pid();
  server_->signal(SIGSTOP);
  EXPECT_EQ(applications.sendSignal(before, SIGTERM), HLSignalOutcome::sent);
  EXPECT_EQ(applications.sendSignal(before, SIGKILL), HLSignalOutcome::sent) << "whether it has ended by now or not";
  EXPECT_TRUE(server_->wait(seconds(5)));
  std::vector<HLRunningApplication> list;
  ASSERT_TRUE(Eventually([&] {
    list = applications.list();
    return !list.empty() && list.front().pid != before;
  }));
  EXPECT_EQ(applications.sendSignal(before, SIGKILL), HLSignalOutcome::refused) << "a process that is long gone";
  EXPECT_EQ(session_->serverPid(), list.front().pid);
}

TEST_P(Adapter, LosesTrustWhileAccessibilityIsOff) {
  HLAccessibility& accessibility = host_->platform().accessibility;
  EXPECT_TRUE(accessibility.isProcessTrusted(false));
  session_->setAccessibilityEnabled(false);
  EXPECT_FALSE(accessibility.isProcessTrusted(false));
  EXPECT_TRUE(accessibility.isProcessTrusted(true));
  EXPECT_TRUE(accessibility.isProcessTrusted(false));
}

TEST_P(Adapter, PrefersBusAddressFromEnvironment) {
  HLAccessibility& accessibility = host_->platform().accessibility;
  setenv("AT_SPI_BUS_ADDRESS", "unix:path=/nonexistent", 1);
  EXPECT_FALSE(accessibility.isProcessTrusted(false));
  EXPECT_EQ(application(), nullptr);
  unsetenv("AT_SPI_BUS_ADDRESS");
  EXPECT_TRUE(accessibility.isProcessTrusted(false));
}

}  // namespace
