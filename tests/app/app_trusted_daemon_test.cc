// The application beside a trusted daemon.
#include <gmock/gmock.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "tests/app/application_run.h"
#include "tests/daemon/daemon_process.h"
#include "tests/support/personal_log.h"

namespace {

using nlohmann::json;

constexpr const char* kProduct =
    R"("bundle": {"identifier": "com.tessaly.hushlet", "info": {"HLProductFlavor": "product"}})";

class BesideADaemon : public TrustedDaemon {
 protected:
  // The dumps of the application on a scene of its own.
  [[nodiscard]] std::vector<json> dumpsOf(const std::string& scene) const {
    const ProgramRun program = run(scene, {});
    EXPECT_EQ(program.exitCode, 0) << program.err;
    std::vector<json> dumps;
    std::istringstream lines(program.out);
    for (std::string line; std::getline(lines, line);) dumps.push_back(json::parse(line));
    return dumps;
  }
  // A daemon of the product flavor.
  void startProduct() {
    launch(std::string("{") + kProduct + "}");
    ASSERT_TRUE(WaitFor([this] { return DaemonClient(productState() + "/daemon.sock").ask("ping\n") != ""; }));
  }
  [[nodiscard]] std::string productState() const { return home() + "/.local/share/com.tessaly.hushlet"; }
  [[nodiscard]] static std::int64_t questionsIn(const std::vector<std::string>& diagnostics) {
    return std::count(diagnostics.begin(), diagnostics.end(), "socket client command=self-check response=nothing|0|0");
  }

 private:
  const PersonalLogTurn log_;  // where the application is of the personal flavor
};

TEST_F(BesideADaemon, ClearsWhileSetupWaits) {
  start("{}");
  const std::vector<json> dumps =
      dumpsOf(R"({"trusted": false, "timeline": [)" + DumpAt(1) + ", " + At(2, OpenSetup) + ", " + DumpAt(2) + ", " +
              At(3, Press("Open Accessibility Settings", SetupTitle)) + ", " + DumpAt(3) + "]}");
  ASSERT_EQ(dumps.size(), 3U);
  EXPECT_EQ(dumps[0]["statusItem"]["title"], "HL");
  EXPECT_EQ(SetupOf(dumps[1]).status["color"], "secondary");
  EXPECT_EQ(SetupOf(dumps[1]).button["button"], "Open Accessibility Settings");
  EXPECT_EQ(WindowOf(dumps[2], SetupTitle)["visible"], true);
  EXPECT_EQ(dumps[2]["openedAddresses"].size(), 1U);
}

TEST_F(BesideADaemon, OpensSetupAtLaunch) {
  startProduct();
  const std::vector<json> dumps = dumpsOf(std::string("{") + kProduct + R"(, "trusted": false, "timeline": [)" +
                                          DumpAt(0) + ", " + At(0, Terminate) + "]}");
  ASSERT_EQ(dumps.size(), 1U);
  EXPECT_EQ(WindowOf(dumps[0], SetupTitle)["visible"], true);
  EXPECT_EQ(dumps[0]["statusItem"]["image"], "bell.slash");
  EXPECT_THAT(LogMessages(FileContent(productState() + "/status.log")),
              testing::Contains(testing::HasSubstr(" trusted=false daemonReachable=true flavor=product ")));
}

TEST_F(BesideADaemon, QueriesItAtEachRefresh) {
  start("{}");
  (void)dumpsOf(R"({"trusted": false, "timeline": [)" + At(1, R"("openMenu": true)") + "]}");
  EXPECT_EQ(questionsIn(diagnostics()), 3);
}

TEST_F(BesideADaemon, QueriesItOnceWhenTrusted) {
  start("{}");
  (void)dumpsOf(R"({"timeline": [)" + At(1, R"("openMenu": true)") + ", " + At(2, LeftClick) + "]}");
  EXPECT_EQ(questionsIn(diagnostics()), 1);
}

TEST_F(BesideADaemon, ClosesNoAutomationBanners) {
  start("{}");
  const std::vector<json> dumps = dumpsOf(R"({"trusted": false, "defaults": {"HLAutoCloseAutomationBanners": true},
    "applications": [{"pid": 400, "bundleIdentifier": "com.apple.notificationcenterui"}], "timeline": [)" +
                                          At(1, OpenSettings) + ", " + DumpAt(2) + "]}");
  ASSERT_EQ(dumps.size(), 1U);
  EXPECT_EQ(dumps[0]["statusItem"]["title"], "HL");
  EXPECT_EQ(SettingsOf(dumps[0]).access["color"], "orange");
  EXPECT_EQ(SettingsOf(dumps[0]).autoClose["on"], true);
  EXPECT_TRUE(dumps[0]["observers"].empty());
}

}  // namespace
