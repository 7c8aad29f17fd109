// The application beside a trusted daemon, itself without trust.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "tests/app/application_run.h"
#include "tests/daemon/daemon_process.h"

namespace {

using nlohmann::json;

class BesideADaemon : public TrustedDaemon {
 protected:
  // What the application dumps on standard output.
  std::vector<json> dumpsOf(const std::string& scene) {
    const ProgramRun program = run(scene, {});
    EXPECT_EQ(program.exitCode, 0) << program.err;
    std::vector<json> dumps;
    std::istringstream lines(program.out);
    for (std::string line; std::getline(lines, line);) dumps.push_back(json::parse(line));
    return dumps;
  }
};

TEST_F(BesideADaemon, ClearsNotificationsButStillWaitsForItsOwnTrustInTheSetupWindow) {
  start("{}");
  const std::vector<json> dumps =
      dumpsOf(R"({"trusted": false, "timeline": [)" + DumpAt(1) + ", " + At(2, R"("choose": "Accessibility Allowed")") +
              ", " + DumpAt(2) + ", " + At(3, R"("press": "Open Accessibility Settings", "window": "Set Up Hushlet")") +
              ", " + DumpAt(3) + "]}");
  ASSERT_EQ(dumps.size(), 3U);
  EXPECT_EQ(dumps[0]["statusItem"]["title"], "HL");
  const json window = WindowOf(dumps[1], "Set Up Hushlet");
  EXPECT_EQ(window["content"][4]["label"], "Waiting for Accessibility access…");
  EXPECT_EQ(window["content"][5]["button"], "Open Accessibility Settings");
  EXPECT_EQ(WindowOf(dumps[2], "Set Up Hushlet")["visible"], true);
  EXPECT_EQ(dumps[2]["openedAddresses"].size(), 1U);
}

TEST_F(BesideADaemon, IsNotAllowedInItsSettingsAndClosesNoAutomationBanners) {
  start("{}");
  const std::vector<json> dumps = dumpsOf(R"({"trusted": false, "defaults": {"HLAutoCloseAutomationBanners": true},
    "applications": [{"pid": 400, "bundleIdentifier": "com.apple.notificationcenterui"}], "timeline": [)" +
                                          At(1, R"("choose": "Settings…")") + ", " + DumpAt(2) + "]}");
  ASSERT_EQ(dumps.size(), 1U);
  EXPECT_EQ(dumps[0]["statusItem"]["title"], "HL");
  const json window = WindowOf(dumps[0], "Hushlet Settings");
  EXPECT_EQ(window["content"][4]["row"][0]["label"], "Not allowed yet");
  EXPECT_EQ(window["content"][5]["on"], true);
  EXPECT_TRUE(dumps[0]["observers"].empty());
}

}  // namespace
