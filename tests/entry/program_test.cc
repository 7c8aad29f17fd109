// The program as it is started, on scenes.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "base/terminal.h"
#include "daemon/self_check.h"
#include "entry/modes.h"
#include "platform/accessibility.h"
#include "platform/platform.h"
#include "platform/run_loop.h"
#include "tests/support/processes.h"
#include "tests/support/scenes.h"
#include "tests/support/simulated_desktop.h"
#include "tests/support/temporary_directory.h"

namespace {

using Lines = std::vector<std::string>;

// hushlet-sim on a desk of its own.
class Program : public testing::Test {
 protected:
  // Where the scene is kept.
  [[nodiscard]] std::string write(std::string_view scene, const std::string& name = "scene.json") const {
    const std::string path = home_.path() + "/" + name;
    std::ofstream(path) << scene;
    return path;
  }

  [[nodiscard]] RunningProgram start(const std::string& scenePath, std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), HUSHLET_SIM);
    return RunningProgram(arguments, {{"HOME", home_.path().c_str()},
                                      {"HUSHLET_SCENE", scenePath.empty() ? nullptr : scenePath.c_str()}});
  }

  [[nodiscard]] ProgramRun run(std::string_view scene, std::vector<std::string> arguments) const {
    return start(write(scene), std::move(arguments)).wait();
  }

  [[nodiscard]] Lines diagnostics() const {
    return LogMessages(FileContent(home_.path() + "/.local/state/hushlet/hushlet_detailed_diagnostics.log"));
  }

  TemporaryDirectory home_;
};

const std::string kThreeBanners =
    R"({"repeat": 3, "id": "b{n}", "role": "AXGroup", "subrole": "AXNotificationCenterAlert",
  "description": "Mail, message {n}", "actions": ["AXPress", "Name:Close"], "closes": "b{n}"})";

#ifdef __linux__  // macOS allows no stack that is larger than the memory
TEST_F(Program, DismissesWithoutThreads) {
  const std::string scene = write(NotificationCenterScene(kThreeBanners));
  const std::vector<std::string> command = WithoutThreads({HUSHLET_SIM, "--dismiss-now"});
  const ProgramRun run = RunProgram(command, {{"HOME", home_.path().c_str()}, {"HUSHLET_SCENE", scene.c_str()}});
  EXPECT_EQ(run.out, "success|3|0\n");
  EXPECT_EQ(run.exitCode, 0) << run.err;
}

TEST_F(Program, FailsDismissalsWithoutThreads) {
  const std::string scene =
      write(std::string("{") + ProductBundle + R"(, "trusted": true, "timeline": [{"at": 1, "click": "left"}]})");
  const std::vector<std::string> command = WithoutThreads({HUSHLET_SIM});
  const ProgramRun run = RunProgram(
      command, {{"HOME", home_.path().c_str()}, {"XDG_DATA_HOME", nullptr}, {"HUSHLET_SCENE", scene.c_str()}});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(LogMessages(FileContent(home_.path() + "/.local/share/test/status.log")).back(),
            "dismissNotifications outcome status=failed dismissed=0 remaining=0 elapsedMs=5000");
}
#endif

void expectOneLine(const std::string& text) {
  EXPECT_FALSE(text.empty());
  EXPECT_EQ(text.find('\n'), text.size() - 1) << text;
}

TEST_F(Program, DismissNowPrintsTheResultLine) {
  const ProgramRun program = run(NotificationCenterScene(kThreeBanners), {"--dismiss-now"});
  EXPECT_EQ(program.out, "success|3|0\n");
  EXPECT_EQ(program.err, "");
  EXPECT_EQ(program.exitCode, 0);
  EXPECT_EQ(diagnostics().back(), "batch progress before=3 after=0 removed=3");
}

TEST_F(Program, ExitsWithZeroAfterDismissNow) {
  const ProgramRun nothing = run(NotificationCenterScene(""), {"--dismiss-now"});
  EXPECT_EQ(nothing.out, "nothing|0|0\n");
  EXPECT_EQ(nothing.exitCode, 0);
  const ProgramRun denied = run(NotificationCenterScene(kThreeBanners, R"(, "trusted": false)"), {"--dismiss-now"});
  EXPECT_EQ(denied.out, "accessDenied|0|0\n");
  EXPECT_EQ(denied.exitCode, 0);
  const ProgramRun unavailable = run("{}", {"--dismiss-now"});
  EXPECT_EQ(unavailable.out, "notificationCenterUnavailable|0|0\n");
  EXPECT_EQ(unavailable.exitCode, 0);
  const ProgramRun failed =
      run(NotificationCenterScene(R"({"title": "stuck", "actions": ["Close"]})"), {"--dismiss-now"});
  EXPECT_EQ(failed.out, "failed|0|1\n");
  EXPECT_EQ(failed.exitCode, 0);
}

// What --dismiss-now prints on standard error, on a host that has advice.
std::string adviceOn(const std::string& scene, bool onTerminal, std::string_view unclosable = "") {
  SimulatedDesktop desktop(scene);
  HLPlatform advising = desktop.platform();
  advising.commandAdvice = HLCommandAdvice{"no access", "no server", "see ", [unclosable] { return unclosable; }};
  HLInstallPlatform(&advising);
  std::ostringstream out;
  std::ostringstream err;
  if (onTerminal) HLMarkAsTerminal(err);
  EXPECT_EQ(HLRunMode(HLSelectMode({"hushlet", "--dismiss-now"}), out, err), 0);
  expectOneLine(out.str());
  HLInstallPlatform(&desktop.platform());
  const std::string advice = err.str();
  return advice == "see " + desktop.diagnosticsPath() + "\n" ? "see the log\n" : advice;
}

TEST_F(Program, AdvisesAtATerminal) {
  EXPECT_EQ(adviceOn(NotificationCenterScene(kThreeBanners, R"(, "trusted": false)"), true), "no access\n");
  EXPECT_EQ(adviceOn("{}", true), "no server\n");
  EXPECT_EQ(adviceOn(NotificationCenterScene(R"({"title": "stuck", "actions": ["Close"]})"), true), "see the log\n");
  EXPECT_EQ(adviceOn(NotificationCenterScene(""), true), "");
  EXPECT_EQ(adviceOn(NotificationCenterScene(kThreeBanners), true), "");
}

TEST_F(Program, AdvisesAboutUnclosableBanners) {
  for (const std::string& scene : {NotificationCenterScene(""), NotificationCenterScene(kThreeBanners),
                                   NotificationCenterScene(R"({"title": "stuck", "actions": ["Close"]})")}) {
    EXPECT_EQ(adviceOn(scene, true, "start it"), "start it\n");
    EXPECT_EQ(adviceOn(scene, false, "start it"), "");
  }
  EXPECT_EQ(adviceOn("{}", true, "start it"), "no server\n");
}

TEST_F(Program, AdvisesNoOtherProgram) {
  EXPECT_EQ(adviceOn(NotificationCenterScene(kThreeBanners, R"(, "trusted": false)"), false), "");
  EXPECT_EQ(adviceOn("{}", false), "");
}

TEST_F(Program, WritesForItsUserAlone) {
  const std::string scene = write(NotificationCenterScene(kThreeBanners));
  const mode_t mask = umask(0);
  const ProgramRun program = start(scene, {"--dismiss-now"}).wait();
  umask(mask);
  EXPECT_EQ(program.out, "success|3|0\n");
  const std::filesystem::path state = home_.path() + "/.local/state/hushlet";
  for (const std::filesystem::path& folder : {state, state.parent_path(), state.parent_path().parent_path()}) {
    EXPECT_EQ(std::filesystem::status(folder).permissions(), std::filesystem::perms::owner_all) << folder;
  }
  EXPECT_EQ(std::filesystem::status(state / "hushlet_detailed_diagnostics.log").permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(Program, ChecksWithoutDismissing) {
  const std::string record = home_.path() + "/record";
  const ProgramRun program =
      run(NotificationCenterScene(kThreeBanners, R"(, "record": ")" + record + "\""), {"--self-check"});
  EXPECT_TRUE(std::regex_match(program.out, std::regex(R"(trusted=true notificationCenterPid=400 targets=3 )"
                                                       R"(pid=\d+ ppid=\d+ parentBundle=none parentName=none\n)")))
      << program.out;
  EXPECT_EQ(program.err, "");
  EXPECT_EQ(program.exitCode, 0);
  EXPECT_EQ(diagnostics(),
            (Lines{"scan root=window-0 visited=1 candidates=1", "scan root=window-1 visited=1 candidates=1",
                   "scan root=window-2 visited=1 candidates=1"}));
  EXPECT_NE(FileContent(record).find(R"("actions":[])"), std::string::npos) << FileContent(record);
}

TEST_F(Program, FailsSelfCheckWithoutTrust) {
  const ProgramRun program = run(NotificationCenterScene(kThreeBanners, R"(, "trusted": false)"), {"--self-check"});
  EXPECT_EQ(program.out.rfind("trusted=false notificationCenterPid=400 targets=0 pid=", 0), 0U) << program.out;
  EXPECT_EQ(program.exitCode, 1);
  EXPECT_EQ(diagnostics(), Lines{});
}

TEST_F(Program, ChecksWithoutNotificationCenter) {
  const ProgramRun program = run("{}", {"--self-check"});
  EXPECT_EQ(program.out.rfind("trusted=true notificationCenterPid=0 targets=0 pid=", 0), 0U) << program.out;
  EXPECT_EQ(program.exitCode, 0);
}

TEST_F(Program, ChecksWithoutARootElement) {
  const ProgramRun program = run(R"({"applications": [{"pid": 400, "bundleIdentifier": "com.apple.notificationcenterui",
      "elementFails": true, "windows": [{"title": "close", "actions": ["Close"]}]}]})",
                                 {"--self-check"});
  EXPECT_EQ(program.out.rfind("trusted=true notificationCenterPid=400 targets=0 pid=", 0), 0U) << program.out;
  EXPECT_EQ(program.exitCode, 0);
}

TEST_F(Program, ChecksWithoutAPrompt) {
  SimulatedDesktop desktop(R"({"trusted": false, "services": {"grantOnPrompt": true}})");
  std::ostringstream out;
  EXPECT_EQ(HLSelfCheck(out), 1);
  desktop.platform().runLoop->runFor(1);
  EXPECT_FALSE(desktop.platform().accessibility->isProcessTrusted(false));
}

TEST_F(Program, NamesTheParentInItsCheck) {
  const ProgramRun program = run(R"({"applications": [{"pid": 77, "bundleIdentifier": "com.apple.Terminal",
      "name": "Terminal"}], "parent": 77})",
                                 {"--self-check"});
  EXPECT_TRUE(
      std::regex_match(program.out, std::regex(R"(trusted=true notificationCenterPid=0 targets=0 pid=\d+ ppid=77 )"
                                               R"(parentBundle=com\.apple\.Terminal parentName=Terminal\n)")))
      << program.out;
}

TEST_F(Program, RunsOnlyTheEarlierMode) {
  const ProgramRun program = run(NotificationCenterScene(kThreeBanners), {"--dismiss-now", "--self-check"});
  EXPECT_EQ(program.out.rfind("trusted=true", 0), 0U) << program.out;
  EXPECT_EQ(program.out.find("success"), std::string::npos);
}

TEST_F(Program, TakesArgumentsFromTheScene) {
  const ProgramRun program =
      run(NotificationCenterScene(kThreeBanners, R"(, "arguments": ["--dismiss-now"])"), {"--self-check"});
  EXPECT_EQ(program.out, "success|3|0\n");
}

TEST_F(Program, ExitsWithTwoOnMalformedScenes) {
  struct Case {
    const char* scene;
    const char* place;
  };
  for (const Case& each : {Case{"no scene", ""}, Case{"[]", ""}, Case{R"({"aplications": []})", "aplications"},
                           Case{R"({"trusted": 1})", "trusted"},
                           Case{R"({"applications": [{"pid": 1}, {"pid": "x"}]})", "applications[1].pid"},
                           Case{R"({"applications": [{"pid": 1, "windows": [{"id": "a"}, {"frame": [1, 2, 3]}]}]})",
                                "applications[0].windows[1].frame"},
                           Case{R"({"timeline": [{"at": 1, "remove": "nobody"}]})", "nobody"}}) {
    const ProgramRun program = run(each.scene, {"--dismiss-now"});
    EXPECT_EQ(program.exitCode, 2) << each.scene;
    EXPECT_EQ(program.out, "") << each.scene;
    expectOneLine(program.err);
    EXPECT_NE(program.err.find(home_.path() + "/scene.json"), std::string::npos) << program.err;
    EXPECT_NE(program.err.find(each.place), std::string::npos) << program.err;
    EXPECT_EQ(diagnostics(), Lines{});
  }
}

TEST_F(Program, ExitsWithTwoOnMissingScenes) {
  const ProgramRun program = start(home_.path() + "/missing.json", {"--dismiss-now"}).wait();
  EXPECT_EQ(program.exitCode, 2);
  EXPECT_EQ(program.out, "");
  expectOneLine(program.err);
  EXPECT_NE(program.err.find("missing.json"), std::string::npos) << program.err;
}

TEST_F(Program, DefaultsToTheEveningScene) {
  const ProgramRun program = start("", {"--dismiss-now"}).wait();
  EXPECT_TRUE(std::regex_match(program.out, std::regex("success\\|[1-9]\\d*\\|0\n"))) << program.out;
  EXPECT_EQ(program.exitCode, 0);
}

TEST_F(Program, KeepsConcurrentLogLinesWhole) {
  const std::string scene = write(NotificationCenterScene(kThreeBanners));
  std::vector<RunningProgram> programs;
  for (int i = 0; i < 8; ++i) programs.push_back(start(scene, {"--dismiss-now"}));
  for (RunningProgram& program : programs) EXPECT_EQ(program.wait().out, "success|3|0\n");
  std::map<std::string, int> count;
  for (const std::string& line : diagnostics()) {
    ++count[std::regex_replace(line, std::regex(R"(\bpid=\d+ ppid=\d+)"), "pid= ppid=")];
  }
  EXPECT_EQ(count["dismiss preflight trusted=true pid= ppid= parentBundle=none parentName=none"], 8);
  EXPECT_EQ(count["notification center pid=400 bundle=com.apple.notificationcenterui"], 8);
  EXPECT_EQ(count["alerts per app Mail=3"], 8);
  EXPECT_EQ(count["scan root=window-0 visited=1 candidates=1"], 8);
  EXPECT_EQ(
      count
          ["batch actions eligible=3 attempted=3 clear=0 close=3 failed=0 resolutionMs=0 actionWallMs=0 actionSumMs=0"],
      8);
  EXPECT_EQ(count["batch progress before=3 after=0 removed=3"], 8);
  EXPECT_EQ(count.size(), 9U) << "and two scans of the other windows, and the attempt";
}

}  // namespace
