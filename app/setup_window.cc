#include <utility>

#include "app/access.h"
#include "app/app_delegate.h"
#include "base/format.h"
#include "core/scan/element_access.h"
#include "daemon/accessibility_request.h"
#include "platform/platform.h"

namespace {

constexpr const char* kStatusLabel = "setupStatusLabel";
constexpr const char* kPrimaryButton = "setupPrimaryButton";
constexpr const char* kOpenSettings = "Open Accessibility Settings";
constexpr double kPollInterval = 1.0;  // seconds

const HLAccessGuide kGuide = {
    "%@ clears notification banners by pressing their close buttons for you. macOS calls this Accessibility access. It "
    "only looks at Notification Center, and nothing leaves your Mac.",
    "1. Click Open Accessibility Settings.\n2. Turn on %@ in the list.\n3. Come back here. This window updates by "
    "itself.",
    "Already on, but it still asks? Select %@ in the list, remove it with the minus button, then click Open "
    "Accessibility Settings again and turn it on."};

std::string named(std::string text, const std::string& name) {
  for (std::size_t at = text.find("%@"); at != std::string::npos; at = text.find("%@", at + name.size())) {
    text.replace(at, 2, name);
  }
  return text;
}

}  // namespace

HLWindowDescription HLAppDelegate::setupWindowDescription() {
  const std::string name = HLAppDisplayName();
  const HLAccessGuide& guide = host_.accessGuide ? *host_.accessGuide : kGuide;
  HLWindowDescription window{HLFormat("Set Up %@", name), 460, 360, 24, 22, {}, {}};
  window.stack = {
      {HLLabel{"", "Allow Accessibility", 20, HLFontWeight::semibold}, 6, false},
      {HLLabel{"", named(guide.explanation, name), 13}, 12, true},
      {HLLabel{"", named(guide.steps, name), 13}, 12, true},
      {HLLabel{"", named(guide.note, name), 12, HLFontWeight::regular, HLTextColor::secondary}, 18, true},
      {HLLabel{kStatusLabel, "", 13, HLFontWeight::medium}, 12, true},
      {HLButton{kPrimaryButton, kOpenSettings, "\r", [this] { setupPrimaryAction(); }}, 12, false},
  };
  window.willClose = [this] { trustPollTimer_ = nullptr; };
  return window;
}

void HLAppDelegate::showSetupWindow() {
  if (setupWindow_ == nullptr) setupWindow_ = host_.windows->makeWindow(setupWindowDescription());
  updateSetupState();
  setupWindow_->fitHeight();
  setupWindow_->center();
  host_.application->activate();
  setupWindow_->makeKeyAndOrderFront();
  trustPollTimer_ = HLCurrentPlatform().runLoop->scheduleTimer(kPollInterval, [this] { updateSetupState(); });
}

void HLAppDelegate::updateSetupState() {
  // A trusted daemon does not count: this window waits for the permission of this process.
  if (!HLIsAccessibilityTrusted(false)) {
    setupWindow_->setLabel(kStatusLabel, "Waiting for Accessibility access…", HLTextColor::secondary);
    setupWindow_->setButtonTitle(kPrimaryButton, kOpenSettings);
  } else {
    const std::string hint =
        storedKeyCode() >= 0 && !host_.hotKeys->unsupportedReason()
            ? HLFormat("Press %@ or click the menu bar icon to clear notifications.", storedShortcutLabel())
            : "Click the menu bar icon to clear notifications.";
    setupWindow_->setLabel(kStatusLabel, HLFormat("Allowed. %@", hint), HLTextColor::green);
    setupWindow_->setButtonTitle(kPrimaryButton, "Done");
  }
  refreshStatusItem();
}

void HLAppDelegate::setupPrimaryAction() {
  if (HLIsAccessibilityTrusted(false)) {
    setupWindow_->close();
  } else {
    openAccessibilitySettings();
  }
}

void HLAppDelegate::openAccessibilitySettings() {
  (void)HLRequestAccessibility(true);
  HLOpenAccessibilitySettingsPane(host_.workspace);
}
