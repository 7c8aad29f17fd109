#include "core/dismissal/launch_context.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <string>
#include <string_view>

#include "platform/process_info.h"
#include "tests/support/simulated_desktop.h"

namespace {

std::string launchContext(std::string_view scene) {
  SimulatedDesktop desktop(scene);
  std::string summary = HLLaunchContextSummary();
  const std::string own = "pid=" + std::to_string(desktop.platform().process->processIdentifier()) + " ";
  EXPECT_EQ(summary.substr(0, own.size()), own);
  return summary.substr(std::min(own.size(), summary.size()));
}

TEST(LaunchContext, NamesTheParentApplication) {
  EXPECT_EQ(launchContext(R"({"applications": [{"pid": 7, "bundleIdentifier": "x.other", "name": "Other"},
      {"pid": 77, "bundleIdentifier": "com.apple.Terminal", "name": "Terminal"}], "parent": 77})"),
            "ppid=77 parentBundle=com.apple.Terminal parentName=Terminal");
}

TEST(LaunchContext, SaysNoneForMissingFields) {
  EXPECT_EQ(launchContext(R"({"applications": [{"pid": 77, "name": "Terminal"}], "parent": 77})"),
            "ppid=77 parentBundle=none parentName=Terminal");
  EXPECT_EQ(launchContext(R"({"applications": [{"pid": 77, "bundleIdentifier": "x.terminal"}], "parent": 77})"),
            "ppid=77 parentBundle=x.terminal parentName=none");
}

TEST(LaunchContext, SaysNoneForOtherParents) {
  const std::string summary = launchContext(R"({"applications": [{"pid": 77, "bundleIdentifier": "x", "name": "y"}]})");
  EXPECT_TRUE(std::regex_match(summary, std::regex(R"(ppid=\d+ parentBundle=none parentName=none)"))) << summary;
}

}  // namespace
