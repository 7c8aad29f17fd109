#include "daemon/observe.h"

#include <gtest/gtest.h>

#include <regex>
#include <sstream>
#include <vector>

#include "base/terminal.h"
#include "tests/support/flushed_stream.h"
#include "tests/support/scenes.h"
#include "tests/support/simulated_desktop.h"

namespace {

const std::string kNoButtons = " closeButton=none cancelButton=none defaultButton=none";

std::string summaryOf(const std::string& element) {
  SimulatedDesktop desktop(NotificationCenterScene(element));
  return HLElementDebugSummary(*desktop.element("e"));
}

struct Outcome {
  int code;
  std::string printed;
  std::string errors;
};

Outcome observe(double seconds) {
  std::ostringstream out;
  std::ostringstream err;
  const int code = HLObserveNotificationCenter(seconds, out, err);
  return {code, out.str(), err.str()};
}

TEST(FrameSummary, HasOneDecimalEach) {
  EXPECT_EQ(HLFrameSummary({10, 20, 300, 80}), "(10.0,20.0,300.0,80.0)");
  EXPECT_EQ(HLFrameSummary({-1440.25, 0.06, 15.5, 1}), "(-1440.2,0.1,15.5,1.0)");
  EXPECT_EQ(HLFrameSummary({}), "null");
}

TEST(ElementSummary, NamesEverythingInOneLine) {
  EXPECT_EQ(summaryOf(R"({"id": "e", "role": "AXGroup", "subrole": "AXNotificationCenterAlert",
                          "description": "Mail,  Lunch", "frame": [10, 20, 300, 80],
                          "actions": ["AXPress", "Name:Close"]})"),
            "role=AXGroup subrole=AXNotificationCenterAlert frame=(10.0,20.0,300.0,80.0) actions=AXPress,Name:Close "
            "context=axgroup axnotificationcenteralert mail, lunch" +
                kNoButtons);
}

TEST(ElementSummary, SaysWhatIsMissing) {
  EXPECT_EQ(summaryOf(R"({"id": "e"})"),
            "role=(none) subrole=(none) frame=null actions=(none) context=(empty)" + kNoButtons);
  EXPECT_EQ(summaryOf(R"({"id": "e", "role": "", "subrole": ""})"),
            "role=(none) subrole=(none) frame=null actions=(none) context=(empty)" + kNoButtons);
}

TEST(ElementSummary, ListsAttributeButtons) {
  EXPECT_EQ(summaryOf(R"({"id": "e", "role": "AXWindow", "attributes": {
                          "AXCloseButton": {"element": {"role": "AXButton", "actions": ["AXPress", "Close"],
                                                        "frame": [1, 2, 3, 4]}},
                          "AXCancelButton": "no element", "AXDefaultButton": {"element": {}}}})"),
            "role=AXWindow subrole=(none) frame=null actions=(none) context=axwindow "
            "closeButton=context=axbutton actions=AXPress,Close frame=(1.0,2.0,3.0,4.0) cancelButton=none "
            "defaultButton=context=(empty) actions=(none) frame=null");
}

TEST(Observer, FailsWithoutNotificationCenter) {
  const SimulatedDesktop desktop("{}");
  const Outcome run = observe(1);
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.printed, "");
  EXPECT_EQ(run.errors, "Notification Center is not running\n");
}

TEST(Observer, FailsWithoutAnObserver) {
  const SimulatedDesktop desktop(
      R"({"applications": [{"pid": 400, "bundleIdentifier": "com.apple.notificationcenterui", "observerFails": true}]})");
  const Outcome run = observe(1);
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.printed, "");
  EXPECT_EQ(run.errors, "AXObserverCreate failed\n");
}

TEST(Observer, RegistersApplicationThenWindows) {
  const SimulatedDesktop desktop(
      R"({"applications": [{"pid": 400, "bundleIdentifier": "com.apple.notificationcenterui",
          "registerErrors": {"AXCreated": -25207},
          "windows": [{"id": "a", "role": "AXWindow"}, "no element", {"id": "b", "role": "AXSheet"}]}]})");
  const Outcome run = observe(2.5);
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(run.printed,
            "register AXWindowCreated -> 0\n"
            "register AXCreated -> -25207\n"
            "register AXUIElementDestroyed -> 0\n"
            "register AXLayoutChanged -> 0\n"
            "register AXChildrenChanged -> 0\n"
            "register AXValueChanged -> 0\n"
            "register AXTitleChanged -> 0\n"
            "register AXAnnouncementRequested -> 0\n"
            "window registered role=AXWindow subrole=(none) frame=null actions=(none) context=axwindow" +
                kNoButtons +
                "\n"
                "window registered role=AXSheet subrole=(none) frame=null actions=(none) context=axsheet" +
                kNoButtons + "\n");
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(desktop.elapsedMicroseconds(), 2'500'000);
}

// The lines that follow those of the registration.
std::vector<std::string> events(const Outcome& run) {
  std::vector<std::string> lines;
  std::istringstream stream(run.printed);
  for (std::string line; std::getline(stream, line);) {
    if (line.rfind("register ", 0) != 0 && line.rfind("window ", 0) != 0) lines.push_back(line);
  }
  return lines;
}

TEST(Observer, PrintsEachEventWithItsTime) {
  const SimulatedDesktop desktop(NotificationCenterScene(
      R"({"id": "w", "role": "AXWindow", "children": [{"id": "e", "role": "AXGroup", "description": "Mail, Lunch"}]})",
      R"(,"timeline": [{"at": 0.25, "notify": "AXLayoutChanged", "element": "e"},
                       {"at": 0.5, "notify": "AXSomethingElse", "element": "e"},
                       {"at": 1.75, "notify": "AXValueChanged", "element": "w"},
                       {"at": 3.5, "notify": "AXValueChanged", "element": "w"}])"));
  const std::vector<std::string> lines = events(observe(3));
  ASSERT_EQ(lines.size(), 2U);
  const std::regex time(R"(^(\d{10}\.\d{3}) (.*)$)");
  std::smatch first;
  std::smatch second;
  ASSERT_TRUE(std::regex_match(lines[0], first, time)) << lines[0];
  ASSERT_TRUE(std::regex_match(lines[1], second, time)) << lines[1];
  EXPECT_NEAR(std::stod(second[1]) - std::stod(first[1]), 1.5, 0.0015);
  EXPECT_EQ(first[2],
            "AXLayoutChanged role=AXGroup subrole=(none) frame=null actions=(none) context=axgroup mail, lunch" +
                kNoButtons + " desc=Mail, Lunch");
  EXPECT_EQ(second[2], "AXValueChanged role=AXWindow subrole=(none) frame=null actions=(none) context=axwindow" +
                           kNoButtons + " desc=");
}

TEST(Observer, FlushesEachLine) {
  SimulatedDesktop desktop(NotificationCenterScene(
      R"({"id": "w", "role": "AXWindow"})", R"(,"timeline": [{"at": 1, "notify": "AXCreated", "element": "w"}])"));
  FlushedStream out;
  std::ostringstream err;
  std::vector<std::string> flushed;
  for (const double at : {0.5, 1.5}) {
    desktop.runLoop().postToMainQueueAfter(at, [&] {
      EXPECT_EQ(out.flushed(), out.written());
      flushed.push_back(out.flushed());
    });
  }
  EXPECT_EQ(HLObserveNotificationCenter(2, out, err), 0);
  ASSERT_EQ(flushed.size(), 2U);
  EXPECT_LT(flushed[0].size(), flushed[1].size());
}

std::string descriptionOn(bool terminal) {
  const SimulatedDesktop desktop(NotificationCenterScene(
      R"({"id": "w", "role": "AXWindow", "description": "a\u001b[31mb\nc\td\u007f\u009b2Jé\u0000"})",
      R"(,"timeline": [{"at": 0.5, "notify": "AXCreated", "element": "w"}])"));
  std::ostringstream out;
  std::ostringstream err;
  if (terminal) HLMarkAsTerminal(out);
  EXPECT_EQ(HLObserveNotificationCenter(1, out, err), 0);
  return out.str().substr(out.str().rfind(" desc=") + 6);
}

TEST(Observer, ShowsControlCharactersAtATerminal) {
  EXPECT_EQ(descriptionOn(true), "a\\u001B[31mb\\u000Ac\\u0009d\\u007F\\u009B2Jé\\u0000\n");
}

TEST(Observer, PrintsControlCharactersElsewhere) {
  EXPECT_EQ(descriptionOn(false), std::string("a\x1B[31mb\nc\td\x7F\u009B2Jé\0\n", 20));
}

TEST(Observer, CutsADescriptionAfter120Characters) {
  const auto printed = [](const std::string& description) {
    const SimulatedDesktop desktop(
        NotificationCenterScene(R"({"id": "w", "role": "AXWindow", "description": ")" + description + "\"}",
                                R"(,"timeline": [{"at": 0.5, "notify": "AXCreated", "element": "w"}])"));
    const std::string line = events(observe(1)).at(0);
    return line.substr(line.find(" desc=") + 6);
  };
  EXPECT_EQ(printed(std::string(300, 'x')), std::string(120, 'x'));
  EXPECT_EQ(printed(std::string(120, 'x')), std::string(120, 'x'));
  EXPECT_EQ(printed(std::string(119, 'x') + "\U0001F600"), std::string(119, 'x') + "\uFFFD") << "a pair cut in half";
}

}  // namespace
