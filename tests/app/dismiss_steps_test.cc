// A dismiss request step by step: what it posts, and what the status button shows after each step.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "app/app_delegate.h"
#include "core/result.h"
#include "tests/app/application_spies.h"
#include "tests/support/processes.h"
#include "tests/support/simulated_desktop.h"
#include "tests/support/spies.h"

namespace {

using testing::IsEmpty;

// Keeps what is posted until a test takes it.
class HeldRunLoop : public SpyRunLoop {
 public:
  explicit HeldRunLoop(HLRunLoop& inner) : SpyRunLoop(inner) { fixedNow = 0; }

  std::deque<std::function<void()>> steps;  // of the main queue
  std::deque<std::function<void()>> works;  // of the global queue
  std::function<void()> onWork;             // called when work is posted

  void postToMainQueue(std::function<void()> step) override { steps.push_back(std::move(step)); }
  void postToGlobalQueue(HLQualityOfService, std::function<void()> work) override {
    works.push_back(std::move(work));
    if (onWork) onWork();
  }

  void run(std::deque<std::function<void()>>& queue) {
    const std::function<void()> first = std::move(queue.front());
    queue.pop_front();
    first();
  }
};

// A request that has begun, on a desktop without Notification Center, so that the work ends as soon as it is run.
struct Request {
  explicit Request(const std::string& flavor = "product")
      : desktop(R"({"bundle": {"identifier": "test", "info": {"HLProductFlavor": ")" + flavor + R"("}}})") {
    HLInstallPlatform(&platform);
    delegate->dismissNotifications();
  }
  Request(const Request&) = delete;
  Request& operator=(const Request&) = delete;
  ~Request() { HLSetProgressHandler(nullptr); }

  void runWork() { runLoop.run(runLoop.works); }
  void runStep() { runLoop.run(runLoop.steps); }
  // All that the button has shown.
  [[nodiscard]] std::vector<std::string> titles() const {
    std::vector<std::string> titles;
    for (const std::string& call : host.calls) {
      if (call.starts_with("title ")) titles.push_back(call.substr(6));
    }
    return titles;
  }
  [[nodiscard]] std::vector<std::string> log() const {
    return LogMessages(FileContent(desktop.home() + "/.local/share/test/status.log"));
  }

  SimulatedDesktop desktop;
  SpyHost host{*std::get<const HLApplicationPlatform*>(desktop.platform().applicationPlatform())};
  HeldRunLoop runLoop{desktop.platform().runLoop};
  const HLPlatform platform{
      desktop.platform().accessibility, desktop.platform().runningApplications, runLoop, desktop.platform().process,
      desktop.platform().propertyLists, desktop.platform().userNotifications,   {}};
  std::shared_ptr<HLAppDelegate> delegate = std::make_shared<HLAppDelegate>(host.platform);
};

// The titles of a request during which these counts are reported, each behind a bar.
std::string titlesWith(const std::string& flavor, const std::vector<std::int64_t>& counts) {
  return InChildProcess([&] {
    Request request(flavor);
    for (const std::int64_t count : counts) {
      HLReportProgress(count);
      request.runStep();
    }
    request.runWork();
    request.runStep();
    std::string titles;
    for (const std::string& title : request.titles()) titles += "|" + title;
    return titles;
  });
}

TEST(RequestSteps, ShowTheCountsFiveThreeAndNoneBetweenBusyAndIdle) {
  EXPECT_EQ(titlesWith("personal", {5, 3, 0}), "|HL|HL…|HL 5|HL 3|HL…|HL");
  EXPECT_EQ(titlesWith("product", {5, 3, 0}), "|||5|3||");
}

TEST(RequestSteps, ShowANegativeCountAsNone) {
  EXPECT_EQ(titlesWith("personal", {5, -2, 4}), "|HL|HL…|HL 5|HL…|HL 4|HL");
}

TEST(RequestSteps, ChangeTheButtonOnTheMainQueueAlone) {
  Request request;
  const auto shown = request.titles();
  HLReportProgress(5);
  request.runWork();
  EXPECT_EQ(request.titles(), shown);
  EXPECT_EQ(request.runLoop.steps.size(), 2U) << "the count and the outcome";
}

TEST(RequestSteps, LeaveTheButtonAloneAfterTheOutcome) {
  Request request;
  HLReportProgress(5);
  request.runWork();
  std::swap(request.runLoop.steps[0], request.runLoop.steps[1]);
  request.runStep();
  const auto shown = request.titles();
  request.runStep();
  EXPECT_EQ(request.titles(), shown);
  EXPECT_THAT(request.runLoop.steps, IsEmpty());
}

TEST(RequestSteps, TakeCountsFromTheMomentTheWorkIsPosted) {
  Request request;
  request.runWork();
  request.runStep();
  request.runLoop.onWork = [] { HLReportProgress(5); };
  request.delegate->dismissNotifications();
  EXPECT_EQ(request.runLoop.steps.size(), 1U);
}

TEST(RequestSteps, AreNotPostedForCountsAfterTheWork) {
  Request request;
  request.runWork();
  HLReportProgress(5);
  EXPECT_EQ(request.runLoop.steps.size(), 1U) << "the outcome";
}

TEST(RequestSteps, AreThoseOfOneRequestAtATime) {
  Request request;
  const auto shown = request.titles();
  const auto logged = request.log();
  request.delegate->dismissNotifications();
  EXPECT_EQ(request.titles(), shown);
  EXPECT_EQ(request.runLoop.works.size(), 1U);
  EXPECT_THAT(request.runLoop.steps, IsEmpty());
  ASSERT_EQ(request.log().size(), logged.size() + 1);
  EXPECT_EQ(request.log().back(), "dismissNotifications skipped reason=inFlight");
}

TEST(RequestSteps, TellTheTimeFromTheClickToTheEndOfTheWorkInWholeMilliseconds) {
  for (const auto& [seconds, milliseconds] : {std::pair{0.0014995, "1"}, {0.0015, "2"}}) {
    Request request;
    request.runLoop.fixedNow = seconds;
    request.runWork();
    request.runLoop.fixedNow = 9;
    request.runStep();
    EXPECT_EQ(request.log().back(),
              std::string("dismissNotifications outcome status=notificationCenterUnavailable dismissed=0 remaining=0 "
                          "elapsedMs=") +
                  milliseconds);
  }
}

TEST(RequestSteps, KeepTheDelegateForTheOutcomeAndNotForACount) {
  Request request;
  const std::weak_ptr<HLAppDelegate> delegate = request.delegate;
  request.delegate = nullptr;
  HLReportProgress(5);
  request.runWork();
  EXPECT_FALSE(delegate.expired());
  request.runLoop.steps.pop_back();  // the outcome
  EXPECT_TRUE(delegate.expired());
  const auto shown = request.titles();
  request.runStep();
  EXPECT_EQ(request.titles(), shown);
}

}  // namespace
