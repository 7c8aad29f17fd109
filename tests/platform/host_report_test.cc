#include "platform/host_report.h"

#include <gtest/gtest.h>

namespace {

TEST(RawElementLine, ShowsDepthTextsAndDetails) {
  EXPECT_EQ(HLRawElementLine({0, "frame", "Tom", "", "", false}), "frame 'Tom'");
  EXPECT_EQ(HLRawElementLine({2, "push button", "", "Closes", " <click>", false}),
            "    push button '' / 'Closes' <click>");
}

}  // namespace
