// The global shortcut: stored, registered, pressed, recorded and cleared.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/app/application_run.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

const std::string kRecord = Press("Record Shortcut", SettingsTitle);
const std::string kClear = Press("Clear", SettingsTitle);

std::string key(int code, const std::string& modifiers, const std::string& characters) {
  return R"("key": {"code": )" + std::to_string(code) + R"(, "modifiers": [)" + modifiers + R"(], "characters": ")" +
         characters + "\"}";
}

std::string shortcut(int code, const std::string& modifiers) {
  return R"("shortcut": {"code": )" + std::to_string(code) + R"(, "modifiers": [)" + modifiers + "]}";
}

std::string shownShortcut(const json& dump) { return SettingsOf(dump).shortcut["label"]; }
std::string recordTitle(const json& dump) { return SettingsOf(dump).record["button"]; }
std::string note(const json& dump) { return SettingsOf(dump).note["label"]; }
std::string noteColor(const json& dump) { return SettingsOf(dump).note["color"]; }

// The settings are opened, recording begins, and these events follow at 3, 4, ... seconds; the dump is made last.
ApplicationRun record(const std::vector<std::string>& events, const std::string& further = "") {
  ApplicationScene scene;
  scene.timeline = {At(1, OpenSettings), At(2, kRecord)};
  double moment = 3;
  for (const std::string& event : events) scene.timeline.push_back(At(moment++, event));
  scene.timeline.push_back(DumpAt(moment));
  scene.further = further;
  return RunApplication(scene);
}

TEST(Shortcut, DefaultsToControlOptionCommandN) {
  const ApplicationRun run = RunApplication({.timeline = {DumpAt(0)}});
  EXPECT_THAT(MessagesOf(run, "hotKey"), ElementsAre("hotKey register label=⌃⌥⌘N status=0"));
  EXPECT_EQ(run.dumps.at(0)["hotKey"], (json{{"code", 45}, {"modifiers", 0x1900}}));
  EXPECT_THAT(run.dumps.at(0)["defaults"], IsEmpty()) << "fallbacks are not stored";
}

TEST(Shortcut, RegistersTheStoredOneAtLaunch) {
  const ApplicationRun run = RunApplication(
      {.isProduct = false,
       .timeline = {DumpAt(0)},
       .further = R"(, "defaults": {"HLHotKeyCode": 96, "HLHotKeyModifiers": 131072, "HLHotKeyKeyLabel": "F5"})"});
  EXPECT_EQ(run.dumps.at(0)["hotKey"], (json{{"code", 96}, {"modifiers", 0x200}}));
}

// Trust comes while a shortcut is recorded: what the settings show of it is renewed at the end, and the auto-closer
// starts behind the hot key.
TEST(Recording, RefreshesSettingsHoweverItEnds) {
  const std::string further =
      R"(, "trusted": false, "defaults": {"HLAutoCloseAutomationBanners": true},
       "services": {"refusedHotKeys": [{"code": 40, "modifiers": ["command"], "status": -9878}]})";
  for (const std::string& last : {key(53, "", ""), key(40, R"("command")", "k"), key(0, R"("command")", "a"), kClear}) {
    const ApplicationRun run = record({CloseWindow(SetupTitle), R"("trust": true)", last}, further);
    EXPECT_EQ(SettingsOf(run.dumps.at(0)).access["color"], "green") << last;
    ASSERT_GE(run.log.size(), 2U);
    EXPECT_THAT(run.log.end()[-2], StartsWith("hotKey ")) << last;
    EXPECT_EQ(run.log.end()[-1], "auto-close watching pid=400 register=0") << last;
  }
}

TEST(Shortcut, IsNoneForNegativeCodes) {
  for (const char* code : {"-1", "-2", "-2147483649"}) {
    const ApplicationRun run =
        RunApplication({.timeline = {At(1, OpenSettings), DumpAt(2)},
                        .further = R"(, "defaults": {"HLHotKeyCode": )" + std::string(code) + "}"});
    EXPECT_EQ(shownShortcut(run.dumps.at(0)), "None") << code;
    EXPECT_EQ(run.dumps.at(0)["hotKey"], nullptr) << code;
    EXPECT_THAT(MessagesOf(run, "hotKey"), ElementsAre("hotKey none")) << code;
  }
}

TEST(Shortcut, ShowsAQuestionMarkWithoutLabel) {
  const ApplicationRun run = RunApplication({.isProduct = false,
                                             .timeline = {At(1, OpenSettings), DumpAt(2)},
                                             .further = R"(, "defaults": {"HLHotKeyCode": 96})"});
  EXPECT_EQ(shownShortcut(run.dumps.at(0)), "?");
}

TEST(Shortcut, StaysInactiveWhenRefusedAtLaunch) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(1, shortcut(45, R"("control", "option", "command")")), DumpAt(2)},
       .further =
           R"(, "services": {"refusedHotKeys": [{"code": 45, "modifiers": ["control", "option", "command"], "status": -9878}]})"});
  EXPECT_THAT(MessagesOf(run, "hotKey"), ElementsAre("hotKey register label=⌃⌥⌘N status=-9878"));
  EXPECT_EQ(run.dumps.at(0)["hotKey"], nullptr);
}

TEST(Shortcut, DismissesFromAnyProgram) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, shortcut(45, R"("control", "option", "command")")), DumpAt(9)},
                      .windows = BannerWindow({Banner("a", "Mail, One")})});
  EXPECT_THAT(MessagesOf(run, "hotKeyPressed"), ElementsAre("hotKeyPressed"));
  EXPECT_EQ(MessagesOf(run, "dismissNotifications started").size(), 1U);
  EXPECT_EQ(run.dumps.at(0)["hotKeyAnswer"], 0);
  EXPECT_THAT(run.record["present"], ElementsAre("window"));
}

TEST(HotKeyEvent, ReturnsBeforeTheDismissalBegins) {
  const ApplicationRun run =
      RunApplication({.isProduct = false,
                      .timeline = {At(1, R"("hotKey": {"signature": "HLhk", "id": 1})"), DumpAt(1), DumpAt(1)},
                      .windows = BannerWindow({Banner("a", "Mail, One")})});
  EXPECT_EQ(run.dumps.at(0)["hotKeyAnswer"], 0);
  EXPECT_EQ(run.dumps.at(0)["statusItem"]["title"], "HL");
}

TEST(HotKeyEvent, PassesOnOtherIdentities) {
  for (const char* event : {R"("hotKey": {"signature": "HLhk", "id": 2})",
                            R"("hotKey": {"signature": "HLhK", "id": 1})", R"("hotKey": null)"}) {
    const ApplicationRun run = RunApplication({.timeline = {At(1, event), DumpAt(2)}});
    EXPECT_EQ(run.dumps.at(0)["hotKeyAnswer"], -9874) << event;
    EXPECT_THAT(MessagesOf(run, "hotKeyPressed"), IsEmpty()) << event;
  }
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, R"("hotKey": {"signature": "HLhk", "id": 1})"), DumpAt(2)}});
  EXPECT_EQ(run.dumps.at(0)["hotKeyAnswer"], 0);
  EXPECT_EQ(MessagesOf(run, "hotKeyPressed").size(), 1U);
}

TEST(Recording, ReleasesTheCurrentShortcut) {
  const ApplicationRun run = record({shortcut(45, R"("control", "option", "command")")});
  EXPECT_EQ(recordTitle(run.dumps.at(0)), "Type Shortcut…");
  EXPECT_THAT(note(run.dumps.at(0)), StartsWith("Press "));
  EXPECT_EQ(noteColor(run.dumps.at(0)), "secondary");
  EXPECT_EQ(run.dumps.at(0)["recording"], true);
  EXPECT_EQ(run.dumps.at(0)["hotKey"], nullptr);
  EXPECT_THAT(MessagesOf(run, "hotKeyPressed"), IsEmpty());
}

TEST(Recording, RefusesKeysWithoutModifiers) {
  for (const char* modifiers : {"", R"("shift")", R"("capsLock", "function")"}) {
    const ApplicationRun run = record({key(0, modifiers, "a")});
    EXPECT_THAT(note(run.dumps.at(0)), StartsWith("Add "));
    EXPECT_EQ(noteColor(run.dumps.at(0)), "orange");
    EXPECT_EQ(run.dumps.at(0)["beeps"], 1);
    EXPECT_EQ(run.dumps.at(0)["recording"], true);
    EXPECT_THAT(run.dumps.at(0)["defaults"], IsEmpty());
  }
}

TEST(Recording, AcceptsEachOfThreeModifiers) {
  for (const auto& [name, flag, glyph] :
       {std::tuple{"control", 0x40000, "⌃"}, {"option", 0x80000, "⌥"}, {"command", 0x100000, "⌘"}}) {
    const ApplicationRun run = record({key(0, "\"" + std::string(name) + "\"", "a")});
    const json& dump = run.dumps.at(0);
    EXPECT_EQ(dump["defaults"], (json{{"HLHotKeyCode", 0}, {"HLHotKeyModifiers", flag}, {"HLHotKeyKeyLabel", "A"}}));
    EXPECT_EQ(shownShortcut(dump), std::string(glyph) + "A");
    EXPECT_THAT(note(dump), StartsWith("Saved."));
    EXPECT_EQ(noteColor(dump), "secondary");
    EXPECT_EQ(recordTitle(dump), "Record Shortcut");
    EXPECT_EQ(dump["recording"], false);
    EXPECT_EQ(dump["beeps"], 0);
    EXPECT_EQ(MessagesOf(run, "hotKey").back(), std::string("hotKey register label=") + glyph + "A status=0");
  }
}

TEST(Recording, AcceptsAFunctionKeyAlone) {
  const ApplicationRun run = record({key(96, "", "")});
  EXPECT_EQ(shownShortcut(run.dumps.at(0)), "F5");
  EXPECT_EQ(run.dumps.at(0)["hotKey"], (json{{"code", 96}, {"modifiers", 0}}));
}

TEST(Recording, DropsOtherModifiers) {
  const ApplicationRun run = record({key(11, R"("capsLock", "function", "shift", "command")", "b")});
  EXPECT_EQ(run.dumps.at(0)["defaults"]["HLHotKeyModifiers"], 0x120000);
  EXPECT_EQ(shownShortcut(run.dumps.at(0)), "⇧⌘B");
}

TEST(Recording, LabelsSilentKeysByCode) {
  EXPECT_EQ(shownShortcut(record({key(90, R"("control")", "")}).dumps.at(0)), "⌃Key 90");
}

TEST(Recording, IsCancelledByEscapeAlone) {
  for (const char* modifiers : {"", R"("capsLock")"}) {
    const ApplicationRun run = record({key(53, modifiers, "")});
    EXPECT_EQ(run.dumps.at(0)["recording"], false);
    EXPECT_EQ(shownShortcut(run.dumps.at(0)), "⌃⌥⌘N");
    EXPECT_EQ(run.dumps.at(0)["hotKey"]["code"], 45);
    EXPECT_THAT(run.dumps.at(0)["defaults"], IsEmpty());
  }
}

TEST(Recording, AcceptsEscapeWithAModifier) {
  const ApplicationRun run = record({key(53, R"("command")", "")});
  EXPECT_EQ(run.dumps.at(0)["defaults"]["HLHotKeyCode"], 53);
  EXPECT_EQ(shownShortcut(run.dumps.at(0)), "⌘⎋");
}

TEST(Recording, RefusesEscapeWithShift) {
  const ApplicationRun run = record({key(53, R"("shift")", "")});
  EXPECT_THAT(note(run.dumps.at(0)), StartsWith("Add "));
  EXPECT_EQ(run.dumps.at(0)["recording"], true);
}

TEST(Recording, RestoresOldShortcutOnSecondClick) {
  const ApplicationRun run = record({Press("Type Shortcut…", SettingsTitle)});
  EXPECT_EQ(run.dumps.at(0)["recording"], false);
  EXPECT_EQ(recordTitle(run.dumps.at(0)), "Record Shortcut");
  EXPECT_EQ(run.dumps.at(0)["hotKey"]["code"], 45);
}

TEST(Recording, ContinuesWhenSettingsAreReopened) {
  const ApplicationRun run = record({OpenSettings});
  EXPECT_EQ(run.dumps.at(0)["recording"], true);
  EXPECT_EQ(recordTitle(run.dumps.at(0)), "Type Shortcut…");
  EXPECT_EQ(run.dumps.at(0)["hotKey"], nullptr);
}

TEST(Recording, LeavesShortcutInactiveWhenWindowCloses) {
  const ApplicationRun run = record({CloseWindow(SettingsTitle), shortcut(45, R"("control", "option", "command")")});
  EXPECT_EQ(run.dumps.at(0)["recording"], false);
  EXPECT_EQ(recordTitle(run.dumps.at(0)), "Record Shortcut");
  EXPECT_EQ(run.dumps.at(0)["hotKey"], nullptr);
  EXPECT_EQ(MessagesOf(run, "hotKey").size(), 1U);
}

constexpr const char* kRefused =
    R"(, "services": {"refusedHotKeys": [{"code": 40, "modifiers": ["command"], "status": -9878}]})";

TEST(Recording, RestoresOldShortcutWhenRefused) {
  const ApplicationRun run = record({key(40, R"("command")", "k")}, kRefused);
  const json& dump = run.dumps.at(0);
  EXPECT_THAT(note(dump), StartsWith("⌘K is already used"));
  EXPECT_EQ(noteColor(dump), "orange");
  EXPECT_EQ(shownShortcut(dump), "⌃⌥⌘N");
  EXPECT_EQ(dump["hotKey"], (json{{"code", 45}, {"modifiers", 0x1900}}));
  EXPECT_EQ(dump["recording"], false);
  EXPECT_EQ(dump["defaults"], (json{{"HLHotKeyCode", 45}, {"HLHotKeyModifiers", 0x1C0000}, {"HLHotKeyKeyLabel", "N"}}));
  EXPECT_THAT(MessagesOf(run, "hotKey"),
              ElementsAre("hotKey register label=⌃⌥⌘N status=0", "hotKey register label=⌘K status=-9878",
                          "hotKey register label=⌃⌥⌘N status=0"));
}

TEST(Recording, TreatsNonzeroStatusAsRefusal) {
  for (const char* status : {"-9868", "1"}) {
    const ApplicationRun run = record({key(40, R"("command")", "k")}, R"(, "services": {"refusedHotKeys": [
      {"code": 40, "modifiers": ["command"], "status": )" + std::string(status) +
                                                                          "}]}");
    EXPECT_THAT(note(run.dumps.at(0)), StartsWith("⌘K is already used")) << status;
    EXPECT_EQ(run.dumps.at(0)["hotKey"]["code"], 45) << status;
  }
}

TEST(Recording, KeepsRefusedLabelWithoutOldOne) {
  ApplicationScene scene;
  scene.isProduct = false;
  scene.timeline = {At(1, OpenSettings), At(2, kRecord), At(3, key(40, R"("command")", "k")), DumpAt(4)};
  scene.further = kRefused;
  const ApplicationRun run = RunApplication(scene);
  EXPECT_EQ(run.dumps.at(0)["defaults"],
            (json{{"HLHotKeyCode", -1}, {"HLHotKeyModifiers", 0}, {"HLHotKeyKeyLabel", "K"}}));
  EXPECT_EQ(shownShortcut(run.dumps.at(0)), "None");
}

TEST(Clearing, LeavesNoShortcut) {
  ApplicationScene scene;
  scene.timeline = {At(1, OpenSettings), At(2, kClear), At(3, shortcut(45, R"("control", "option", "command")")),
                    DumpAt(4)};
  const ApplicationRun run = RunApplication(scene);
  const json& dump = run.dumps.at(0);
  EXPECT_EQ(shownShortcut(dump), "None");
  EXPECT_THAT(note(dump), StartsWith("No shortcut."));
  EXPECT_EQ(noteColor(dump), "secondary");
  EXPECT_EQ(dump["defaults"], (json{{"HLHotKeyCode", -1}}));
  EXPECT_EQ(dump["hotKey"], nullptr);
  EXPECT_THAT(MessagesOf(run, "hotKey"), ElementsAre("hotKey register label=⌃⌥⌘N status=0", "hotKey none"))
      << "and nothing is pressed";
}

TEST(Clearing, EndsARecording) {
  const ApplicationRun run = record({kClear});
  EXPECT_EQ(run.dumps.at(0)["recording"], false);
  EXPECT_EQ(recordTitle(run.dumps.at(0)), "Record Shortcut");
}

}  // namespace
