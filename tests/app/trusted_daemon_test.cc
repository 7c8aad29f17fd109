// The application beside a trusted daemon, itself without trust.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "tests/app/application_run.h"
#include "tests/daemon/daemon_process.h"
#include "tests/support/personal_log.h"

namespace {

using nlohmann::json;

using BesideADaemon = TrustedDaemon;

TEST_F(BesideADaemon, ClearsNotificationsButStillWaitsForItsOwnTrustInTheSetupWindow) {
  const PersonalLogTurn log;
  start("{}");
  const ProgramRun program =
      run(R"({"trusted": false, "timeline": [)" + DumpAt(1) + ", " + At(2, R"("choose": "Accessibility Allowed")") +
              ", " + DumpAt(2) + ", " + At(3, R"("press": "Open Accessibility Settings", "window": "Set Up Hushlet")") +
              ", " + DumpAt(3) + "]}",
          {});
  EXPECT_EQ(program.exitCode, 0) << program.err;
  std::vector<json> dumps;
  std::istringstream lines(program.out);
  for (std::string line; std::getline(lines, line);) dumps.push_back(json::parse(line));
  ASSERT_EQ(dumps.size(), 3U);
  EXPECT_EQ(dumps[0]["statusItem"]["title"], "HL");
  const json window = WindowOf(dumps[1], "Set Up Hushlet");
  EXPECT_EQ(window["content"][4]["label"], "Waiting for Accessibility access…");
  EXPECT_EQ(window["content"][5]["button"], "Open Accessibility Settings");
  EXPECT_EQ(WindowOf(dumps[2], "Set Up Hushlet")["visible"], true);
  EXPECT_EQ(dumps[2]["openedAddresses"].size(), 1U);
}

}  // namespace
