#include "report/explanation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "base/terminal.h"
#include "platform/host_report.h"
#include "platform/platform.h"
#include "report/explain.h"
#include "tests/support/processes.h"
#include "tests/support/scenes.h"
#include "tests/support/simulated_desktop.h"

namespace {

using testing::HasSubstr;

// Returns the refusal of an element with these keys, in a window with notification words.
std::string refusalOf(const std::string& keys) {
  const SimulatedDesktop desktop(
      NotificationCenterScene(R"({"title": "Notification Center", "children": [{"title": "wanted", )" + keys + "}]}"));
  const std::unique_ptr<HLCapture> capture = HLCaptureScreen();
  const HLExplanation explanation = HLExplain(*capture);
  return HLRefusalText(explanation.elements.at(1));
}

TEST(Refusal, NamesTheNegativeWord) {
  EXPECT_EQ(refusalOf(R"("role": "AXButton", "description": "Reply", "actions": ["AXPress"], "frame": [0, 0, 9, 9])"),
            "its words have \"reply\"");
  EXPECT_EQ(refusalOf(R"("role": "AXButton", "description": "close call", "actions": ["AXPress"])"),
            "its words have \"call\"");
}

TEST(Refusal, NamesALargeButton) {
  EXPECT_EQ(refusalOf(R"("role": "AXButton", "actions": ["AXPress"], "frame": [0, 0, 61, 9])"),
            "too large for a close button without a word for closing");
}

TEST(Refusal, NamesAMissingAction) {
  EXPECT_EQ(refusalOf(R"("role": "AXButton")"), "no press action");
  EXPECT_EQ(refusalOf(R"("subrole": "AXNotificationCenterAlert")"), "no action that closes it");
}

TEST(Refusal, NamesAMenu) {
  EXPECT_EQ(refusalOf(R"("role": "AXMenuButton", "actions": ["AXPress"])"), "part of a menu");
}

TEST(Refusal, NamesTheLimitOfAScan) {
  const SimulatedDesktop desktop(NotificationCenterScene(
      R"({"title": "Notification Center", "children": [{"repeat": 1399, "role": "AXButton"}, {"role": "AXButton"}]})"));
  const std::unique_ptr<HLCapture> capture = HLCaptureScreen();
  const HLExplanation explanation = HLExplain(*capture);
  EXPECT_EQ(HLRefusalText(explanation.elements.at(1399)), "no press action");
  EXPECT_EQ(HLRefusalText(explanation.elements.at(1400)), "beyond the limit of 1400 elements");
}

TEST(Refusal, AddsTheDoubtOfTheHost) {
  EXPECT_EQ(refusalOf(R"("subrole": "AXNotificationCenterAlert", "attributes": {"HLCloseDoubt": "two alike"})"),
            "no action that closes it; two alike");
}

TEST(Refusal, IsEmptyForCandidatesAndTexts) {
  EXPECT_EQ(refusalOf(R"("role": "AXButton", "actions": ["Close"])"), "");
  EXPECT_EQ(refusalOf(R"("role": "AXStaticText")"), "");
}

TEST(Explanation, AddsPointsUpToTheScore) {
  const SimulatedDesktop desktop(FileContent(HUSHLET_SCENES "/plain_buttons.json"));
  const std::unique_ptr<HLCapture> capture = HLCaptureScreen();
  int candidates = 0;
  for (const HLExplainedElement& element : HLExplain(*capture).elements) {
    if (!element.candidate) continue;
    ++candidates;
    std::int64_t points = 0;
    for (const HLScorePart& part : element.details.parts) points += part.points;
    EXPECT_EQ(points, element.candidate->score);
  }
  EXPECT_EQ(candidates, 5);
}

constexpr const char* kBanner = R"({"title": "Notification Center", "children": [
  {"id": "b", "role": "AXGroup", "subrole": "AXNotificationCenterAlert", "description": "Mail, \u001b[31mTom, Lunch",
   "actions": ["Name:Close"], "closes": "b"}]})";

std::string explain(bool onTerminal, int columns, const std::string& options = "") {
  SimulatedDesktop desktop(NotificationCenterScene(kBanner, R"(, "arguments": [)" + options + "]"));
  std::ostringstream out;
  std::ostringstream err;
  if (onTerminal) HLMarkAsTerminal(out, columns);
  EXPECT_EQ(HLExplainScreen(out, err), 0);
  EXPECT_EQ(err.str(), "");
  EXPECT_TRUE(desktop.simulator().actions().empty());
  EXPECT_TRUE(desktop.diagnostics().empty());
  return out.str();
}

TEST(Explain, ShowsEscapedTextsOnATerminal) {
  const std::string text = explain(true, 200);
  EXPECT_NE(text.find("\"Mail, \\u001B[31mTom, Lunch\""), std::string::npos) << text;
  EXPECT_NE(text.find("\033[32m"), std::string::npos);
}

// A host whose programs have bundles.
class BundleReport : public HLHostReport {
 public:
  [[nodiscard]] std::string systemVersion() override { return "macOS"; }
  [[nodiscard]] std::string programBundle() override { return "~/Hushlet.app"; }
  [[nodiscard]] HLServerVersion serverVersion(std::int32_t) override {
    return {"Center", "", "1.0", "/System/Center.app"};
  }
  [[nodiscard]] std::vector<HLRawElement> rawElements(std::int32_t) override { return {}; }
};

TEST(Explain, NamesTheBundles) {
  for (const std::string options : {R"("--keep-texts")", R"("--keep-texts", "--json")", "", R"("--json")"}) {
    SimulatedDesktop desktop(NotificationCenterScene(kBanner, R"(, "arguments": [)" + options + "]"));
    BundleReport report;
    HLPlatform platform = desktop.platform();
    platform.report = report;
    HLInstallPlatform(&platform);
    std::ostringstream out;
    EXPECT_EQ(HLExplainScreen(out, out), 0);
    HLInstallPlatform(&desktop.platform());
    const bool isData = options.ends_with("--json\"");
    EXPECT_THAT(out.str(), HasSubstr(isData ? R"("bundle": "/System/Center.app"})" : "\nbundle: /System/Center.app\n"));
    EXPECT_THAT(out.str(), HasSubstr(isData ? R"("program": "~/Hushlet.app")" : "\nprogram: ~/Hushlet.app\n"));
  }
}

TEST(Explain, ReplacesTextsInAFile) {
  const std::string text = explain(false, 0);
  EXPECT_EQ(text.find("Tom"), std::string::npos) << text;
  EXPECT_EQ(text.find("\033"), std::string::npos);
  EXPECT_NE(text.find("target 1, score 220"), std::string::npos);
  EXPECT_NE(explain(false, 0, R"("--keep-texts")").find("Tom"), std::string::npos);
}

TEST(Explain, CutsNamesToTheTerminal) {
  const std::string text = explain(true, 70);
  EXPECT_EQ(text.find("Lunch"), std::string::npos) << text;
  EXPECT_NE(text.find("…\""), std::string::npos);
}

TEST(Explain, CutsWideNamesToTheTerminal) {
  SimulatedDesktop desktop(NotificationCenterScene(
      R"({"role": "AXWindow", "title": "通知のタイトルはとても長いのでここで切れます通知のタイトルはとても長い"})"));
  std::ostringstream out;
  HLMarkAsTerminal(out, 40);
  EXPECT_EQ(HLExplainScreen(out, out), 0);
  EXPECT_NE(out.str().find("  AXWindow \"通知のタイトルはとても長い…\"\n"), std::string::npos) << out.str();
}

TEST(Explain, RefusesUnknownArguments) {
  for (const std::string argument : {"--jsn", "--keep-texts=no", "scene.json", ""}) {
    const std::string arguments = R"("--explain", "--json", "--keep-texts", ")" + argument + "\"";
    SimulatedDesktop desktop(NotificationCenterScene(kBanner, R"(, "arguments": [)" + arguments + "]"));
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(HLExplainScreen(out, err), 1);
    EXPECT_EQ(out.str(), "");
    EXPECT_EQ(err.str(), "hushlet: unknown argument \"" + argument + "\": --explain takes --json and --keep-texts\n");
  }
}

TEST(Explain, FailsWhereItCannotWrite) {
  SimulatedDesktop desktop(NotificationCenterScene(kBanner));
  std::ostream out(nullptr);
  std::ostringstream err;
  EXPECT_EQ(HLExplainScreen(out, err), 1);
  EXPECT_EQ(err.str(), "hushlet: the explanation could not be written\n");
}

TEST(Explain, FailsWithoutTrust) {
  SimulatedDesktop desktop(NotificationCenterScene(kBanner, R"(, "trusted": false)"));
  std::ostringstream out;
  EXPECT_EQ(HLExplainScreen(out, out), 1);
  EXPECT_NE(out.str().find("access: not granted"), std::string::npos);
}

}  // namespace
