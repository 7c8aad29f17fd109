#include "app/access.h"
#include "app/app_delegate.h"
#include "app/window_parts.h"
#include "autoclose/rules.h"
#include "base/format.h"
#include "base/log.h"
#include "base/paths.h"
#include "core/scan/element_access.h"
#include "core/scan/notification_center.h"
#include "platform/application/login_item.h"
#include "platform/application/user_defaults.h"

namespace {

constexpr const char* kAutoClose = "HLAutoCloseAutomationBanners";

constexpr const char* kShortcutValueLabel = "shortcutValueLabel";
constexpr const char* kShortcutNoteLabel = "shortcutNoteLabel";
constexpr const char* kRecordButton = "recordButton";
constexpr const char* kAccessibilityLabel = "settingsAccessibilityLabel";
constexpr const char* kAutoCloseCheckbox = "autoCloseCheckbox";
constexpr const char* kHostChoiceCheckbox = "hostChoiceCheckbox";
constexpr const char* kOpenAtLoginCheckbox = "openAtLoginCheckbox";
constexpr const char* kFailureLabel = "failureLabel";

constexpr double kRepeatAfter = 5;  // seconds

HLStackItem heading(const char* text) { return {HLLabel{"", text, 13, HLFontWeight::semibold}, 8, false}; }

}  // namespace

HLWindowDescription HLAppDelegate::settingsWindowDescription() {
  HLWindowDescription window = HLEmptyWindow(HLFormat("%@ Settings", HLAppDisplayName()), 420, 280);
  shortcutNote_ = noteOnStoredShortcut();
  const HLLabel shortcut{kShortcutValueLabel, "", 15, HLFontWeight::medium};
  const HLButton record{kRecordButton, "Record Shortcut", "", [this] { toggleRecording(); }};
  const HLButton clear{"", "Clear", "", [this] { clearShortcut(); }};
  const std::vector<HLControl> accessibility = {
      HLLabel{kAccessibilityLabel, "", 13}, HLButton{"", "Set Up Accessibility", "", [this] { showSetupWindow(); }}};
  window.stack = {heading("Shortcut")};
  if (conventions().spellsModifiers) {
    window.stack.push_back({shortcut, 8, true});
    window.stack.push_back({HLRow{{record, clear}, HLRowSpacing}, 8, false});
  } else {
    window.stack.push_back({HLRow{{shortcut, record, clear}, HLRowSpacing}, 8, false});
  }
  const std::vector<HLStackItem> rest = {
      {HLLabel{kShortcutNoteLabel, shortcutNote_.text, 12, HLFontWeight::regular, shortcutNote_.color}, 18, true},
      heading("Accessibility"),
  };
  window.stack.insert(window.stack.end(), rest.begin(), rest.end());
  if (host_.trials != nullptr) {
    addTrial(window, accessibility);
  } else {
    window.stack.push_back({HLRow{accessibility, HLRowSpacing}, 18, false});
  }
  addAutoClose(window);
  addHostChoice(window);
  if (HLIsProductFlavor()) {
    window.stack.push_back(
        {HLCheckBox{kOpenAtLoginCheckbox, "Open at Login", [this](bool on) { toggleOpenAtLogin(on); }}, 8, false});
  }
  if (conventions().explainsFailures) {
    window.stack.push_back({HLLabel{kFailureLabel, "", 12, HLFontWeight::regular, HLTextColor::orange}, 8, true});
  }
  window.willClose = [this] {
    stopRecording();
    showFailureInSettings("");
  };
  return window;
}

void HLAppDelegate::showSettingsWindow() {
  if (settingsWindow_ == nullptr) settingsWindow_ = host_.windows->makeWindow(settingsWindowDescription());
  updateSettingsState();
  bringToFront(*settingsWindow_);
}

void HLAppDelegate::updateSettingsState() {
  const bool isInactive = isShortcutInactive();
  settingsWindow_->setLabel(kShortcutValueLabel, shownShortcut() + (isInactive ? " (not active)" : ""),
                            isInactive ? HLTextColor::secondary : HLTextColor::label);
  const bool trusted = HLIsAccessibilityTrusted(false);
  settingsWindow_->setLabel(kAccessibilityLabel, trusted ? "Allowed" : "Not allowed yet",
                            trusted ? HLTextColor::green : HLTextColor::orange);
  if (HLIsProductFlavor()) {
    settingsWindow_->setCheckBox(kOpenAtLoginCheckbox, host_.loginItem->status() == HLLoginItemStatus::enabled);
  }
  refreshTrialButtons();
  settingsWindow_->setEnabled(kRecordButton, true);
  settingsWindow_->setEnabled(kAutoCloseCheckbox, true);
  settingsWindow_->setCheckBox(kAutoCloseCheckbox, HLBooleanDefault(host_.userDefaults, kAutoClose));
  if (conventions().choice) {
    settingsWindow_->setCheckBox(kHostChoiceCheckbox, HLBooleanDefault(host_.userDefaults, conventions().choice->key));
  }
  updateAutoCloser();
}

void HLAppDelegate::addHostChoice(HLWindowDescription& window) {
  if (!conventions().choice) return;
  const HLHostChoice& choice = *conventions().choice;
  host_.userDefaults->registerDefaults({{choice.key, true}});
  const auto store = [this, key = choice.key](bool on) {
    host_.userDefaults->setValue(key, on);
    HLAppendLog("choice %@=%@", key, on ? "on" : "off");
  };
  window.stack.push_back({HLCheckBox{kHostChoiceCheckbox, choice.title, store}, 2, false});
  window.stack.push_back({HLLabel{"", choice.note, 12, HLFontWeight::regular, HLTextColor::secondary}, 8, true});
}

void HLAppDelegate::showFailureInSettings(const std::string& reason) {
  if (conventions().explainsFailures) settingsWindow_->setLabel(kFailureLabel, reason, HLTextColor::orange);
}

void HLAppDelegate::setShortcutNote(const HLShortcutNote& note) {
  shortcutNote_ = note;
  settingsWindow_->setLabel(kShortcutNoteLabel, note.text, note.color);
}

void HLAppDelegate::setRecordButtonTitle(const std::string& title) {
  settingsWindow_->setButtonTitle(kRecordButton, title);
}

// Banners that are closed as they appear

void HLAppDelegate::readUserRules() {
  if (!conventions().offersUserRules) return;
  userRules_ = HLReadUserRules(host_.userDefaults->value(HLUserRulesKey));
  for (const std::string& mistake : userRules_.mistakes) HLAppendLog("autoClose mistake=%@", mistake);
}

void HLAppDelegate::addAutoClose(HLWindowDescription& window) {
  const auto addBox = [this, &window](const char* title) {
    window.stack.push_back({HLCheckBox{kAutoCloseCheckbox, title, [this](bool on) { toggleAutoClose(on); }}, 8, false});
  };
  if (conventions().offersAutoClose) addBox("Close Shortcuts Automation Banners");
  if (!userRules_.rules.empty()) addBox("Close Banners by Your Own Rules");
  for (const std::string& mistake : userRules_.mistakes) {
    window.stack.push_back({HLLabel{"", mistake, 12, HLFontWeight::regular, HLTextColor::orange}, 8, true});
  }
}

void HLAppDelegate::toggleAutoClose(bool on) {
  host_.userDefaults->setValue(kAutoClose, on);
  HLAppendLog("autoClose want=%@", on ? "on" : "off");
  updateAutoCloser();
}

void HLAppDelegate::updateAutoCloser() {
  // The auto-closer presses in this process and cannot use a trusted daemon.
  const bool hasRules = conventions().offersAutoClose || !userRules_.rules.empty();
  const bool want = hasRules && HLBooleanDefault(host_.userDefaults, kAutoClose) && HLIsAccessibilityTrusted(false);
  if (!want) {
    autoCloser_ = nullptr;
    return;
  }
  const std::optional<HLRunningApplication> center = HLNotificationCenterApplication();
  if (autoCloser_ != nullptr && autoCloser_->pid() != 0 && center && autoCloser_->pid() == center->pid) return;
  if (autoCloser_ == nullptr) {
    autoCloser_ = std::make_unique<HLAutoCloser>();
    autoCloser_->setRules(conventions().offersAutoClose ? HLAutoCloseRules(std::nullopt) : userRules_.rules);
    // Unlike an automation's banner, such a banner may appear again with equal texts.
    if (!conventions().offersAutoClose) autoCloser_->setRepeatAfter(kRepeatAfter);
  }
  autoCloser_->startForCurrentNotificationCenter();
}

// Open at login

void HLAppDelegate::toggleOpenAtLogin(bool on) {
  const HLLoginItemOutcome outcome = on ? host_.loginItem->registerItem() : host_.loginItem->unregisterItem();
  HLAppendLog("openAtLogin want=%@ ok=%@ status=%ld error=%@", on ? "on" : "off", outcome.ok,
              static_cast<std::int64_t>(host_.loginItem->status()), outcome.error.value_or("none"));
  updateSettingsState();
}
