#include <utility>

#include "app/app_delegate.h"
#include "app/shortcut_label.h"
#include "base/format.h"
#include "base/log.h"
#include "base/paths.h"
#include "platform/application/status_item.h"
#include "platform/application/user_defaults.h"
#include "platform/platform.h"

namespace {

constexpr const char* kCode = "HLHotKeyCode";
constexpr const char* kModifiers = "HLHotKeyModifiers";
constexpr const char* kKeyLabel = "HLHotKeyKeyLabel";

constexpr std::int64_t kNoKey = -1;

const HLHotKeyIdentity kIdentity = {"HLhk", 1};

struct StoredShortcut {
  std::int64_t code = kNoKey;
  std::uint64_t modifiers = 0;
  std::optional<std::string> label;
};

StoredShortcut readShortcut(HLUserDefaults& defaults) {
  return {HLIntegerDefault(defaults, kCode), static_cast<std::uint64_t>(HLIntegerDefault(defaults, kModifiers)),
          HLStringDefault(defaults, kKeyLabel)};
}

// Leaves the stored label unchanged if the shortcut has none.
void storeShortcut(HLUserDefaults& defaults, const StoredShortcut& shortcut) {
  defaults.setValue(kCode, shortcut.code);
  defaults.setValue(kModifiers, static_cast<std::int64_t>(shortcut.modifiers));
  if (shortcut.label) defaults.setValue(kKeyLabel, *shortcut.label);
}

HLHotKeyStatus HLHotKeyPressed(const std::optional<HLHotKeyIdentity>& identity,
                               const std::shared_ptr<HLAppDelegate>& delegate) {
  if (identity != kIdentity) return HLHotKeyStatus::notHandled;
  HLCurrentPlatform().runLoop->postToMainQueue([delegate] {
    HLAppendLog("hotKeyPressed");
    delegate->dismissNotifications();
  });
  return HLHotKeyStatus::success;
}

}  // namespace

// The stored shortcut

void HLAppDelegate::registerDefaultShortcut() {
  if (HLIsProductFlavor()) {
    constexpr std::int64_t kKeyN = 45;
    constexpr std::int64_t kFlags = HLModifierControl | HLModifierOption | HLModifierCommand;
    host_.userDefaults->registerDefaults({{kCode, kKeyN}, {kModifiers, kFlags}, {kKeyLabel, std::string("N")}});
  } else {
    host_.userDefaults->registerDefaults({{kCode, kNoKey}});
  }
}

std::int64_t HLAppDelegate::storedKeyCode() const { return readShortcut(host_.userDefaults).code; }

std::uint64_t HLAppDelegate::storedModifiers() const { return readShortcut(host_.userDefaults).modifiers; }

std::string HLAppDelegate::storedShortcutLabel() const {
  const StoredShortcut stored = readShortcut(host_.userDefaults);
  return stored.code < 0 ? "None" : HLShortcutLabel(stored.modifiers, stored.label);
}

std::string HLAppDelegate::shownShortcut() const {
  const StoredShortcut stored = readShortcut(host_.userDefaults);
  return stored.code < 0 ? "None" : conventions().shortcutText(stored.modifiers, stored.label);
}

bool HLAppDelegate::isShortcutInactive() const {
  if (storedKeyCode() < 0) return false;
  const bool isRefused = hotKeyStatus_ != HLHotKeyStatus::success && conventions().marksInactiveShortcuts;
  return isRefused || host_.hotKeys->unsupportedReason();
}

std::string HLAppDelegate::dismissHint() const {
  const bool hasShortcut = storedKeyCode() >= 0 && !isShortcutInactive();
  const bool hasIcon = host_.statusItem->isVisible();
  const std::string& icon = conventions().icon;
  if (hasShortcut && hasIcon) {
    return HLFormat("Press %@ or click the %@ to clear notifications.", shownShortcut(), icon);
  }
  if (hasShortcut) return HLFormat("Press %@ to clear notifications.", shownShortcut());
  return hasIcon ? HLFormat("Click the %@ to clear notifications.", icon) : conventions().fallbackHint;
}

std::string HLAppDelegate::shortcutRefusal() const {
  if (hotKeyStatus_ != HLHotKeyStatus::taken && conventions().marksInactiveShortcuts) {
    return HLFormat("%@ cannot be a shortcut here. Try a different one.", shownShortcut());
  }
  return HLFormat("%@ is already used by another app. Try a different one.", shownShortcut());
}

HLShortcutNote HLAppDelegate::noteOnStoredShortcut() const {
  if (const auto reason = host_.hotKeys->unsupportedReason()) return {*reason, HLTextColor::secondary};
  if (isShortcutInactive()) return {shortcutRefusal(), HLTextColor::orange};
  const std::string need =
      HLFormat("Works from any app. Needs at least one of %@, or an F key.", conventions().modifierChoice);
  return {host_.hotKeys->storageNote().value_or(need), HLTextColor::secondary};
}

// The hot key

void HLAppDelegate::installHotKeyHandler() {
  host_.hotKeys->installHandler([self = shared_from_this()](const std::optional<HLHotKeyIdentity>& identity) {
    return HLHotKeyPressed(identity, self);
  });
}

HLHotKeyStatus HLAppDelegate::applyStoredHotKey() {
  unregisterHotKey();
  const std::int64_t code = storedKeyCode();
  hotKeyStatus_ = HLHotKeyStatus::success;
  if (code < 0) {
    HLAppendLog("hotKey none");
    return HLHotKeyStatus::success;
  }
  HLHotKeyRegistration registration =
      host_.hotKeys->registerHotKey(static_cast<std::uint32_t>(code), HLCarbonModifiers(storedModifiers()), kIdentity);
  hotKeyStatus_ = registration.status;
  if (hotKeyStatus_ == HLHotKeyStatus::success) hotKeyRef_ = std::move(registration.hotKey);
  HLAppendLog("hotKey register label=%@ status=%d", storedShortcutLabel(), static_cast<std::int32_t>(hotKeyStatus_));
  return hotKeyStatus_;
}

// Recording

void HLAppDelegate::toggleRecording() {
  if (recordMonitor_ != nullptr) {
    stopRecording();
    applyStoredHotKey();
    return;
  }
  unregisterHotKey();  // so that the current shortcut can be typed without firing
  noteBeforeRecording_ = shortcutNote_;
  setRecordButtonTitle("Type Shortcut…");
  setShortcutNote({"Press the new shortcut. Escape cancels.", HLTextColor::secondary});
  recordMonitor_ = host_.application->addKeyMonitor([weak = weak_from_this()](const HLKeyEvent& event) {
    if (const auto self = weak.lock()) self->recordEvent(event);
  });
}

void HLAppDelegate::recordEvent(const HLKeyEvent& event) {
  const std::uint64_t flags = event.modifiers & HLShortcutModifiers;
  if (event.code == HLKeyEscape && flags == 0) {
    stopRecording();
    applyStoredHotKey();
    updateSettingsState();
    return;
  }
  if ((flags & ~HLModifierShift) == 0 && !HLIsFunctionKey(event.code)) {
    host_.application->beep();
    setShortcutNote({HLFormat("Add %@, or use an F key.", conventions().modifierChoice), HLTextColor::orange});
    return;
  }
  const StoredShortcut old = readShortcut(host_.userDefaults);
  storeShortcut(host_.userDefaults, {event.code, flags, HLKeyLabelForEvent(event)});
  stopRecording();
  hotKeyStatus_ = host_.hotKeys->userRecorded(static_cast<std::uint32_t>(event.code), HLCarbonModifiers(flags));
  const bool isStored = hotKeyStatus_ == HLHotKeyStatus::success;
  if (isStored) applyStoredHotKey();
  if (hotKeyStatus_ == HLHotKeyStatus::success) {
    updateSettingsState();
    const std::string where = host_.hotKeys->storageNote().value_or("Works from any app.");
    setShortcutNote({HLFormat("Saved. %@", where), HLTextColor::secondary});
    return;
  }
  const bool mayBeUnsupported = isStored && hotKeyStatus_ != HLHotKeyStatus::taken;
  const auto reason = mayBeUnsupported ? host_.hotKeys->unsupportedReason() : std::nullopt;
  const std::string refusal = reason.value_or(shortcutRefusal());
  storeShortcut(host_.userDefaults, old);
  applyStoredHotKey();
  updateSettingsState();
  setShortcutNote({refusal, HLTextColor::orange});
}

void HLAppDelegate::stopRecording() {
  const bool wasRecording = std::exchange(recordMonitor_, nullptr) != nullptr;
  setRecordButtonTitle("Record Shortcut");
  if (wasRecording && conventions().restoresShortcutNote) setShortcutNote(noteBeforeRecording_);
}

void HLAppDelegate::clearShortcut() {
  stopRecording();
  host_.userDefaults->setValue(kCode, kNoKey);
  host_.hotKeys->userCleared();
  applyStoredHotKey();
  updateSettingsState();
  setShortcutNote({HLFormat("No shortcut. %@", dismissHint()), HLTextColor::secondary});
}
