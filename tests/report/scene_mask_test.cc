// Every scene of the collection with its texts replaced.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "report/masked_capture.h"
#include "tests/support/processes.h"
#include "tests/support/simulated_desktop.h"

namespace {

namespace fs = std::filesystem;

TEST(MaskedCapture, IsJudgedAlikeForEveryScene) {
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(HUSHLET_SCENES)) {
    if (entry.path().extension() != ".json") continue;
    SCOPED_TRACE(entry.path());
    const SimulatedDesktop desktop(FileContent(entry.path().string()));
    const std::unique_ptr<HLCapture> capture = HLCaptureScreen();
    const std::unique_ptr<HLCapture> masked = HLMaskedCapture(*capture, 1);
    const HLJudgementOutline wanted = HLOutlineOf(*capture, HLJudgeCapture(*capture));
    const HLJudgementOutline found = HLOutlineOf(*masked, HLJudgeCapture(*masked));
    EXPECT_EQ(found.trusted, wanted.trusted);
    EXPECT_EQ(found.targets, wanted.targets);
    EXPECT_EQ(found.alike, wanted.alike);
    EXPECT_EQ(found.applications, wanted.applications);
    EXPECT_EQ(found.presses, wanted.presses);
  }
}

}  // namespace
