// What trial notifications need to know of the session's server.
#include "platform/linux/settings/linux_trials.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "tests/platform/linux/notifications/bus_session.h"
#include "tests/platform/linux/session/fake_process.h"

namespace {

TEST(LinuxTrials, KnowServersThatCannotBeCleared) {
  const BusSession session;
  FakeProcess process("");
  HLLinuxTrials trials(process, "Hushlet");
  EXPECT_EQ(trials.unclosableReason(), std::nullopt) << "without a server";
  {
    const FakeServer server({"notify-osd", "Canonical Ltd", "1.0"});
    EXPECT_NE(trials.unclosableReason().value_or("").find("no close button"), std::string::npos);
    EXPECT_EQ(trials.serverName(), "notify-osd 1.0");
  }
  const FakeServer other;
  EXPECT_EQ(trials.unclosableReason(), std::nullopt);
}

TEST(LinuxTrials, WithdrawWhatTheyPosted) {
  const BusSession session;
  FakeProcess process("");
  HLLinuxTrials trials(process, "Hushlet");
  FakeServer server;
  const std::unique_ptr<HLTrialNotification> first = trials.post("Hushlet", "a trial");
  const std::unique_ptr<HLTrialNotification> second = trials.post("Hushlet", "another");
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_THAT(server.askedToClose(), testing::IsEmpty());
  second->withdraw();
  EXPECT_THAT(server.askedToClose(), testing::ElementsAre(2U));
  server.refuses = true;
  EXPECT_EQ(trials.post("Hushlet", "refused"), nullptr);
}

}  // namespace
