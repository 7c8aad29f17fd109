#include "core/dismissal/result.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/descriptions.h"

namespace {

std::optional<HLDismissResult> parsed(std::string_view text) {
  HLDismissResult result;
  if (!HLParseResultString(text, result)) return std::nullopt;
  return result;
}

struct StatusWord {
  HLDismissStatus status;
  std::int64_t value;
  std::string_view word;
};

constexpr StatusWord kStatusWords[] = {
    {HLDismissStatusSuccess, 0, "success"},
    {HLDismissStatusNothing, 1, "nothing"},
    {HLDismissStatusAccessDenied, 2, "accessDenied"},
    {HLDismissStatusNotificationCenterUnavailable, 3, "notificationCenterUnavailable"},
    {HLDismissStatusFailed, 4, "failed"},
};

TEST(ResultText, MapsEveryStatusToItsWord) {
  for (const StatusWord& known : kStatusWords) {
    EXPECT_EQ(static_cast<std::int64_t>(known.status), known.value);
    EXPECT_EQ(HLStatusString(known.status), known.word);
    EXPECT_EQ(parsed(std::string(known.word) + "|5|6"), (HLDismissResult{known.status, 5, 6}));
  }
}

TEST(ResultText, WritesOtherStatusesAsFailed) {
  for (const std::int64_t value : {std::int64_t{5}, std::int64_t{7}, std::int64_t{-1}, std::int64_t{1} << 32,
                                   std::numeric_limits<std::int64_t>::min()}) {
    EXPECT_EQ(HLStatusString(static_cast<HLDismissStatus>(value)), "failed");
  }
}

TEST(ResultText, HasNoLineFeed) {
  EXPECT_EQ(HLResultWireString({HLDismissStatusSuccess, 3, 0}), "success|3|0");
  EXPECT_EQ(HLResultWireString({static_cast<HLDismissStatus>(7), 12, 4}), "failed|12|4");
  EXPECT_EQ(HLResultWireString({HLDismissStatusNothing, -2, std::numeric_limits<std::int64_t>::max()}),
            "nothing|-2|9223372036854775807");
}

TEST(ResultText, ParsesWhatWasWritten) {
  for (const StatusWord& known : kStatusWords) {
    const HLDismissResult result{known.status, std::numeric_limits<std::int64_t>::min(), 41};
    EXPECT_EQ(parsed(HLResultWireString(result)), result);
  }
}

TEST(ResultText, IgnoresExtraFields) {
  EXPECT_EQ(parsed("nothing|0|0|extra"), (HLDismissResult{HLDismissStatusNothing, 0, 0}));
  EXPECT_EQ(parsed("failed|1|2|"), (HLDismissResult{HLDismissStatusFailed, 1, 2}));
  EXPECT_EQ(parsed("failed|1|2|3|4"), (HLDismissResult{HLDismissStatusFailed, 1, 2}));
}

TEST(ResultText, RejectsMissingFieldsAndUnknownWords) {
  for (const std::string_view text :
       {"", "success", "success|1", "Success|1|0", "done|1|0", "SUCCESS|1|0", " success|1|0", "success |1|0",
        "succes|1|0", "successes|1|0", "|1|0", "||", "accessdenied|0|0", "5|0|0"}) {
    EXPECT_EQ(parsed(text), std::nullopt) << text;
  }
}

TEST(ResultText, KeepsTheRecordOnFailure) {
  HLDismissResult result{HLDismissStatusAccessDenied, 8, 9};
  EXPECT_FALSE(HLParseResultString("done|1|0", result));
  EXPECT_FALSE(HLParseResultString("success|1", result));
  EXPECT_EQ(result, (HLDismissResult{HLDismissStatusAccessDenied, 8, 9}));
}

TEST(ResultText, ReadsCountsLeniently) {
  EXPECT_EQ(parsed("success|x|3"), (HLDismissResult{HLDismissStatusSuccess, 0, 3}));
  EXPECT_EQ(parsed("success| 12|-4"), (HLDismissResult{HLDismissStatusSuccess, 12, -4}));
  EXPECT_EQ(parsed("success|12abc|+7"), (HLDismissResult{HLDismissStatusSuccess, 12, 7}));
  EXPECT_EQ(parsed("success||"), (HLDismissResult{HLDismissStatusSuccess, 0, 0}));
  EXPECT_EQ(parsed("success|   |1 2"), (HLDismissResult{HLDismissStatusSuccess, 0, 1}));
  EXPECT_EQ(parsed("success|--5|+-5"), (HLDismissResult{HLDismissStatusSuccess, 0, 0}));
  EXPECT_EQ(parsed("success|- 5|0x10"), (HLDismissResult{HLDismissStatusSuccess, 0, 0}));
  EXPECT_EQ(parsed("success|1.9|007\r"), (HLDismissResult{HLDismissStatusSuccess, 1, 7}));
}

TEST(ResultText, SkipsWhitespaceBeforeCounts) {
  EXPECT_EQ(parsed("success|\t\n12|\v\f\r 3"), (HLDismissResult{HLDismissStatusSuccess, 12, 3}));
  EXPECT_EQ(parsed("success|\b12|\x0E"
                   "3"),
            (HLDismissResult{HLDismissStatusSuccess, 0, 0}));
}

TEST(ResultText, KeepsCountsOf64Bits) {
  EXPECT_EQ(parsed("success|9223372036854775806|-9223372036854775807"),
            (HLDismissResult{HLDismissStatusSuccess, 9223372036854775806, -9223372036854775807}));
  EXPECT_EQ(parsed("success|9000000000000000001|-9000000000000000009"),
            (HLDismissResult{HLDismissStatusSuccess, 9000000000000000001, -9000000000000000009}));
  EXPECT_EQ(parsed("success|8999999999999999999|9223372036854775799"),
            (HLDismissResult{HLDismissStatusSuccess, 8999999999999999999, 9223372036854775799}));
}

TEST(ResultText, ClampsLargerCounts) {
  EXPECT_EQ(parsed("success|9223372036854775808|-9223372036854775809"),
            (HLDismissResult{HLDismissStatusSuccess, std::numeric_limits<std::int64_t>::max(),
                             std::numeric_limits<std::int64_t>::min()}));
  EXPECT_EQ(parsed("success|99999999999999999999999|-99999999999999999999999"),
            (HLDismissResult{HLDismissStatusSuccess, std::numeric_limits<std::int64_t>::max(),
                             std::numeric_limits<std::int64_t>::min()}));
}

class ProgressChannel : public testing::Test {
 protected:
  ~ProgressChannel() override { HLSetProgressHandler(nullptr); }
};

TEST_F(ProgressChannel, IgnoresReportsWithoutAHandler) {
  HLSetProgressHandler(nullptr);
  HLReportProgress(3);
}

TEST_F(ProgressChannel, ReportsNegativeCountsAsZero) {
  std::vector<std::int64_t> counts;
  HLSetProgressHandler([&counts](std::int64_t count) { counts.push_back(count); });
  for (const std::int64_t count :
       {std::int64_t{7}, std::int64_t{0}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::min(),
        std::numeric_limits<std::int64_t>::max()}) {
    HLReportProgress(count);
  }
  EXPECT_EQ(counts, (std::vector<std::int64_t>{7, 0, 0, 0, std::numeric_limits<std::int64_t>::max()}));
}

TEST_F(ProgressChannel, StopsAfterItsHandlerIsRemoved) {
  int first = 0;
  int second = 0;
  HLSetProgressHandler([&first](std::int64_t) { ++first; });
  HLReportProgress(1);
  HLSetProgressHandler([&second](std::int64_t) { ++second; });
  HLReportProgress(1);
  HLSetProgressHandler(nullptr);
  HLReportProgress(1);
  EXPECT_EQ(first, 1);
  EXPECT_EQ(second, 1);
}

TEST_F(ProgressChannel, KeepsAHandlerDuringItsCall) {
  const auto owned = std::make_shared<int>(0);
  const std::weak_ptr<int> alive = owned;
  bool aliveAfterwards = false;
  HLSetProgressHandler([held = owned, &alive, &aliveAfterwards](std::int64_t) {
    HLSetProgressHandler(nullptr);
    aliveAfterwards = alive.use_count() > 1;
  });
  HLReportProgress(1);
  EXPECT_TRUE(aliveAfterwards);
  EXPECT_EQ(alive.use_count(), 1) << "the slot still holds the handler";
}

TEST_F(ProgressChannel, KeepsItsHandlerAtExit) {
  struct Noisy {
    ~Noisy() { std::fputs("destroyed", stderr); }
  };
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto exits = [] {
    HLSetProgressHandler([noisy = std::make_shared<Noisy>()](std::int64_t) {});
    std::exit(0);
  };
  EXPECT_EXIT(exits(), testing::ExitedWithCode(0), testing::Not(testing::HasSubstr("destroyed")));
}

TEST_F(ProgressChannel, IsSafeDuringReplacement) {
  std::atomic<int> calls = 0;
  std::atomic<bool> done = false;
  std::vector<std::thread> reporters;
  for (int i = 0; i < 4; ++i) {
    reporters.emplace_back([&done] {
      while (!done) HLReportProgress(1);
    });
  }
  while (calls < 1000) {
    HLSetProgressHandler([held = std::make_shared<std::string>("alive"), &calls](std::int64_t) {
      if (*held == "alive") ++calls;
    });
    HLSetProgressHandler(nullptr);
    HLSetProgressHandler([&calls](std::int64_t) { ++calls; });
  }
  done = true;
  for (std::thread& reporter : reporters) reporter.join();
  HLSetProgressHandler(nullptr);
  EXPECT_GE(calls.load(), 1000);
}

}  // namespace
