// What the application asks of its host that no dump shows: margins, the order of calls, the front, a missing host.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "app/app_delegate.h"
#include "platform/alerts.h"
#include "platform/application.h"
#include "platform/application_platform.h"
#include "platform/http_client.h"
#include "platform/platform.h"
#include "platform/run_loop.h"
#include "platform/windows.h"
#include "tests/support/simulated_desktop.h"

namespace {

using testing::ElementsAre;

using Calls = std::vector<std::string>;

class SpyWindow : public HLWindow {
 public:
  explicit SpyWindow(Calls& calls) : calls_(calls) {}

  void setLabel(std::string_view, const std::string&, HLTextColor) override { noteRefresh(); }
  void setButtonTitle(std::string_view, const std::string&) override { noteRefresh(); }
  void setCheckBox(std::string_view, bool) override { noteRefresh(); }
  void setEnabled(std::string_view, bool) override { noteRefresh(); }
  void fitHeight() override { calls_.emplace_back("fit height"); }
  void center() override { calls_.emplace_back("center"); }
  void makeKeyAndOrderFront() override { calls_.emplace_back("order front"); }
  void close() override { calls_.emplace_back("close"); }

 private:
  void noteRefresh() {
    if (calls_.empty() || calls_.back() != "refresh") calls_.emplace_back("refresh");
  }

  Calls& calls_;
};

class SpyWindows : public HLWindows {
 public:
  explicit SpyWindows(Calls& calls) : calls_(calls) {}

  [[nodiscard]] std::unique_ptr<HLWindow> makeWindow(HLWindowDescription description) override {
    made.push_back(std::move(description));
    return std::make_unique<SpyWindow>(calls_);
  }
  [[nodiscard]] std::vector<HLWindowView> views() override { return {}; }

  std::vector<HLWindowDescription> made;

 private:
  Calls& calls_;
};

// Launches, reopens and ends.
class SpyApplication : public HLApplication {
 public:
  explicit SpyApplication(Calls& calls) : calls_(calls) {}

  [[nodiscard]] int run(HLApplicationHandlers handlers) override {
    handlers.didFinishLaunching();
    calls_.emplace_back("launched");
    handlers.didReopen();
    return 7;
  }
  void terminate() override {}
  void activate() override { calls_.emplace_back("activate"); }
  void setDarkAppearance() override {}
  void beep() override {}
  [[nodiscard]] std::optional<HLEvent> currentEvent() override { return std::nullopt; }
  [[nodiscard]] std::unique_ptr<HLKeyMonitor> addKeyMonitor(std::function<void(const HLKeyEvent&)>) override {
    return nullptr;
  }

 private:
  Calls& calls_;
};

class SpyAlerts : public HLAlerts {
 public:
  explicit SpyAlerts(Calls& calls) : calls_(calls) {}

  [[nodiscard]] std::size_t runModal(const HLAlert&) override {
    calls_.emplace_back("alert");
    return 0;
  }

 private:
  Calls& calls_;
};

// Answers before get() returns, as a host may from a thread of its own.
class SpyHTTPClient : public HLHTTPClient {
 public:
  explicit SpyHTTPClient(Calls& calls) : calls_(calls) {}

  void get(const std::string&, double, std::function<void(HLHTTPAnswer)> answer) override {
    answer({});
    calls_.emplace_back("answered");
  }

 private:
  Calls& calls_;
};

class HostCalls : public testing::Test {
 protected:
  // The scene's desktop with an application and windows that note what is asked of them.
  int run(const std::string& scene, const std::optional<HLAccessGuide>& guide = std::nullopt) {
    desktop_ = std::make_unique<SimulatedDesktop>(scene);
    const auto real = std::get<const HLApplicationPlatform*>(desktop_->platform().applicationPlatform());
    const HLApplicationPlatform host{
        application_,    real->statusItem,   windows_,         real->alerts,    real->hotKeys,
        real->loginItem, real->userDefaults, real->httpClient, real->workspace, guide};
    HLPlatform platform = desktop_->platform();
    platform.applicationPlatform = [&host] { return std::variant<const HLApplicationPlatform*, std::string>(&host); };
    return runOn(platform);
  }
  int runOn(const HLPlatform& platform) {
    HLInstallPlatform(&platform);
    const int code = HLRunApplication(err_);
    desktop_ = nullptr;
    return code;
  }

  Calls calls_;
  SpyApplication application_{calls_};
  SpyWindows windows_{calls_};
  std::ostringstream err_;
  std::unique_ptr<SimulatedDesktop> desktop_;
};

constexpr const char* kProduct = R"(, "bundle": {"info": {"HLProductFlavor": "product"}}})";

TEST_F(HostCalls, OpenTheSettingsWindowWhenTheProgramIsStartedAgain) {
  EXPECT_EQ(run(std::string(R"({"trusted": true)") + kProduct), 7);
  EXPECT_THAT(calls_, ElementsAre("launched", "refresh", "center", "activate", "order front"));
  ASSERT_EQ(windows_.made.size(), 1U);
  EXPECT_EQ(windows_.made[0].title, "Hushlet Settings");
  EXPECT_EQ(windows_.made[0].sideMargin, 24);
  EXPECT_EQ(windows_.made[0].verticalMargin, 22);
}

TEST_F(HostCalls, ShowTheAnswerToAnUpdateCheckInTheMainQueueWithTheApplicationInFront) {
  const SimulatedDesktop desktop("{}");
  const auto real = std::get<const HLApplicationPlatform*>(HLCurrentPlatform().applicationPlatform());
  SpyAlerts alerts(calls_);
  SpyHTTPClient client(calls_);
  const HLApplicationPlatform host{application_,    real->statusItem,   windows_, alerts,          real->hotKeys,
                                   real->loginItem, real->userDefaults, client,   real->workspace, std::nullopt};
  std::make_shared<HLAppDelegate>(host)->checkForUpdates();
  HLCurrentPlatform().runLoop.runFor(0.1);
  EXPECT_THAT(calls_, ElementsAre("answered", "activate", "alert"));
}

TEST_F(HostCalls, FitTheSetupWindowBeforeItIsCentered) {
  EXPECT_EQ(run(std::string(R"({"trusted": false)") + kProduct), 7);
  EXPECT_THAT(calls_, ElementsAre("refresh", "fit height", "center", "activate", "order front", "launched", "refresh",
                                  "center", "activate", "order front"));
  ASSERT_EQ(windows_.made.size(), 2U);
  const HLWindowDescription& setup = windows_.made[0];
  EXPECT_EQ(setup.title, "Set Up Hushlet");
  EXPECT_EQ(setup.width, 460);
  EXPECT_EQ(setup.height, 360);
  EXPECT_EQ(setup.sideMargin, 24);
  EXPECT_EQ(setup.verticalMargin, 22);
}

TEST_F(HostCalls, SayTheHostsOwnWayToAccessWithTheApplicationsName) {
  EXPECT_EQ(
      run(R"({"trusted": false, "bundle": {"info": {"HLProductFlavor": "product", "CFBundleDisplayName": "A%@"}}})",
          HLAccessGuide{"%@ explains %@.", "Steps", "A note on %@"}),
      7);
  std::vector<std::string> texts;
  for (const HLStackItem& item : windows_.made.at(0).stack) {
    if (const auto* label = std::get_if<HLLabel>(&item.what)) texts.push_back(label->text);
  }
  EXPECT_THAT(texts, ElementsAre("Allow Accessibility", "A%@ explains A%@.", "Steps", "A note on A%@", ""));
}

TEST_F(HostCalls, FailInOneLineWhereNothingCanBeShown) {
  desktop_ = std::make_unique<SimulatedDesktop>("{}");
  HLPlatform platform = desktop_->platform();
  platform.applicationPlatform = [] {
    return std::variant<const HLApplicationPlatform*, std::string>(std::string("nowhere to show it"));
  };
  EXPECT_EQ(runOn(platform), 1);
  EXPECT_EQ(err_.str(), "nowhere to show it\n");
}

}  // namespace
