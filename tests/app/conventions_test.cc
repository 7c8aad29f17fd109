// What the application says and does differently on hosts with other conventions.
#include "app/conventions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "app/dismiss_feedback.h"
#include "autoclose/user_rules.h"
#include "core/dismissal/result.h"
#include "platform/application/user_defaults.h"
#include "tests/app/spied_application.h"
#include "tests/support/window_titles.h"

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Ne;
using testing::Not;
using testing::StartsWith;

// The conventions of macOS with one member changed.
template <class Value>
HLConventions conventionsWith(Value HLConventions::*member, const Value& value) {
  HLConventions conventions = HLMacConventions();
  conventions.*member = value;
  return conventions;
}

TEST(Conventions, WordTheShortcutNotes) {
  Application application;
  application.host.platform.conventions = conventionsWith(&HLConventions::modifierChoice, std::string("This or That"));
  application.delegate->showSettingsWindow();
  const std::string need = ControlNamed<HLLabel>(application.host.windows.made.at(0), "shortcutNoteLabel").text;
  EXPECT_THAT(need, HasSubstr("This or That"));
  application.delegate->recordEvent({45, HLModifierShift, "n"});
  EXPECT_THAT(application.host.windows.labels["shortcutNoteLabel"], AllOf(HasSubstr("This or That"), Ne(need)));
}

TEST(Conventions, FormatShortcutsInWindowsOnly) {
  Application application;
  HLConventions conventions = conventionsWith(&HLConventions::icon, std::string("badge"));
  conventions.shortcutText = [](std::uint64_t modifiers, const std::optional<std::string>& label) {
    return std::to_string(modifiers) + "+" + label.value_or("?");
  };
  application.host.platform.conventions = conventions;
  application.delegate->applicationDidFinishLaunching();
  application.delegate->showSettingsWindow();
  application.delegate->showSetupWindow();
  LabelTexts& labels = application.host.windows.labels;
  EXPECT_EQ(labels["shortcutValueLabel"], "1835008+N");
  EXPECT_THAT(labels["setupStatusLabel"], AllOf(HasSubstr("1835008+N"), HasSubstr("badge")));
  EXPECT_THAT(application.messages("hotKey"), ElementsAre("hotKey register label=⌃⌥⌘N status=0"));
  application.host.hotKeys.status = HLHotKeyStatus::taken;
  application.delegate->recordEvent({45, HLModifierControl, "k"});
  EXPECT_THAT(labels["shortcutNoteLabel"], HasSubstr("262144+K"));
  application.delegate->clearShortcut();
  EXPECT_THAT(labels["shortcutNoteLabel"], HasSubstr("badge"));
}

// The settings window's shortcut and the note below it, and the setup window's hint, after a start.
Calls shownOfShortcut(bool marksInactive, HLHotKeyStatus status, const std::optional<std::string>& reason) {
  Application application(R"("trusted": true)");
  application.host.platform.conventions = conventionsWith(&HLConventions::marksInactiveShortcuts, marksInactive);
  application.host.hotKeys.status = status;
  application.host.hotKeys.reason = reason;
  application.delegate->applicationDidFinishLaunching();
  application.delegate->showSettingsWindow();
  application.delegate->showSetupWindow();
  LabelTexts& labels = application.host.windows.labels;
  return {labels["shortcutValueLabel"],
          ControlNamed<HLLabel>(application.host.windows.made.at(0), "shortcutNoteLabel").text,
          labels["setupStatusLabel"]};
}

TEST(Conventions, MarkAnInactiveShortcut) {
  const std::string works = "Works from any app. Needs at least one of Command, Option or Control, or an F key.";
  const std::string both = "Allowed. Press ⌃⌥⌘N or click the menu bar icon to clear notifications.";
  const std::string icon = "Allowed. Click the menu bar icon to clear notifications.";
  EXPECT_THAT(shownOfShortcut(true, HLHotKeyStatus::success, std::nullopt), ElementsAre("⌃⌥⌘N", works, both));
  EXPECT_THAT(shownOfShortcut(true, HLHotKeyStatus::failed, "None here."),
              ElementsAre("⌃⌥⌘N (not active)", "None here.", icon));
  EXPECT_THAT(shownOfShortcut(true, HLHotKeyStatus::taken, std::nullopt),
              ElementsAre("⌃⌥⌘N (not active)", "⌃⌥⌘N is already used by another app. Try a different one.", icon));
  EXPECT_THAT(shownOfShortcut(true, HLHotKeyStatus::failed, std::nullopt),
              ElementsAre("⌃⌥⌘N (not active)", "⌃⌥⌘N cannot be a shortcut here. Try a different one.", icon));
  EXPECT_THAT(shownOfShortcut(false, HLHotKeyStatus::taken, std::nullopt), ElementsAre("⌃⌥⌘N", works, both));
}

TEST(Conventions, MarkShortcutUntilOneIsRecorded) {
  Application application;
  application.host.platform.conventions = conventionsWith(&HLConventions::marksInactiveShortcuts, true);
  application.host.hotKeys.status = HLHotKeyStatus::failed;
  application.delegate->applicationDidFinishLaunching();
  application.delegate->showSettingsWindow();
  LabelTexts& labels = application.host.windows.labels;
  application.host.hotKeys.recorded = HLHotKeyStatus::failed;
  application.delegate->recordEvent({45, HLModifierControl, "k"});
  EXPECT_EQ(labels["shortcutValueLabel"], "⌃⌥⌘N (not active)");
  EXPECT_EQ(labels["shortcutNoteLabel"], "⌃K cannot be a shortcut here. Try a different one.");
  application.host.hotKeys.recorded = application.host.hotKeys.status = HLHotKeyStatus::success;
  application.delegate->recordEvent({45, HLModifierControl, "k"});
  EXPECT_EQ(labels["shortcutValueLabel"], "⌃K");
  application.host.hotKeys.status = HLHotKeyStatus::failed;
  application.delegate->clearShortcut();
  EXPECT_EQ(labels["shortcutValueLabel"], "None");
}

TEST(Conventions, NameTheSetupButton) {
  Application application(R"("trusted": false)");
  application.host.platform.conventions = conventionsWith(&HLConventions::accessButton, std::string("Do It"));
  application.delegate->showSetupWindow();
  EXPECT_EQ(ControlNamed<HLButton>(application.host.windows.made.at(0), "setupPrimaryButton").title, "Do It");
}

TEST(Conventions, GiveLongShortcutsTheirOwnLine) {
  for (const bool spells : {false, true}) {
    Application application;
    application.host.platform.conventions = conventionsWith(&HLConventions::spellsModifiers, spells);
    application.delegate->showSettingsWindow();
    const HLWindowDescription& settings = application.host.windows.made.at(0);
    const auto isShortcut = [](const HLStackItem& item) {
      const auto* label = std::get_if<HLLabel>(&item.what);
      return label != nullptr && label->name == "shortcutValueLabel";
    };
    EXPECT_EQ(std::any_of(settings.stack.begin(), settings.stack.end(), isShortcut), spells);
    EXPECT_EQ(ControlNamed<HLLabel>(settings, "shortcutValueLabel").size, 15);
    EXPECT_NO_THROW((void)ControlNamed<HLButton>(settings, "recordButton"));
  }
}

TEST(Conventions, HideTheAutoCloseCheckBox) {
  for (const bool offered : {false, true}) {
    Application application;
    application.host.platform.conventions = conventionsWith(&HLConventions::offersAutoClose, offered);
    application.delegate->showSettingsWindow();
    EXPECT_EQ(CheckBoxesOf(application.host.windows.made.at(0)),
              offered ? Calls({"autoCloseCheckbox", "openAtLoginCheckbox"}) : Calls({"openAtLoginCheckbox"}));
  }
}

TEST(Conventions, OfferTheHostsOwnChoice) {
  for (const bool stored : {true, false}) {
    Application application(R"("trusted": true)" + std::string(stored ? "" : R"(, "defaults": {"Watch": false})"));
    application.host.platform.conventions =
        conventionsWith(&HLConventions::choice, std::optional<HLHostChoice>({"Watch", "Watch It", "To see it."}));
    application.delegate->showSettingsWindow();
    const HLWindowDescription& settings = application.host.windows.made.at(0);
    const auto box = ControlNamed<HLCheckBox>(settings, "hostChoiceCheckbox");
    EXPECT_EQ(box.title, "Watch It");
    EXPECT_THAT(TextsOf(settings), Contains("To see it."));
    HLUserDefaults& defaults = application.host.platform.userDefaults;
    EXPECT_EQ(HLBooleanDefault(defaults, "Watch"), stored) << "on if nothing is stored";
    box.action(!stored);
    EXPECT_EQ(HLBooleanDefault(defaults, "Watch"), !stored);
    EXPECT_THAT(application.messages("choice"), ElementsAre(std::string("choice Watch=") + (stored ? "off" : "on")));
  }
}

// The orange lines and the check boxes of the settings window on a host with the user's own rules.
Calls autoCloseParts(const std::string& stored, Calls* mistakes) {
  Application application(R"("trusted": true, "defaults": {)" + stored + "}");
  HLConventions conventions = HLMacConventions();
  conventions.offersAutoClose = false;
  conventions.offersUserRules = true;
  application.host.platform.conventions = conventions;
  application.delegate->applicationDidFinishLaunching();
  application.delegate->showSettingsWindow();
  Calls parts;
  for (const HLLabel& label : ControlsOf<HLLabel>(application.host.windows.made.at(0))) {
    if (label.color == HLTextColor::orange) parts.push_back(label.text);
  }
  for (const std::string& name : CheckBoxesOf(application.host.windows.made.at(0))) parts.push_back(name);
  *mistakes = application.messages("autoClose mistake=");
  return parts;
}

TEST(Conventions, OfferTheUsersOwnRules) {
  Calls mistakes;
  EXPECT_THAT(autoCloseParts("", &mistakes), ElementsAre("openAtLoginCheckbox"));
  EXPECT_THAT(autoCloseParts(R"("HLAutoCloseRules": ["Backup|done"])", &mistakes),
              ElementsAre("autoCloseCheckbox", "openAtLoginCheckbox"));
  EXPECT_THAT(mistakes, IsEmpty());
  const std::string wrong = HLReadUserRules(std::string("Backup")).mistakes.at(0);
  EXPECT_THAT(autoCloseParts(R"("HLAutoCloseRules": ["Backup"])", &mistakes),
              ElementsAre(wrong, "openAtLoginCheckbox"));
  EXPECT_THAT(mistakes, ElementsAre("autoClose mistake=" + wrong));
}

TEST(Conventions, CloseByTheUsersOwnRules) {
  for (const bool on : {false, true}) {
    Application application(R"("trusted": true, "defaults": {"HLAutoCloseRules": ["Backup|done"],
      "HLAutoCloseAutomationBanners": )" +
                            std::string(on ? "true" : "false") + R"(}, "applications": [{"pid": 400,
      "bundleIdentifier": "com.apple.notificationcenterui"}])");
    HLConventions conventions = HLMacConventions();
    conventions.offersAutoClose = false;
    conventions.offersUserRules = true;
    application.host.platform.conventions = conventions;
    application.delegate->applicationDidFinishLaunching();
    EXPECT_EQ(application.messages("auto-close watching").size(), on ? 1U : 0U);
  }
}

TEST(Conventions, RestoreTheNoteAfterCanceling) {
  const auto cancelByEscape = [](HLAppDelegate& delegate, SpyHost&) { delegate.recordEvent({53, 0, ""}); };
  const auto cancelByButton = [](HLAppDelegate& delegate, SpyHost&) { delegate.toggleRecording(); };
  const auto closeWindow = [](HLAppDelegate&, SpyHost& host) { host.windows.made.at(0).willClose(); };
  const std::vector<std::function<void(HLAppDelegate&, SpyHost&)>> cancellations = {cancelByEscape, cancelByButton,
                                                                                    closeWindow};
  for (const auto& cancel : cancellations) {
    for (const bool restores : {false, true}) {
      Application application;
      application.host.platform.conventions = conventionsWith(&HLConventions::restoresShortcutNote, restores);
      application.delegate->showSettingsWindow();
      application.delegate->clearShortcut();
      const std::string& note = application.host.windows.labels["shortcutNoteLabel"];
      const std::string before = note;
      application.delegate->toggleRecording();
      cancel(*application.delegate, application.host);
      EXPECT_EQ(note == before, restores);
      application.host.calls.clear();
      application.delegate->stopRecording();
      EXPECT_THAT(application.host.calls, IsEmpty()) << "nothing is being recorded";
    }
  }
}

TEST(Conventions, LimitTheLogOfPolls) {
  for (const bool logsAll : {false, true}) {
    Application application(R"("trusted": false, "timeline": [{"at": 5.5, "trust": true}])");
    application.host.platform.conventions = conventionsWith(&HLConventions::logsUnchangedPolls, logsAll);
    application.delegate->refreshStatusItem();
    application.delegate->refreshStatusItem();
    EXPECT_EQ(application.messages("refreshStatusItem").size(), 2U) << "without a poll every refresh is logged";
    application.delegate->showSetupWindow();
    const std::size_t before = application.messages("refreshStatusItem").size();
    application.desktop.platform().runLoop->runFor(10);
    const std::size_t polls = application.messages("refreshStatusItem").size() - before;
    EXPECT_EQ(polls, logsAll ? 10U : 1U);
    EXPECT_EQ(application.messages("refreshStatusItem").back(), "refreshStatusItem available=true visible=true");
  }
}

// A banner that nothing can close.
constexpr const char* kUnclosable = R"("trusted": true, "applications": [{"pid": 400,
  "bundleIdentifier": "com.apple.notificationcenterui", "windows": [{"role": "AXWindow", "children": [
    {"role": "AXGroup", "subrole": "AXNotificationCenterAlert", "description": "Mail, One, Two"}]}]}])";
// Notification Center with an empty screen.
constexpr const char* kEmptyScreen =
    R"("trusted": true, "applications": [{"pid": 400, "bundleIdentifier": "com.apple.notificationcenterui"}])";

std::string reasonFor(HLDismissStatus status) { return HLFailureReason({status, 0, 0}, true, "Hushlet").value(); }
const std::string kNoButton = reasonFor(HLDismissStatusNothing);
const auto kIsToolTip = StartsWith("tool tip ");
const auto kIsUsualToolTip = AllOf(kIsToolTip, Ne("tool tip " + kNoButton));

// The application after one dismissal on a host that explains failures.
struct Dismissal : Application {
  explicit Dismissal(const std::string& scene, bool explains = true, bool hasIcon = true) : Application(scene) {
    host.platform.conventions = conventionsWith(&HLConventions::explainsFailures, explains);
    host.statusItem.visible = hasIcon;
    dismiss();
  }

  void dismiss() {
    delegate->dismissNotifications();
    desktop.platform().runLoop->runFor(2);
  }
};

TEST(Failure, ShowsBrieflyOnTheIcon) {
  Dismissal dismissal(kUnclosable);
  EXPECT_THAT(dismissal.host.calls, Contains("tool tip " + kNoButton));
  EXPECT_EQ(dismissal.host.calls.end()[-2], "image exclamationmark.triangle");
  EXPECT_THAT(dismissal.messages("dismissNotifications unfinished"),
              ElementsAre("dismissNotifications unfinished reason=" + kNoButton));
  dismissal.delegate->refreshStatusItem();
  EXPECT_EQ(dismissal.host.calls.end()[-2], "image exclamationmark.triangle") << "a refresh keeps the warning";
  EXPECT_THAT(dismissal.host.calls, Not(Contains(kIsUsualToolTip)));
  dismissal.desktop.platform().runLoop->runFor(10);
  EXPECT_THAT(dismissal.host.calls.end()[-3], kIsUsualToolTip);
  EXPECT_EQ(dismissal.host.calls.end()[-2], "image bell.slash");
  EXPECT_THAT(dismissal.host.windows.made, IsEmpty());
}

TEST(Failure, EndsWithTheNextDismissal) {
  Dismissal dismissal(kUnclosable);
  dismissal.host.calls.clear();
  dismissal.dismiss();
  ASSERT_GE(dismissal.host.calls.size(), 2U);
  EXPECT_THAT(dismissal.host.calls[0], kIsUsualToolTip);
  EXPECT_EQ(dismissal.host.calls[1], "image bell.slash");
}

TEST(Failure, OpensTheSettingsWithoutAnIcon) {
  Dismissal dismissal(kUnclosable, true, false);
  ASSERT_THAT(dismissal.host.windows.titles(), ElementsAre(SettingsTitle));
  const HLLabel last = ControlsOf<HLLabel>(dismissal.host.windows.made[0]).back();
  EXPECT_EQ(last.name, "failureLabel");
  EXPECT_EQ(last.text, "");
  const std::string& shown = dismissal.host.windows.labels["failureLabel"];
  EXPECT_EQ(shown, kNoButton);
  EXPECT_THAT(dismissal.host.calls, Not(Contains(kIsToolTip)));
  dismissal.host.windows.made[0].willClose();
  EXPECT_EQ(shown, "");
}

TEST(Failure, NeedsABannerOnScreen) {
  Dismissal dismissal(kEmptyScreen);
  EXPECT_THAT(dismissal.host.calls, Not(Contains(kIsToolTip)));
  EXPECT_THAT(dismissal.messages("dismissNotifications unfinished"), IsEmpty());
}

TEST(Failure, StaysSilentOnMacOS) {
  Dismissal dismissal(kUnclosable, false);
  EXPECT_THAT(dismissal.host.calls, Not(Contains(kIsToolTip)));
  EXPECT_THAT(dismissal.messages("dismissNotifications unfinished"), IsEmpty());
  dismissal.delegate->showSettingsWindow();
  EXPECT_THAT(dismissal.host.calls, Not(Contains("label failureLabel")));
}

TEST(Failure, NeverAsksForAccess) {
  Application application(R"("trusted": false, "services": {"grantOnPrompt": true}, "applications": [{"pid": 400,
    "bundleIdentifier": "com.apple.notificationcenterui"}])");
  EXPECT_FALSE(HLHasBanner());
  application.desktop.runLoop().runFor(1);
  EXPECT_FALSE(application.desktop.accessibility().isProcessTrusted(false));
}

TEST(Failure, ExplainsAMissingNotificationCenter) {
  Dismissal dismissal(R"("trusted": true)");
  EXPECT_THAT(dismissal.host.calls, Contains("tool tip " + reasonFor(HLDismissStatusNotificationCenterUnavailable)));
}

// Starts the application under the conventions of a host whose icon may be missing.
void launch(Application& application, bool hasIcon) {
  application.host.platform.conventions = conventionsWith(&HLConventions::iconMayBeMissing, true);
  application.host.statusItem.visible = hasIcon;
  application.delegate->applicationDidFinishLaunching();
  application.desktop.platform().runLoop->runFor(5);
}

TEST(FirstStart, OpensSettingsOnceWithoutAnIcon) {
  Application application;
  launch(application, false);
  EXPECT_THAT(application.host.windows.titles(), ElementsAre(SettingsTitle));
  application.host.calls.clear();
  launch(application, false);
  EXPECT_THAT(application.host.calls, Not(Contains("order front")));
}

TEST(FirstStart, OpensTheSettingsWithoutAccessToo) {
  Application application(R"("trusted": false)");
  launch(application, false);
  EXPECT_THAT(application.host.windows.titles(), ElementsAre(SetupTitle, SettingsTitle));
}

TEST(FirstStart, OpensNothingWithAnIcon) {
  Application application;
  launch(application, true);
  EXPECT_THAT(application.host.windows.made, IsEmpty());
  launch(application, false);
  EXPECT_EQ(application.host.windows.made.size(), 1U) << "the first start without one is still to come";
}

TEST(SetupHint, NamesOnlyWhatTheUserHas) {
  struct Case {
    bool hasIcon;
    bool hasHotKeys;
    const char* hint;
  };
  for (const auto& [hasIcon, hasHotKeys, hint] :
       {Case{true, true, "Press ⌃⌥⌘N or click the menu bar icon to clear notifications."},
        Case{true, false, "Click the menu bar icon to clear notifications."},
        Case{false, true, "Press ⌃⌥⌘N to clear notifications."}, Case{false, false, "Type it."}}) {
    Application application;
    application.host.platform.conventions = conventionsWith(&HLConventions::fallbackHint, std::string("Type it."));
    application.host.statusItem.visible = hasIcon;
    if (!hasHotKeys) application.host.hotKeys.reason = "None here.";
    application.delegate->applicationDidFinishLaunching();
    application.delegate->showSetupWindow();
    EXPECT_EQ(application.host.windows.labels["setupStatusLabel"], std::string("Allowed. ") + hint);
  }
}

}  // namespace
