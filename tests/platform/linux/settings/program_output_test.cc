#include "platform/linux/settings/program_output.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace {

TEST(ProgramOutput, ReturnsAllThatIsPrinted) {
  EXPECT_EQ(HLProgramOutput({"printf", "%s-%s", "a b", "c"}), "a b-c");
  const auto large = HLProgramOutput({"seq", "1", "40000"});
  ASSERT_TRUE(large);
  EXPECT_TRUE(large->ends_with("\n40000\n"));
}

TEST(ProgramOutput, IsMissingForFailures) {
  EXPECT_EQ(HLProgramOutput({"/nowhere/program"}), std::nullopt);
  EXPECT_EQ(HLProgramOutput({"false"}), std::nullopt);
}

TEST(ProgramOutput, EndsASlowProgram) {
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(HLProgramOutput({"sleep", "60"}, std::chrono::milliseconds(50)), std::nullopt);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(30));
}

}  // namespace
