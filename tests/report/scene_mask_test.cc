// Every scene of the collection with its texts replaced.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include "report/masked_capture.h"
#include "tests/support/processes.h"
#include "tests/support/simulated_desktop.h"

namespace {

namespace fs = std::filesystem;

TEST(MaskedCapture, IsJudgedTheSameForEveryScene) {
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(HUSHLET_SCENES)) {
    if (entry.path().extension() != ".json") continue;
    SCOPED_TRACE(entry.path());
    const SimulatedDesktop desktop(FileContent(entry.path().string()));
    const std::unique_ptr<HLCapture> capture = HLCaptureScreen();
    const std::unique_ptr<HLCapture> masked = HLMaskedCapture(*capture, HLWordMask::Key{1, 2});
    std::vector<int> order(capture->elements.size());
    std::iota(order.begin(), order.end(), 0);
    const HLJudgementOutline wanted = HLOutlineOf(*capture, HLJudgeCapture(*capture), order);
    const HLJudgementOutline found = HLOutlineOf(*masked, HLJudgeCapture(*masked), order);
    EXPECT_EQ(found.trusted, wanted.trusted);
    EXPECT_EQ(found.targets, wanted.targets);
    EXPECT_EQ(found.alike, wanted.alike);
    EXPECT_EQ(found.applications, wanted.applications);
    EXPECT_EQ(found.presses, wanted.presses);
  }
}

}  // namespace
