// Memory that runs out: the linker sends every calloc of this program here.
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/dismissal/attempt_loop.h"
#include "core/dismissal/batch.h"
#include "core/dismissal/result.h"
#include "tests/support/descriptions.h"
#include "tests/support/fake_element.h"
#include "tests/support/scenes.h"
#include "tests/support/simulated_desktop.h"

namespace {

// Which of the next calls fails, counted from 1; 0 for none. The entries asked for are noted meanwhile.
struct Allocations {
  bool watched = false;
  std::size_t failing = 0;
  std::vector<std::size_t> entries;
};

Allocations& allocations() {
  static Allocations all;
  return all;
}

class Watch {
 public:
  explicit Watch(std::size_t failing) { allocations() = {true, failing, {}}; }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;
  ~Watch() { allocations().watched = false; }
};

}  // namespace

extern "C" {
void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size) {
  if (allocations().watched) {
    allocations().entries.push_back(count);
    if (allocations().entries.size() == allocations().failing) return nullptr;
  }
  return __real_calloc(count, size);
}
}

namespace {

using Lines = std::vector<std::string>;

class BatchAllocation : public testing::TestWithParam<std::size_t> {};

TEST_P(BatchAllocation, MarksEveryTargetWhenItFails) {
  SimulatedDesktop desktop(NotificationCenterScene(R"({"id": "window", "children": [
      {"id": "a", "actions": ["AXPress"]}, {"id": "b", "actions": ["AXPress"]}]})"));
  const std::vector<HLDismissTarget> eligible = {{desktop.element("a"), "AXPress", {}, 70, "A", ""},
                                                 {desktop.element("a"), "AXPress", {}, 70, "skipped", ""},
                                                 {desktop.element("b"), "AXPress", {}, 70, "B", ""}};
  HLKeySet ineffective = {"earlier|key"};
  std::vector<HLDismissTarget> accepted;
  {
    const Watch watch(GetParam());
    accepted = HLRunDismissBatch(eligible, ineffective);
  }
  EXPECT_GE(allocations().entries.size(), GetParam()) << "nothing has failed";
  EXPECT_TRUE(accepted.empty());
  EXPECT_EQ(ineffective, (HLKeySet{"AXPress|A", "AXPress|B", "earlier|key"}));
  EXPECT_TRUE(desktop.simulator().actions().empty());
  EXPECT_EQ(desktop.diagnostics(), Lines{"batch preparation allocation failed prepared=2"});
}

TEST_P(BatchAllocation, EndsTheRunWhenItFails) {
  SimulatedDesktop desktop(NotificationCenterScene(R"({"title": "mail", "actions": ["Name:Close"]})"));
  const HLElementRef application = desktop.application(NotificationCenterPid);
  HLDismissResult result;
  {
    const Watch watch(GetParam());
    result = HLRunDirectDismiss(*application);
  }
  EXPECT_EQ(result, (HLDismissResult{HLDismissStatusFailed, 0, 1}));
  EXPECT_EQ(desktop.diagnostics(),
            (Lines{"scan root=window-0 visited=1 candidates=1",
                   "attempt iteration=0 targetCount=1 eligible=1 top=#0 score=120 action=Name:Close "
                   "reason=explicit-action frame=null snapshot=mail",
                   "batch preparation allocation failed prepared=1", "scan root=window-0 visited=1 candidates=1",
                   "batch had no successful actions remaining=1"}));
}

INSTANTIATE_TEST_SUITE_P(OfEitherArray, BatchAllocation, testing::Values(1, 2));

TEST(BatchAllocation, ReservesRoomForEveryAction) {
  SimulatedDesktop desktop("{}");
  std::vector<HLDismissTarget> eligible;
  HLKeySet ineffective;
  {
    const Watch watch(0);
    (void)HLRunDismissBatch(eligible, ineffective);
  }
  EXPECT_EQ(allocations().entries, (std::vector<std::size_t>{1, 1}));
  for (int i = 0; i < 5; ++i) eligible.push_back({std::make_shared<FakeElement>(), "AXPress", {}, 70, "", ""});
  {
    const Watch watch(0);
    EXPECT_EQ(HLRunDismissBatch(eligible, ineffective).size(), 5U);
  }
  EXPECT_EQ(allocations().entries, (std::vector<std::size_t>{5, 5}));
}

}  // namespace
