// A dismiss request step by step: what it posts, and what each step does.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

#include "tests/app/dismiss_request.h"

namespace {

using testing::IsEmpty;

TEST(RequestSteps, ChangeButtonOnMainQueueOnly) {
  Request request;
  const auto shown = request.titles();
  HLReportProgress(5);
  request.runWork();
  EXPECT_EQ(request.titles(), shown);
  EXPECT_EQ(request.runLoop.steps.size(), 2U) << "the count and the outcome";
}

TEST(RequestSteps, KeepTheButtonAfterTheOutcome) {
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

TEST(RequestSteps, AcceptCountsOnceWorkIsPosted) {
  Request request;
  request.runWork();
  request.runStep();
  request.runLoop.onWork = [] { HLReportProgress(5); };
  request.delegate->dismissNotifications();
  EXPECT_EQ(request.runLoop.steps.size(), 1U);
}

TEST(RequestSteps, IgnoreCountsAfterTheWork) {
  Request request;
  request.runWork();
  HLReportProgress(5);
  EXPECT_EQ(request.runLoop.steps.size(), 1U) << "the outcome";
}

TEST(RequestSteps, IgnoreCountsAfterTheApplication) {
  Request request;
  request.runLoop.works.clear();
  request.runLoop.refusals.clear();
  request.delegate = nullptr;
  HLReportProgress(5);
  EXPECT_THAT(request.runLoop.steps, IsEmpty());
}

TEST(RequestSteps, EndAsFailedWithoutAThread) {
  Request request;
  request.runLoop.fixedNow = 5.001;
  request.runLoop.run(request.runLoop.refusals);
  EXPECT_EQ(request.desktop.statusLog().back(),
            "dismissNotifications outcome status=failed dismissed=0 remaining=0 elapsedMs=5001");
  HLReportProgress(5);
  EXPECT_THAT(request.runLoop.steps, IsEmpty()) << "the progress handler is gone";
  request.delegate->dismissNotifications();
  EXPECT_EQ(request.runLoop.works.size(), 2U) << "the next request is taken";
}

TEST(RequestSteps, RunOneRequestAtATime) {
  Request request;
  const auto shown = request.titles();
  const auto logged = request.desktop.statusLog();
  request.delegate->dismissNotifications();
  EXPECT_EQ(request.titles(), shown);
  EXPECT_EQ(request.runLoop.works.size(), 1U);
  EXPECT_THAT(request.runLoop.steps, IsEmpty());
  ASSERT_EQ(request.desktop.statusLog().size(), logged.size() + 1);
  EXPECT_EQ(request.desktop.statusLog().back(), "dismissNotifications skipped reason=inFlight");
}

TEST(RequestSteps, LogTimeFromClickToResult) {
  for (const auto& [seconds, milliseconds] : {std::pair{0.0014995, "1"}, {0.0015, "2"}}) {
    Request request;
    request.runLoop.fixedNow = seconds;
    request.runWork();
    request.runLoop.fixedNow = 9;
    request.runStep();
    EXPECT_EQ(request.desktop.statusLog().back(),
              std::string("dismissNotifications outcome status=notificationCenterUnavailable dismissed=0 remaining=0 "
                          "elapsedMs=") +
                  milliseconds);
  }
}

TEST(RequestSteps, KeepDelegateForTheOutcomeOnly) {
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
