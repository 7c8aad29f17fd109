#include "platform/threads/thread_start.h"

#include <gtest/gtest.h>

#include "tests/support/simulated_desktop.h"

namespace {

TEST(ThreadStart, IsTriedUntilItsTimeout) {
  SimulatedDesktop desktop("{}");
  int attempts = 0;
  std::int64_t refused = 0;
  HLStartWhenPossible(
      desktop.runLoop(),
      [&attempts] {
        ++attempts;
        return false;
      },
      [&] { refused = desktop.elapsedMicroseconds(); });
  desktop.runLoop().runFor(2 * HLThreadStartTimeout);
  EXPECT_EQ(attempts, 50) << "every tenth of a second";
  EXPECT_EQ(refused, 5'000'000);
}

TEST(ThreadStart, IsTriedUntilItSucceeds) {
  SimulatedDesktop desktop("{}");
  int attempts = 0;
  bool isRefused = false;
  HLStartWhenPossible(
      desktop.runLoop(), [&attempts] { return ++attempts == 3; }, [&isRefused] { isRefused = true; });
  desktop.runLoop().runFor(2 * HLThreadStartTimeout);
  EXPECT_EQ(attempts, 3);
  EXPECT_FALSE(isRefused);
}

}  // namespace
