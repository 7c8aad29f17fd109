#include "platform/linux/settings/program_output.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <string>

#include "platform/linux/files/files.h"
#include "tests/support/processes.h"

namespace {

using Clock = std::chrono::steady_clock;

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
  const Clock::time_point begin = Clock::now();
  EXPECT_EQ(HLProgramOutput({"sleep", "60"}, std::chrono::milliseconds(50)), std::nullopt);
  EXPECT_LT(Clock::now() - begin, std::chrono::seconds(30));
}

TEST(ProgramOutput, EndsSlowProgramWithClosedOutput) {
  const Clock::time_point begin = Clock::now();
  EXPECT_EQ(HLProgramOutput({"sh", "-c", "echo text; exec sleep 60 >&-"}, std::chrono::milliseconds(500)),
            std::nullopt);
  EXPECT_LT(Clock::now() - begin, std::chrono::seconds(30));
}

TEST(ReadUntilEnd, EndsAtAnErrorOfRead) {
  const HLDescriptor folder(open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC));  // poll() finds it readable, read() fails
  ASSERT_TRUE(folder.isOpen());
  const Clock::time_point begin = Clock::now();
  EXPECT_EQ(HLReadUntilEnd(folder.number(), begin + std::chrono::seconds(30)), std::nullopt);
  EXPECT_LT(Clock::now() - begin, std::chrono::seconds(15));
}

TEST(ReadUntilEnd, EndsAtAnErrorOfPoll) {
  EXPECT_EQ(InChildProcess([] {
              rlimit before{};
              getrlimit(RLIMIT_NOFILE, &before);
              const rlimit none{0, before.rlim_max};  // fewer than poll() is asked about
              setrlimit(RLIMIT_NOFILE, &none);
              const Clock::time_point begin = Clock::now();
              const bool missing = !HLReadUntilEnd(STDIN_FILENO, begin + std::chrono::seconds(30));
              const bool isAtOnce = Clock::now() - begin < std::chrono::seconds(15);
              setrlimit(RLIMIT_NOFILE, &before);  // which a sanitizer needs at the end
              return std::string(missing && isAtOnce ? "at once" : "late");
            }),
            "at once");
}

}  // namespace
