#include <iostream>
#include <utility>

#include "app/access.h"
#include "app/app_delegate.h"
#include "base/format.h"
#include "base/log.h"
#include "base/paths.h"
#include "daemon/self_check.h"
#include "platform/application/events.h"
#include "platform/application/status_item.h"

namespace {

constexpr const char* kAccessibilityMenuItem = "accessibilityMenuItem";
constexpr const char* kSetUpTitle = "Set Up Accessibility…";
constexpr std::uint64_t kDeviceIndependentModifiers = 0xFFFF0000;

}  // namespace

void HLAppDelegate::installStatusItem() {
  const std::string name = HLAppDisplayName();
  HLMenu menu;
  menu.title = name;
  menu.needsUpdate = [this] { menuNeedsUpdate(); };
  menu.items = {{"", "Dismiss Notifications", "", [this] { dismissNotificationsFromMenu(); }},
                {},
                {kAccessibilityMenuItem, kSetUpTitle, "", [this] { showSetupWindow(); }},
                {"", "Settings…", ",", [this] { showSettingsWindow(); }}};
  if (HLIsProductFlavor()) {
    menu.items.push_back({"", "Check for Updates…", "", [this] { checkForUpdates(); }});
  } else {
    menu.items.push_back({"", "Run Self-Check", "", [this] { runSelfCheckFromMenu(); }});
  }
  menu.items.push_back({});
  menu.items.push_back({"", HLFormat("Quit %@", name), "q", [this] { quit(); }});
  host_.statusItem->install({toolTip(), [this] { handleStatusItemClick(); }, std::move(menu)});
}

std::string HLAppDelegate::toolTip() {
  return HLFormat("%@: click to clear notifications, right-click for options", HLAppDisplayName());
}

void HLAppDelegate::handleStatusItemClick() {
  const HLEvent event = host_.application->currentEvent().value_or(HLEvent{});
  const std::uint64_t modifiers = event.modifiers & kDeviceIndependentModifiers;
  HLAppendLog("handleClick type=%ld modifiers=%lu", event.type, modifiers);
  const bool isControlClick = event.type == HLEventLeftMouseUp && (modifiers & HLModifierControl) != 0;
  if (event.type == HLEventRightMouseUp || isControlClick) {
    host_.statusItem->popUpMenu();
  } else {
    dismissNotifications();
  }
}

void HLAppDelegate::menuNeedsUpdate() {
  const bool available = HLAccessibilityAvailable();
  host_.statusItem->setMenuItem(kAccessibilityMenuItem, available ? "Accessibility Allowed" : kSetUpTitle, available);
}

void HLAppDelegate::refreshStatusItem() {
  const bool available = HLAccessibilityAvailable();
  const bool warns = !available || failureTimer_ != nullptr;
  if (HLIsProductFlavor()) {
    host_.statusItem->setImage({warns ? "exclamationmark.triangle" : "bell.slash", true, HLAppDisplayName()});
    host_.statusItem->setTitle("");
  } else {
    host_.statusItem->setTitle(warns ? "HL!" : "HL");
  }
  const bool isPoll = trustPollTimer_ != nullptr;
  const bool changed = std::exchange(loggedAvailability_, available) != available;
  if (isPoll && !changed && !conventions().logsUnchangedPolls) return;
  HLAppendLog("refreshStatusItem available=%@ visible=true", available);
}

void HLAppDelegate::runSelfCheckFromMenu() {
  (void)HLSelfCheck(std::cout);
  std::cout.flush();
}
