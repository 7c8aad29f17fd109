// What the application asks of its host that no dump shows: margins, the order of calls, the front, a missing host.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "app/access.h"
#include "app/app_delegate.h"
#include "app/conventions.h"
#include "platform/application/application_platform.h"
#include "platform/platform.h"
#include "platform/run_loop.h"
#include "tests/app/spied_application.h"
#include "tests/support/faults.h"
#include "tests/support/forwarding.h"
#include "tests/support/simulated_desktop.h"
#include "tests/support/spies.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/window_titles.h"

namespace {

using testing::ElementsAre;

TEST(RunningTheApplication, OpensSettingsOnSecondStart) {
  Application application;
  std::ostringstream err;
  EXPECT_EQ(HLRunApplication(err), 7);
  Calls& calls = application.host.calls;
  calls.erase(calls.begin(), std::find(calls.begin(), calls.end(), "launched"));
  EXPECT_THAT(calls, ElementsAre("launched", "label shortcutValueLabel", "label settingsAccessibilityLabel",
                                 "look at auto-close", "center", "activate", "order front"));
  ASSERT_THAT(application.host.windows.titles(), ElementsAre(SettingsTitle));
  EXPECT_EQ(application.host.windows.made[0].sideMargin, 24);
  EXPECT_EQ(application.host.windows.made[0].verticalMargin, 22);
}

TEST(RunningTheApplication, FailsWithoutAHost) {
  Application application;
  application.platform.applicationPlatform = [] { return FoundHost("nowhere to show it"); };
  std::ostringstream err;
  EXPECT_EQ(HLRunApplication(err), 1);
  EXPECT_EQ(err.str(), "nowhere to show it\n");
}

TEST(LaunchCalls, PrepareAccessibilityToStay) {
  class Spy : public ForwardingAccessibility {
   public:
    using ForwardingAccessibility::ForwardingAccessibility;
    void prepareToStay() override { ++preparations; }
    int preparations = 0;
  };
  Application application;
  Spy spy(application.accessibility);
  application.platform.accessibility = spy;
  application.delegate->applicationDidFinishLaunching();
  EXPECT_EQ(spy.preparations, 1);
}

TEST(LaunchCalls, FollowTheLaunchSequence) {
  Application application(R"("trusted": false, "arguments": ["hushlet", "--open-settings", "--appearance-dark"])");
  application.delegate->applicationDidFinishLaunching();
  Calls& calls = application.host.calls;
  calls.resize(16);  // the settings window follows
  EXPECT_THAT(calls,
              ElementsAre("register defaults", "install status item", "install hot key handler", "observe launches",
                          "look at auto-close", "register hot key", "image exclamationmark.triangle", "title ",
                          "label setupStatusLabel", "image exclamationmark.triangle", "title ", "fit height", "center",
                          "activate", "order front", "dark appearance"));
}

TEST(LaunchCalls, OpenSetupIfUntrustedAtFirst) {
  Application application(R"("trusted": true)", "Hushlet", 1);
  application.delegate->applicationDidFinishLaunching();
  EXPECT_THAT(application.host.windows.titles(), ElementsAre(SetupTitle));
}

TEST(LaunchCalls, TitleTheMenu) {
  Application application;
  application.delegate->applicationDidFinishLaunching();
  EXPECT_EQ(application.host.statusItem.installed.menu.title, "Hushlet");
}

TEST(UpdateCheckCalls, ActivateThenAlertOnMainQueue) {
  Application application;
  application.delegate->checkForUpdates();
  application.desktop.platform().runLoop->runFor(0.1);
  EXPECT_THAT(application.host.calls, ElementsAre("answered", "activate", "alert"));
}

TEST(SetupWindowCalls, DescribeItsSizeAndMargins) {
  Application application;
  application.delegate->showSetupWindow();
  const HLWindowDescription& setup = application.host.windows.made.at(0);
  EXPECT_EQ(setup.title, SetupTitle);
  EXPECT_EQ(setup.width, 460);
  EXPECT_EQ(setup.height, 360);
  EXPECT_EQ(setup.sideMargin, 24);
  EXPECT_EQ(setup.verticalMargin, 22);
}

TEST(SetupWindowCalls, InsertTheNameIntoHostTexts) {
  Application application(R"("trusted": false)", "A%@");
  HLConventions conventions = HLMacConventions();
  conventions.accessExplanation = "%@ explains %@.";
  conventions.accessSteps = "Steps";
  conventions.accessNote = "A note on %@";
  application.host.platform.conventions = conventions;
  application.delegate->showSetupWindow();
  EXPECT_THAT(TextsOf(application.host.windows.made.at(0)),
              ElementsAre(testing::_, "A%@ explains A%@.", "Steps", "A note on A%@", ""));
}

TEST(SetupWindowCalls, MakeTheWindowOnce) {
  Application application;
  application.delegate->showSetupWindow();
  application.delegate->showSetupWindow();
  EXPECT_EQ(application.host.windows.made.size(), 1U);
}

TEST(SetupWindowCalls, OpenThePaneWithAccessToo) {
  Application application;
  application.delegate->openAccessibilitySettings();
  EXPECT_EQ(application.messages("requestAccessibility trusted=true").size(), 1U);
  EXPECT_EQ(application.messages("openAccessibilitySettings opened=x-apple").size(), 1U);
}

TEST(AccessibilitySettingsPane, SaysWhetherItHasOpened) {
  const Application willing;
  EXPECT_TRUE(HLOpenAccessibilitySettingsPane(willing.host.platform.workspace));
  const Application unwilling(R"("services": {"opens": []})");
  EXPECT_FALSE(HLOpenAccessibilitySettingsPane(unwilling.host.platform.workspace));
}

TEST(ClickCalls, OpenTheMenuOnSecondaryClicks) {
  constexpr std::uint64_t kControl = 0x40000;
  struct Click {
    HLEvent event;
    const char* modifiers;  // as they are logged
    bool opensMenu;
  };
  for (const auto& [event, modifiers, opensMenu] :
       {Click{{4, 0}, "0", true}, Click{{2, kControl}, "262144", true}, Click{{2, 0x40101}, "262144", true},
        Click{{2, 0x80040000}, "2147745792", true}, Click{{2, 0xFFFF}, "0", false}, Click{{2, 0x100000000}, "0", false},
        Click{{1, kControl}, "262144", false}, Click{{3, kControl}, "262144", false},
        Click{{0, kControl}, "262144", false}}) {
    Application application;
    application.host.application.event = event;
    application.delegate->handleStatusItemClick();
    application.desktop.platform().runLoop->runFor(1);  // to the end of the dismissal
    const bool opened = !application.host.calls.empty() && application.host.calls.front() == "pop up menu";
    EXPECT_EQ(opened, opensMenu) << event.type << " " << event.modifiers;
    EXPECT_THAT(application.messages("handleClick"),
                ElementsAre("handleClick type=" + std::to_string(event.type) + " modifiers=" + modifiers));
  }
}

HLWindowView view(const std::string& title, double width, double height, const std::optional<std::string>& png = "") {
  return {title, true, width, height, [png] { return png; }};
}

std::set<std::string> filesIn(const std::string& directory) {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(directory)) names.insert(entry.path().filename());
  return names;
}

TEST(HostWithoutHotKeys, BlamesNoOtherProgram) {
  Application application;
  SpyHost& host = application.host;
  host.hotKeys.status = HLHotKeyStatus::failed;
  host.hotKeys.reason = "None here.";
  application.delegate->showSettingsWindow();
  EXPECT_EQ(ControlNamed<HLLabel>(host.windows.made.at(0), "shortcutNoteLabel").text, "None here.");
  application.delegate->recordEvent({45, HLModifierControl, "n"});
  EXPECT_EQ(host.windows.labels["shortcutNoteLabel"], "None here.");
}

TEST(Snapshots, NameFilesByNumberAndTitle) {
  const TemporaryDirectory pictures;
  Application application(R"("arguments": ["hushlet", "--snapshot-windows", ")" + pictures.path() + "\"]");
  HLWindowView hidden = view("Hidden", 100, 100);
  hidden.visible = false;
  std::filesystem::create_directory(pictures.path() + "/03-Taken.png");
  std::ofstream(pictures.path() + "/00-First.png") << "an older one";
  application.host.windows.shown = {view("First", 419.6, 279.4, "the picture"),
                                    hidden,
                                    view("Without width", 0, 100),
                                    view("Without height", 100, 0),
                                    view("", 1, 1),
                                    view("Without picture", 30, 40, std::nullopt),
                                    view("Taken", 50, 60),
                                    view("Last", 70, 80)};
  application.delegate->applicationDidFinishLaunching();
  application.desktop.platform().runLoop->runFor(2);
  EXPECT_THAT(application.messages("snapshot"),
              ElementsAre("snapshot window=First size=420x279 wrote=1", "snapshot window=window-1 size=1x1 wrote=1",
                          "snapshot window=Without picture size=30x40 wrote=0",
                          "snapshot window=Taken size=50x60 wrote=0", "snapshot window=Last size=70x80 wrote=1"));
  EXPECT_THAT(filesIn(pictures.path()), ElementsAre("00-First.png", "01-window-1.png", "03-Taken.png", "04-Last.png"));
  EXPECT_EQ(FileContent(pictures.path() + "/00-First.png"), "the picture");
}

TEST(Snapshots, UseTwoDigits) {
  const TemporaryDirectory pictures;
  Application application(R"("arguments": ["hushlet", "--snapshot-windows", ")" + pictures.path() + "\"]");
  application.host.windows.shown.assign(11, view("W", 10, 20));
  application.delegate->applicationDidFinishLaunching();
  application.desktop.platform().runLoop->runFor(2);
  const std::set<std::string> files = filesIn(pictures.path());
  EXPECT_EQ(files.size(), 11U);
  EXPECT_EQ(*files.begin(), "00-W.png");
  EXPECT_EQ(*files.rbegin(), "10-W.png");
}

TEST(Snapshots, UseCurrentDirectoryForEmptyName) {
  const TemporaryDirectory pictures;
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(pictures.path());
  Application application(R"("arguments": ["hushlet", "--snapshot-windows", ""])");
  application.host.windows.shown = {view("First", 10, 20)};
  application.delegate->applicationDidFinishLaunching();
  application.desktop.platform().runLoop->runFor(2);
  std::filesystem::current_path(before);
  EXPECT_THAT(filesIn(pictures.path()), ElementsAre("00-First.png"));
}

TEST(KeptShortcuts, AreRecordedWithTheHost) {
  Application application;
  application.host.hotKeys.note = "Kept by the desktop.";
  application.delegate->showSettingsWindow();
  application.delegate->recordEvent({45, HLModifierControl, "k"});
  const std::string& note = application.host.windows.labels["shortcutNoteLabel"];
  EXPECT_THAT(note, testing::EndsWith(" Kept by the desktop."));
  EXPECT_EQ(application.delegate->storedModifiers(), HLModifierControl);

  application.host.hotKeys.recorded = HLHotKeyStatus::taken;
  application.host.hotKeys.reason = "not active";
  application.delegate->recordEvent({45, HLModifierOption, "k"});
  EXPECT_THAT(note, testing::StartsWith("⌥K "));
  EXPECT_EQ(application.delegate->storedModifiers(), HLModifierControl) << "the former one stays";

  EXPECT_EQ(application.host.hotKeys.cleared, 0);
  application.delegate->clearShortcut();
  EXPECT_EQ(application.host.hotKeys.cleared, 1);
}

}  // namespace
