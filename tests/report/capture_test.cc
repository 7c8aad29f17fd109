#include "report/capture.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <memory>
#include <string>

#include "tests/support/processes.h"
#include "tests/support/scenes.h"
#include "tests/support/simulated_desktop.h"

namespace {

// A chain of elements, each in two lists of the one above it, whose handles are new at each reading.
std::string deepScene(int depth) {
  std::string attributes;
  for (int i = 1; i <= depth; ++i) {
    const std::string below = R"([{"ref": "n)" + std::to_string(i + 1) + R"("}])";
    attributes += (i == 1 ? "" : ", ") + std::string(R"("A)") + std::to_string(i) + R"(": {"element": {"id": "n)" +
                  std::to_string(i) + R"(", "freshHandles": true)" +
                  (i == depth ? "" : R"(, "children": )" + below + R"(, "visibleChildren": )" + below) + "}}";
  }
  return NotificationCenterScene(R"({"children": [{"ref": "n1"}], "attributes": {)" + attributes + "}}");
}

TEST(Capture, ReadsDeepTreesOnSmallStacks) {
  constexpr int kDepth = 4000;
  const std::string elements = InChildProcess([] {
    const SimulatedDesktop desktop(deepScene(kDepth));
    const rlimit limit{1 << 19, 1 << 19};
    ::setrlimit(RLIMIT_STACK, &limit);
    return std::to_string(HLCaptureScreen()->elements.size());
  });
  EXPECT_EQ(elements, std::to_string(kDepth + 2));
}

TEST(Capture, IsIncompleteBeyondTheLimit) {
  const SimulatedDesktop desktop(NotificationCenterScene(R"({"children": [{"repeat": 20001}]})"));
  const std::unique_ptr<HLCapture> capture = HLCaptureScreen();
  EXPECT_EQ(capture->elements.size(), HLCaptureLimit);
  EXPECT_FALSE(capture->isComplete);
}

}  // namespace
