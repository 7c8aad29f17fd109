#include <utility>

#include "app/access.h"
#include "app/app_delegate.h"
#include "app/window_parts.h"
#include "base/format.h"
#include "core/scan/element_access.h"
#include "daemon/accessibility_request.h"
#include "platform/platform.h"

namespace {

constexpr const char* kStatusLabel = "setupStatusLabel";
constexpr const char* kPrimaryButton = "setupPrimaryButton";
constexpr double kPollInterval = 1.0;  // seconds

std::string named(std::string text, const std::string& name) {
  for (std::size_t at = text.find("%@"); at != std::string::npos; at = text.find("%@", at + name.size())) {
    text.replace(at, 2, name);
  }
  return text;
}

}  // namespace

HLWindowDescription HLAppDelegate::setupWindowDescription() {
  const std::string name = HLAppDisplayName();
  const HLConventions& texts = conventions();
  HLWindowDescription window = HLEmptyWindow(HLFormat("Set Up %@", name), 460, 360);
  window.stack = {
      {HLLabel{"", "Allow Accessibility", 20, HLFontWeight::semibold}, 6, false},
      {HLLabel{"", named(texts.accessExplanation, name), 13}, 12, true},
      {HLLabel{"", named(texts.accessSteps, name), 13}, 12, true},
      {HLLabel{"", named(texts.accessNote, name), 12, HLFontWeight::regular, HLTextColor::secondary}, 18, true},
      {HLLabel{kStatusLabel, "", 13, HLFontWeight::medium}, 12, true},
  };
  const HLButton primary{kPrimaryButton, texts.accessButton, "\r", [this] { setupPrimaryAction(); }};
  if (host_.trials != nullptr) {
    addTrial(window, {primary});
  } else {
    window.stack.push_back({primary, 12, false});
  }
  window.willClose = [this] { trustPollTimer_ = nullptr; };
  return window;
}

void HLAppDelegate::showSetupWindow() {
  if (setupWindow_ == nullptr) setupWindow_ = host_.windows->makeWindow(setupWindowDescription());
  updateSetupState();
  setupWindow_->fitHeight();
  bringToFront(*setupWindow_);
  trustPollTimer_ = HLCurrentPlatform().runLoop->scheduleTimer(kPollInterval, [this] { updateSetupState(); });
}

void HLAppDelegate::updateSetupState() {
  // A trusted daemon does not count: this window waits for the permission of this process.
  if (!HLIsAccessibilityTrusted(false)) {
    setupWindow_->setLabel(kStatusLabel, "Waiting for Accessibility access…", HLTextColor::secondary);
    setupWindow_->setButtonTitle(kPrimaryButton, conventions().accessButton);
  } else {
    setupWindow_->setLabel(kStatusLabel, HLFormat("Allowed. %@", dismissHint()), HLTextColor::green);
    setupWindow_->setButtonTitle(kPrimaryButton, "Done");
  }
  refreshTrialButtons();
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
