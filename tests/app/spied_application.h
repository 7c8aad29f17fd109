// The application on spies and a simulated desktop.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "app/app_delegate.h"
#include "platform/application/application_platform.h"
#include "platform/platform.h"
#include "platform/run_loop.h"
#include "tests/support/application_spies.h"
#include "tests/support/faults.h"
#include "tests/support/simulated_desktop.h"
#include "tests/support/spies.h"
#include "tests/support/temporary_directory.h"

// Records when observing launches begins.
class SpyLaunches : public SpyRunningApplications {
 public:
  SpyLaunches(HLRunningApplications& inner, Calls& calls) : SpyRunningApplications(inner), calls_(calls) {}
  void observeLaunches(std::function<void(const HLRunningApplication&)>) override {
    calls_.emplace_back("observe launches");
  }

 private:
  Calls& calls_;
};

using FoundHost = std::variant<const HLApplicationPlatform*, std::string>;

// The product flavor on spies. The accessibility call with the number `failingCall` fails; 0 for none.
struct Application {
  explicit Application(const std::string& scene = R"("trusted": true)", const std::string& name = "Hushlet",
                       std::int64_t failingCall = 0)
      : desktop("{" + scene + R"(, "bundle": {"info": {"HLProductFlavor": "product", "CFBundleDisplayName": ")" + name +
                R"("}}})"),
        faults(failingCall, HLAXErrorCannotComplete) {
    platform.accessibility = accessibility;
    platform.runningApplications = launches;
    platform.applicationPlatform = [this] { return FoundHost(&host.platform); };
    HLInstallPlatform(&platform);
  }
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  // Returns the status log's messages that begin with the text.
  [[nodiscard]] std::vector<std::string> messages(std::string_view beginning) const {
    std::vector<std::string> found = LogMessages(FileContent(desktop.home() + "/.local/share/dismiss/status.log"));
    std::erase_if(found, [beginning](const std::string& message) { return !message.starts_with(beginning); });
    return found;
  }

  SimulatedDesktop desktop;
  SpyHost host{*std::get<const HLApplicationPlatform*>(desktop.platform().applicationPlatform())};
  SpyLaunches launches{desktop.platform().runningApplications, host.calls};
  Faults faults;
  FaultyAccessibility accessibility{desktop.platform().accessibility, faults.plan()};
  HLPlatform platform = desktop.platform();
  const std::shared_ptr<HLAppDelegate> delegate = std::make_shared<HLAppDelegate>(host.platform);
};
