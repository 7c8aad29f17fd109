// What a scene's user does to the program's own interface, and what the program makes of it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/platform/sim/scene_menu_bar.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

// Clicks and the menu

// Notes each click with the event that the program sees.
void installItem(MenuBar& program, bool popsUp = false) {
  HLMenu menu{"Menu", {{"first", "First", "f", program.noting("first")}, {}, {"", "Second", "", {}}}, {}};
  menu.needsUpdate = program.noting("update");
  program.host().statusItem->install({"tip",
                                      [&program, popsUp] {
                                        const std::optional<HLEvent> event = program.host().application->currentEvent();
                                        program.note(event ? "click " + std::to_string(event->type) + " " +
                                                                 std::to_string(event->modifiers)
                                                           : "click");
                                        if (popsUp) program.host().statusItem->popUpMenu();
                                      },
                                      std::move(menu)});
}

TEST(Click, ComesWithItsEvent) {
  MenuBar program(Timeline(R"({"at": 1, "click": "left"}, {"at": 2, "click": "right"})"));
  EXPECT_EQ(program.run([&] { installItem(program); }), 0);
  EXPECT_THAT(program.entries(), ElementsAre("click 2 0@1000", "click 4 0@2000"));
  EXPECT_EQ(program.host().application->currentEvent().has_value(), false);
}

TEST(Click, CarriesItsModifiers) {
  std::string events;
  for (const char* name : {"capsLock", "shift", "control", "option", "command", "function"}) {
    events += R"({"at": 1, "click": "left", "modifiers": [")" + std::string(name) + R"("]}, )";
  }
  MenuBar program(Timeline(events + R"({"at": 1, "click": "right", "modifiers": ["shift", "control", "shift"]})"));
  (void)program.run([&] { installItem(program); });
  EXPECT_THAT(program.entries(),
              ElementsAre("click 2 65536@1000", "click 2 131072@1000", "click 2 262144@1000", "click 2 524288@1000",
                          "click 2 1048576@1000", "click 2 8388608@1000", "click 4 393216@1000"));
}

TEST(Click, SendsNoEventWithoutButton) {
  MenuBar program(Timeline(R"({"at": 1, "click": "none", "modifiers": ["shift"]})"));
  (void)program.run([&] { installItem(program); });
  EXPECT_THAT(program.entries(), ElementsAre("click@1000"));
}

TEST(Click, ChoosesNothingInTheMenu) {
  MenuBar program(Timeline(R"({"at": 1, "click": "right"})"));
  EXPECT_EQ(program.run([&] { installItem(program, true); }), 0);
  EXPECT_THAT(program.entries(), ElementsAre("click 4 0@1000", "update@1000"));
}

TEST(Click, NeedsAStatusItem) {
  MenuBar program(Timeline(R"({"at": 1, "click": "left"}, {"at": 1, "openMenu": true})"));
  EXPECT_EQ(program.run(), 0);
}

TEST(Menu, UpdatesAtEachOpening) {
  MenuBar program(Timeline(R"({"at": 1, "openMenu": true}, {"at": 2, "openMenu": true})"));
  (void)program.run([&] { installItem(program); });
  EXPECT_THAT(program.entries(), ElementsAre("update@1000", "update@2000"));
}

TEST(Menu, OpensForAChoice) {
  MenuBar program(Timeline(R"({"at": 1, "choose": "First"}, {"at": 1, "choose": "Second"})"));
  EXPECT_EQ(program.run([&] { installItem(program); }), 0);
  EXPECT_THAT(program.entries(), ElementsAre("update@1000", "first@1000", "update@1000"));
}

TEST(Menu, UsesUpdatedTitles) {
  MenuBar program(Timeline(R"({"at": 1, "choose": "Renamed"})"));
  EXPECT_EQ(program.run([&] {
    HLMenu menu{"Menu", {{"item", "Old", "", program.noting("chosen")}, {"", "Other", "", {}}}, {}};
    menu.needsUpdate = [&] { program.host().statusItem->setMenuItem("item", "Renamed", true); };
    program.host().statusItem->install({"", {}, std::move(menu)});
  }),
            0);
  EXPECT_THAT(program.entries(), ElementsAre("chosen@1000"));
  EXPECT_EQ(program.dump()["menu"], json::parse(R"([{"title": "Renamed", "key": "", "state": "on"},
                                                    {"title": "Other", "key": "", "state": "off"}])"));
}

// Windows

TEST(Press, PressesTheButtonOfThatTitle) {
  MenuBar program(Timeline(R"({"at": 1, "press": "Two", "window": "W"}, {"at": 2, "press": "New", "window": "W"})"));
  std::unique_ptr<HLWindow> window;
  EXPECT_EQ(program.run([&] {
    window = program.open("W", {{program.button("One")}, {HLRow{{program.button("Two"), HLLabel{}}, 4}}});
    program.at(1, [&] { window->setButtonTitle("One", "New"); });
  }),
            0);
  EXPECT_THAT(program.entries(), ElementsAre("Two@1000", "One@2000"));
}

TEST(Press, TogglesACheckBox) {
  MenuBar program(Timeline(R"({"at": 1, "press": "Box", "window": "W"}, {"at": 2, "press": "Box", "window": "W"})"));
  std::unique_ptr<HLWindow> window;
  (void)program.run([&] {
    const HLCheckBox box{"box", "Box", [&](bool on) { program.note(on ? "on" : "off"); }};
    window = program.open("W", {{box}});
    for (double moment : {0, 1, 2}) program.dumpAt(moment);
  });
  EXPECT_THAT(program.entries(), ElementsAre("on@1000", "off@2000"));
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(program.dumps().at(i)["windows"][0]["content"][0]["on"], i == 1);
}

TEST(Press, InvertsACheckBox) {
  MenuBar program(Timeline(R"({"at": 1, "press": "Box", "window": "W"})"));
  std::unique_ptr<HLWindow> window;
  (void)program.run([&] {
    window = program.open("W", {{HLCheckBox{"box", "Box", [&](bool on) { program.note(on ? "on" : "off"); }}}});
    window->setCheckBox("box", true);
  });
  EXPECT_THAT(program.entries(), ElementsAre("off@1000"));
}

TEST(Press, IgnoresDisabledControls) {
  MenuBar program(Timeline(R"({"at": 1, "press": "B", "window": "W"}, {"at": 1, "press": "Box", "window": "W"},
    {"at": 1, "key": {"code": 36}}, {"at": 1, "press": "Idle", "window": "W"})"));
  std::unique_ptr<HLWindow> window;
  EXPECT_EQ(program.run([&] {
    window = program.open("W", {{program.button("B", "\r")},
                                {HLCheckBox{"box", "Box", [&](bool) { program.note("toggled"); }}},
                                {HLButton{"", "Idle", "", {}}}});
    window->setEnabled("B", false);
    window->setEnabled("box", false);
  }),
            0);
  EXPECT_THAT(program.entries(), IsEmpty());
  EXPECT_EQ(program.dump()["windows"][0]["content"][0]["enabled"], false);
  EXPECT_EQ(program.dump()["windows"][0]["content"][1]["enabled"], false);
  EXPECT_EQ(program.dump()["windows"][0]["content"][1]["on"], false);
}

TEST(Press, PrefersTheFrontWindow) {
  MenuBar program(Timeline(R"({"at": 1, "press": "B", "window": "W"}, {"at": 2, "press": "B", "window": "W"})"));
  std::unique_ptr<HLWindow> first;
  std::unique_ptr<HLWindow> second;
  (void)program.run([&] {
    first = program.open("W", {{HLButton{"", "B", "", program.noting("first")}}});
    second = program.open("W", {{HLButton{"", "B", "", program.noting("second")}}});
    program.at(1, [&] { first->makeKeyAndOrderFront(); });
  });
  EXPECT_THAT(program.entries(), ElementsAre("second@1000", "first@2000"));
}

TEST(Window, IsHiddenWhenTheUserCloses) {
  MenuBar program(Timeline(R"({"at": 1, "closeWindow": "W"}, {"at": 3, "closeWindow": "W"})"));
  std::unique_ptr<HLWindow> window;
  EXPECT_EQ(program.run([&] {
    window = program.open("W");
    program.dumpAt(1);
    program.at(2, [&] { window->makeKeyAndOrderFront(); });
    program.dumpAt(2);
  }),
            0);
  EXPECT_THAT(program.entries(), ElementsAre("closed W@1000", "closed W@3000"));
  EXPECT_EQ(program.dumps().at(0)["windows"][0]["visible"], false);
  EXPECT_EQ(program.dumps().at(1)["windows"][0]["visible"], true);
}

TEST(Window, ReportsClosingOnce) {
  MenuBar program("{}");
  const std::unique_ptr<HLWindow> window = program.open("W");
  window->close();
  window->close();
  EXPECT_THAT(program.entries(), ElementsAre("closed W@0"));
}

TEST(Window, MayBeDestroyedWhileItCloses) {
  MenuBar program(Timeline(R"({"at": 1, "closeWindow": "W"})"));
  std::unique_ptr<HLWindow> window;
  EXPECT_EQ(program.run([&] {
    window = program.host().windows->makeWindow({"W", 10, 10, 0, 0, {}, [&] {
                                                   window = nullptr;
                                                   program.note("closed");
                                                 }});
    window->makeKeyAndOrderFront();
  }),
            0);
  EXPECT_THAT(program.entries(), ElementsAre("closed@1000"));
  EXPECT_THAT(program.dump()["windows"], IsEmpty());
}

std::vector<bool> keyWindows(const json& dump) {
  std::vector<bool> key;
  for (const json& window : dump["windows"]) key.push_back(window["key"]);
  return key;
}

TEST(Windows, OrderTheLastShownInFront) {
  MenuBar program(Timeline(R"({"at": 3, "closeWindow": "B"}, {"at": 4, "closeWindow": "A"})"));
  std::unique_ptr<HLWindow> a;
  std::unique_ptr<HLWindow> b;
  std::unique_ptr<HLWindow> c;
  (void)program.run([&] {
    a = program.open("A");
    b = program.open("B");
    c = program.host().windows->makeWindow({"C", 10, 10, 0, 0, {}, {}});
    program.at(1, [&] { a->makeKeyAndOrderFront(); });
    program.at(2, [&] { b->makeKeyAndOrderFront(); });
    for (double moment : {0, 1, 2, 3, 4}) program.dumpAt(moment);
  });
  EXPECT_THAT(keyWindows(program.dumps().at(0)), ElementsAre(false, true, false));
  EXPECT_THAT(keyWindows(program.dumps().at(1)), ElementsAre(true, false, false));
  EXPECT_THAT(keyWindows(program.dumps().at(2)), ElementsAre(false, true, false));
  EXPECT_THAT(keyWindows(program.dumps().at(3)), ElementsAre(true, false, false));
  EXPECT_THAT(keyWindows(program.dumps().at(4)), ElementsAre(false, false, false));
}

// Keys

TEST(Return, PressesTheFrontWindowsButton) {
  MenuBar program(Timeline(R"({"at": 1, "key": {"code": 36}}, {"at": 2, "key": {"code": 76}},
    {"at": 3, "closeWindow": "B"}, {"at": 4, "key": {"code": 36, "modifiers": [], "characters": "\r"}})"));
  std::unique_ptr<HLWindow> a;
  std::unique_ptr<HLWindow> b;
  (void)program.run([&] {
    a = program.open("A", {{program.button("plain")}, {program.button("of A", "\r")}});
    b = program.open("B", {{HLRow{{program.button("of B", "\r")}, 0}}});
  });
  EXPECT_THAT(program.entries(), ElementsAre("of B@1000", "closed B@3000", "of A@4000"));
}

TEST(Key, NeedsAnOpenWindow) {
  MenuBar program(Timeline(R"({"at": 1, "key": {"code": 36}}, {"at": 1, "key": {"code": 45}})"));
  std::unique_ptr<HLWindow> window;
  std::unique_ptr<HLKeyMonitor> monitor;
  EXPECT_EQ(program.run([&] {
    window = program.host().windows->makeWindow({"W", 10, 10, 0, 0, {{program.button("B", "\r")}}, {}});
    monitor = program.host().application->addKeyMonitor([&](const HLKeyEvent&) { program.note("key"); });
  }),
            0);
  EXPECT_THAT(program.entries(), IsEmpty());
}

TEST(Key, StopsAtTheMonitor) {
  MenuBar program(Timeline(R"({"at": 1, "key": {"code": 36, "modifiers": ["command", "function"]}},
    {"at": 2, "key": {"code": 45, "characters": "n"}}, {"at": 3, "key": {"code": 36}})"));
  std::unique_ptr<HLWindow> window;
  std::unique_ptr<HLKeyMonitor> monitor;
  (void)program.run([&] {
    window = program.open("W", {{program.button("B", "\r")}});
    monitor = program.host().application->addKeyMonitor([&](const HLKeyEvent& event) {
      program.note("key " + std::to_string(event.code) + " " + std::to_string(event.modifiers) + " \"" +
                   event.charactersIgnoringModifiers + "\"");
      if (event.code == 45) monitor = nullptr;
    });
    for (double moment : {0, 1, 2}) program.dumpAt(moment);
  });
  EXPECT_THAT(program.entries(), ElementsAre("key 36 9437184 \"\"@1000", "key 45 0 \"n\"@2000", "B@3000"));
  EXPECT_EQ(program.dumps().at(0)["recording"], true);
  EXPECT_EQ(program.dumps().at(1)["recording"], true);
  EXPECT_EQ(program.dumps().at(2)["recording"], false);
}

// Hot keys

TEST(Shortcut, FiresTheRegisteredHotKey) {
  MenuBar program(Timeline(R"({"at": 1, "shortcut": {"code": 45, "modifiers": ["command", "control", "option"]}},
    {"at": 2, "shortcut": {"code": 45, "modifiers": ["command", "control"]}},
    {"at": 3, "shortcut": {"code": 46, "modifiers": ["command", "control", "option"]}},
    {"at": 4, "shortcut": {"code": 1, "modifiers": ["shift", "capsLock", "function"]}},
    {"at": 6, "shortcut": {"code": 1, "modifiers": ["shift"]}})"));
  HLHotKeyRegistration first;
  HLHotKeyRegistration second;
  EXPECT_EQ(program.run([&] {
    HLHotKeys& hotKeys = program.host().hotKeys;
    hotKeys.installHandler([&](const std::optional<HLHotKeyIdentity>& identity) {
      program.note(identity->signature + " " + std::to_string(identity->id));
      return identity->id == 1 ? HLHotKeyStatus::success : HLHotKeyStatus::notHandled;
    });
    first = hotKeys.registerHotKey(45, HLHotKeyCommand | HLHotKeyControl | HLHotKeyOption, {"HLhk", 1});
    second = hotKeys.registerHotKey(1, HLHotKeyShift, {"HLhk", 2});
    for (double moment : {0, 1, 4}) program.dumpAt(moment);
    program.at(5, [&] { second.hotKey = nullptr; });
    program.dumpAt(5);
  }),
            0);
  EXPECT_THAT(program.entries(), ElementsAre("HLhk 1@1000", "HLhk 2@4000"));
  EXPECT_EQ(program.dumps().at(0)["hotKeyAnswer"], nullptr);
  EXPECT_EQ(program.dumps().at(1)["hotKeyAnswer"], 0);
  EXPECT_EQ(program.dumps().at(2)["hotKeyAnswer"], -9874);
  EXPECT_EQ(program.dumps().at(2)["hotKey"], json::parse(R"({"code": 1, "modifiers": 512})"));
  EXPECT_EQ(program.dumps().at(3)["hotKey"], json::parse(R"({"code": 45, "modifiers": 6400})"));
}

TEST(HotKeyEvent, HasTheIdentityOfTheScene) {
  MenuBar program(Timeline(R"({"at": 1, "hotKey": {"signature": "HLhk", "id": 4294967295}}, {"at": 2, "hotKey": null},
    {"at": 3, "shortcut": {"code": 1}})"));
  EXPECT_EQ(program.run([&] {
    program.host().hotKeys->installHandler([&](const std::optional<HLHotKeyIdentity>& identity) {
      program.note(identity ? identity->signature + " " + std::to_string(identity->id) : "none");
      return identity ? HLHotKeyStatus::success : HLHotKeyStatus::notHandled;
    });
    program.dumpAt(1);
  }),
            0);
  EXPECT_THAT(program.entries(), ElementsAre("HLhk 4294967295@1000", "none@2000"));
  EXPECT_EQ(program.dumps().at(0)["hotKeyAnswer"], 0);
  EXPECT_EQ(program.dump()["hotKeyAnswer"], -9874);
}

TEST(HotKeyEvent, NeedsAHandler) {
  MenuBar program(Timeline(R"({"at": 1, "hotKey": {"signature": "HLhk", "id": 1}})"));
  EXPECT_EQ(program.run(), 0);
  EXPECT_EQ(program.dump()["hotKeyAnswer"], nullptr);
}

// What is not there

struct Absence {
  const char* event;
  const char* line;
};

TEST(Title, EndsTheProgramWhenUnknown) {
  for (const Absence& absence : std::vector<Absence>{
           {R"("choose": "Third")", "timeline: the menu has no item \"Third\""},
           {R"("choose": "")", "timeline: the menu has no item \"\""},
           {R"("choose": "a\nb")", "timeline: the menu has no item \"a\\nb\""},
           {R"("press": "B", "window": "V")", "timeline: no window \"V\" is open"},
           {R"("press": "B", "window": "Hidden")", "timeline: no window \"Hidden\" is open"},
           {R"("press": "C", "window": "W")", "timeline: the window \"W\" has no button or check box \"C\""},
           {R"("press": "Label", "window": "W")", "timeline: the window \"W\" has no button or check box \"Label\""},
           {R"("closeWindow": "V")", "timeline: no window \"V\" is open"},
           {R"("closeWindow": "Hidden")", "timeline: no window \"Hidden\" is open"}}) {
    MenuBar program(Timeline(R"({"at": 1, )" + std::string(absence.event) +
                             R"(}, {"at": 1, "choose": "Fourth"}, {"at": 1, "openMenu": true}, {"at": 2, "quit": 1})"));
    std::unique_ptr<HLWindow> window;
    std::unique_ptr<HLWindow> hidden;
    testing::internal::CaptureStderr();
    const int code = program.run([&] {
      installItem(program);
      window = program.open("W", {{program.button("B")}, {HLLabel{"", "Label"}}});
      hidden = program.open("Hidden", {{program.button("B")}});
      hidden->close();
    });
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "scene.json: " + std::string(absence.line) + "\n");
    EXPECT_EQ(code, 2) << absence.event;
    EXPECT_EQ(program.desktop().simulator().elapsed(), 1);
  }
}

}  // namespace
