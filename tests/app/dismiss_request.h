// A dismiss request whose steps a test runs one by one.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "app/app_delegate.h"
#include "core/dismissal/result.h"
#include "platform/platform.h"
#include "tests/support/application_spies.h"
#include "tests/support/simulated_desktop.h"
#include "tests/support/spies.h"
#include "tests/support/temporary_directory.h"

// Queues posted steps and work until a test runs them.
class HeldRunLoop : public SpyRunLoop {
 public:
  explicit HeldRunLoop(HLRunLoop& inner) : SpyRunLoop(inner) { fixedNow = 0; }

  std::deque<std::function<void()>> steps;     // of the main queue
  std::deque<std::function<void()>> works;     // of the global queue
  std::deque<std::function<void()>> refusals;  // one for each of the works
  std::function<void()> onWork;                // called when work is posted

  void postToMainQueue(std::function<void()> step) override { steps.push_back(std::move(step)); }
  void postToGlobalQueue(HLQualityOfService, std::function<void()> work, std::function<void()> refused) override {
    works.push_back(std::move(work));
    refusals.push_back(std::move(refused));
    if (onWork) onWork();
  }

  void run(std::deque<std::function<void()>>& queue) {
    const std::function<void()> first = std::move(queue.front());
    queue.pop_front();
    first();
  }
};

// A started request on a desktop without Notification Center, so that its work ends at once.
struct Request {
  explicit Request(const std::string& flavor = "product")
      : desktop(R"({"bundle": {"identifier": "test", "info": {"HLProductFlavor": ")" + flavor + R"("}}})") {
    platform.runLoop = runLoop;
    HLInstallPlatform(&platform);
    delegate->dismissNotifications();
  }
  Request(const Request&) = delete;
  Request& operator=(const Request&) = delete;

  void runWork() {
    runLoop.refusals.pop_front();
    runLoop.run(runLoop.works);
  }
  void runStep() { runLoop.run(runLoop.steps); }
  // All titles of the button, in order.
  [[nodiscard]] std::vector<std::string> titles() const {
    std::vector<std::string> titles;
    for (const std::string& call : host.calls) {
      if (call.starts_with("title ")) titles.push_back(call.substr(6));
    }
    return titles;
  }

  SimulatedDesktop desktop;
  SpyHost host{*std::get<const HLApplicationPlatform*>(desktop.platform().applicationPlatform())};
  HeldRunLoop runLoop{desktop.platform().runLoop};
  HLPlatform platform = desktop.platform();
  std::shared_ptr<HLAppDelegate> delegate = std::make_shared<HLAppDelegate>(host.platform);
};
