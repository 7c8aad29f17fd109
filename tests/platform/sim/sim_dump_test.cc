// The dump and the record, field by field.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "platform/user_notifications.h"
#include "tests/platform/sim/scene_menu_bar.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

std::vector<std::string> linesOf(const std::string& path) {
  std::ifstream file(path);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

TEST(Dump, ShowsAnIdleProgram) {
  MenuBar program("{}");
  EXPECT_EQ(program.dump(), json::parse(R"({"at": 0, "statusItem": {"title": "", "image": null, "template": false,
    "imageDescription": null, "toolTip": ""}, "menu": [], "windows": [], "alerts": [], "appearance": "system",
    "hotKey": null, "hotKeyAnswer": null, "recording": false, "openedAddresses": [], "loginItemStatus": 0,
    "notifications": [], "beeps": 0, "observers": [], "timers": 0, "defaults": {}})"));
}

TEST(Dump, AppendsOneLine) {
  const std::string path = FreshPath("dumps");
  std::ofstream(path) << "before\n";
  MenuBar program(Timeline(R"({"at": 1.23456, "click": "left"}, {"at": 1.23456, "dump": ")" + path +
                           R"("}, {"at": 1.23456, "click": "left"}, {"at": 2, "dump": ")" + path + R"("})"));
  int clicks = 0;
  EXPECT_EQ(program.run([&] {
    program.host().statusItem->install(
        {"", [&] { program.host().statusItem->setTitle("a\nb " + std::to_string(++clicks)); }, {}});
  }),
            0);
  const std::vector<std::string> lines = linesOf(path);
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[0], "before");
  EXPECT_EQ(json::parse(lines[1])["at"], 1.235);
  EXPECT_EQ(json::parse(lines[1])["statusItem"]["title"], "a\nb 1");
  EXPECT_EQ(json::parse(lines[2])["at"], 2);
  EXPECT_EQ(json::parse(lines[2])["statusItem"]["title"], "a\nb 2");
}

TEST(Dump, ReportsAnUnwritableFile) {
  MenuBar program(Timeline(R"({"at": 1, "dump": "/nowhere/at/all"}, {"at": 2, "click": "left"})"));
  testing::internal::CaptureStderr();
  EXPECT_EQ(program.run([&] { program.host().statusItem->install({"", program.noting("click"), {}}); }), 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "/nowhere/at/all: No such file or directory\n");
  EXPECT_THAT(program.entries(), ElementsAre("click@2000"));
}

TEST(Dump, ShowsStatusItemAndMenu) {
  MenuBar program("{}");
  HLStatusItem& item = program.host().statusItem;
  item.install({"tip", {}, {"M", {{"", "One", ",", {}}, {"two", "Two", "", {}}, {}, {"", "Three", "q", {}}}, {}}});
  item.setMenuItem("two", "Zwei", true);
  item.setMenuItem("none", "x", true);
  item.setTitle("HL 5");
  EXPECT_EQ(program.dump()["statusItem"], json::parse(R"({"title": "HL 5", "image": null, "template": false,
    "imageDescription": null, "toolTip": "tip"})"));
  item.setImage({"bell.slash", true, "Name"});
  EXPECT_EQ(program.dump()["statusItem"], json::parse(R"({"title": "HL 5", "image": "bell.slash", "template": true,
    "imageDescription": "Name", "toolTip": "tip"})"));
  EXPECT_EQ(program.dump()["menu"], json::parse(R"([{"title": "One", "key": ",", "state": "off"},
    {"title": "Zwei", "key": "", "state": "on"}, {"separator": true}, {"title": "Three", "key": "q", "state": "off"}])"));
}

TEST(Dump, ShowsWindowsInCreationOrder) {
  MenuBar program("{}");
  const auto a = program.host().windows->makeWindow({"A", 460, 360.5, 24, 22, {}, {}});
  const auto b = program.host().windows->makeWindow({"B", 420, 280, 24, 22, {}, {}});
  EXPECT_EQ(program.dump()["windows"], json::parse(R"([
    {"title": "A", "visible": false, "key": false, "width": 460, "height": 360.5, "content": []},
    {"title": "B", "visible": false, "key": false, "width": 420, "height": 280, "content": []}])"));
  b->makeKeyAndOrderFront();
  a->makeKeyAndOrderFront();
  a->fitHeight();
  EXPECT_EQ(program.dump()["windows"], json::parse(R"([
    {"title": "A", "visible": true, "key": true, "width": 460, "height": null, "content": []},
    {"title": "B", "visible": true, "key": false, "width": 420, "height": 280, "content": []}])"));
}

TEST(Dump, ShowsWhatAWindowHolds) {
  MenuBar program("{}");
  const auto window = program.open(
      "W",
      {{HLLabel{"label", "Text", 20, HLFontWeight::semibold}, 6, true},
       {HLRow{{HLLabel{"", "Cell", 12.5, HLFontWeight::medium, HLTextColor::secondary}, program.button("B", "\r")}, 10},
        8.5, false},
       {HLCheckBox{"box", "Box", {}}},
       {HLLabel{}}});
  window->setLabel("label", "New", HLTextColor::orange);
  window->setButtonTitle("B", "C");
  window->setCheckBox("box", true);
  window->setEnabled("box", false);
  window->setLabel("unknown", "x", HLTextColor::green);
  window->setLabel("", "x", HLTextColor::green);
  window->setLabel("box", "x", HLTextColor::green);
  EXPECT_EQ(program.dump()["windows"][0]["content"], json::parse(R"([
    {"label": "New", "size": 20, "weight": "semibold", "color": "orange", "after": 6, "fullWidth": true},
    {"row": [{"label": "Cell", "size": 12.5, "weight": "medium", "color": "secondary"},
             {"button": "C", "key": "\r", "enabled": true}], "spacing": 10, "after": 8.5, "fullWidth": false},
    {"checkBox": "Box", "on": true, "enabled": false, "after": 0, "fullWidth": false},
    {"label": "", "size": 13, "weight": "regular", "color": "label", "after": 0, "fullWidth": false}])"));
  window->setLabel("label", "", HLTextColor::green);
  EXPECT_EQ(program.dump()["windows"][0]["content"][0]["color"], "green");
}

TEST(Dump, ShowsAppearanceBeepsAndTimers) {
  MenuBar program("{}");
  program.host().application->setDarkAppearance();
  program.host().application->beep();
  program.host().application->beep();
  program.host().application->activate();
  const auto one = program.runLoop().scheduleTimer(1, [] {});
  auto two = program.runLoop().scheduleTimer(1, [] {});
  program.at(1, [] {});
  EXPECT_EQ(program.dump()["timers"], 2);
  two = nullptr;
  EXPECT_EQ(program.dump()["timers"], 1);
  EXPECT_EQ(program.dump()["appearance"], "dark");
  EXPECT_EQ(program.dump()["beeps"], 2);
}

TEST(Dump, ShowsObserversAndNotifications) {
  MenuBar program(Scene("{}"));
  HLAccessibility& accessibility = program.desktop().accessibility();
  const auto observer = accessibility.createObserver(400, [](const auto&, std::string_view) {});
  EXPECT_EQ(observer->addNotification(accessibility.createApplication(400), "AXCreated"), HLAXErrorSuccess);
  program.desktop().simulator().platform().userNotifications->add({"i", "t", "b", 2.5, false}, [](const auto&) {});
  EXPECT_EQ(program.dump()["observers"], json::parse(R"([{"pid": 400, "notifications": ["AXCreated"]}])"));
  EXPECT_EQ(program.dump()["notifications"],
            json::parse(R"([{"identifier": "i", "title": "t", "body": "b", "delay": 2.5, "sound": false}])"));
}

TEST(Record, AddsActionsAndElements) {
  const std::string path = FreshPath("record");
  {
    MenuBar program(Scene(R"({"id": "w", "actions": ["AXPress"]}, {"id": "v"})",
                          R"(, "record": ")" + path + R"(", "timeline": [{"at": 1, "remove": "v"}])"));
    EXPECT_EQ(program.run([&] { EXPECT_EQ(program.desktop().press("w"), HLAXErrorSuccess); }), 0);
    EXPECT_THAT(linesOf(path), testing::IsEmpty());
  }
  ASSERT_EQ(linesOf(path).size(), 1U);
  const json record = json::parse(linesOf(path)[0]);
  EXPECT_THAT(KeysOf(record),
              UnorderedElementsAre("at", "statusItem", "menu", "windows", "alerts", "appearance", "hotKey",
                                   "hotKeyAnswer", "recording", "openedAddresses", "loginItemStatus", "notifications",
                                   "beeps", "observers", "timers", "defaults", "actions", "present"));
  EXPECT_EQ(record["at"], 1);
  EXPECT_EQ(record["actions"], json::parse(R"([{"at": 0, "element": "w", "action": "AXPress", "code": 0}])"));
  EXPECT_EQ(record["present"], json::parse(R"(["w"])"));
}

// The program may leave windows, timers and hot keys to whatever calls it back, and those go last.
TEST(Simulator, GoesAfterWhatItsCallbacksOwn) {
  struct Owned {
    std::unique_ptr<HLWindow> window;
    std::unique_ptr<HLTimer> timer;
    std::unique_ptr<HLKeyMonitor> monitor;
    HLHotKeyRegistration hotKey;
  };
  for (int keeper = 0; keeper < 4; ++keeper) {
    const auto program = std::make_unique<MenuBar>(
        Timeline(R"({"at": 1, "terminate": true})", R"(, "services": {"http": {"/x": {"body": "", "seconds": 10}}})"));
    (void)program->run([&] {
      const auto owned = std::make_shared<Owned>();
      owned->window = program->open("W");
      owned->timer = program->runLoop().scheduleTimer(1, [] {});
      owned->monitor = program->host().application->addKeyMonitor([](const HLKeyEvent&) {});
      owned->hotKey = program->host().hotKeys->registerHotKey(1, 0, {"HLhk", 1});
      if (keeper == 0) program->at(9, [owned] {});
      if (keeper == 1)
        program->host().hotKeys->installHandler([owned](const auto&) { return HLHotKeyStatus::success; });
      if (keeper == 2) program->desktop().applications().observeLaunches([owned](const auto&) {});
      if (keeper == 3) program->host().httpClient->get("http://h/x", 15, [owned](const auto&) {});
    });
    EXPECT_EQ(program->dump()["windows"].size(), 1U);
  }
}

}  // namespace
