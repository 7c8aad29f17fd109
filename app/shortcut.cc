#include <utility>

#include "app/app_delegate.h"
#include "app/shortcut_label.h"
#include "base/format.h"
#include "base/log.h"
#include "base/paths.h"
#include "platform/platform.h"
#include "platform/user_defaults.h"

namespace {

constexpr const char* kCode = "HLHotKeyCode";
constexpr const char* kModifiers = "HLHotKeyModifiers";
constexpr const char* kKeyLabel = "HLHotKeyKeyLabel";

constexpr std::int64_t kNoKey = -1;

const HLHotKeyIdentity kIdentity = {"HLhk", 1};

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

// What is stored

void HLAppDelegate::registerDefaultShortcut() {
  if (HLIsProductFlavor()) {
    constexpr std::int64_t kKeyN = 45;
    constexpr std::int64_t kFlags = HLModifierControl | HLModifierOption | HLModifierCommand;
    host_.userDefaults->registerDefaults({{kCode, kKeyN}, {kModifiers, kFlags}, {kKeyLabel, std::string("N")}});
  } else {
    host_.userDefaults->registerDefaults({{kCode, kNoKey}});
  }
}

std::int64_t HLAppDelegate::storedKeyCode() const { return HLIntegerDefault(host_.userDefaults, kCode); }

std::uint64_t HLAppDelegate::storedModifiers() const {
  return static_cast<std::uint64_t>(HLIntegerDefault(host_.userDefaults, kModifiers));
}

std::optional<std::string> HLAppDelegate::storedKeyLabel() const {
  return HLStringDefault(host_.userDefaults, kKeyLabel);
}

std::string HLAppDelegate::storedShortcutLabel() const {
  return storedKeyCode() < 0 ? "None" : HLShortcutLabel(storedModifiers(), storedKeyLabel());
}

void HLAppDelegate::storeShortcut(std::int64_t code, std::uint64_t modifiers, const std::optional<std::string>& label) {
  host_.userDefaults->setValue(kCode, code);
  host_.userDefaults->setValue(kModifiers, static_cast<std::int64_t>(modifiers));
  if (label) host_.userDefaults->setValue(kKeyLabel, *label);
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
  if (code < 0) {
    HLAppendLog("hotKey none");
    return HLHotKeyStatus::success;
  }
  HLHotKeyRegistration registration =
      host_.hotKeys->registerHotKey(static_cast<std::uint32_t>(code), HLCarbonModifiers(storedModifiers()), kIdentity);
  if (registration.status == HLHotKeyStatus::success) hotKeyRef_ = std::move(registration.hotKey);
  HLAppendLog("hotKey register label=%@ status=%d", storedShortcutLabel(),
              static_cast<std::int32_t>(registration.status));
  return registration.status;
}

// Recording

void HLAppDelegate::toggleRecording() {
  if (recordMonitor_ != nullptr) {
    stopRecording();
    applyStoredHotKey();
    return;
  }
  unregisterHotKey();  // so that the current shortcut can be typed without firing
  setRecordButtonTitle("Type Shortcut…");
  setShortcutNote("Press the new shortcut. Escape cancels.", HLTextColor::secondary);
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
    setShortcutNote("Add Command, Option or Control, or use an F key.", HLTextColor::orange);
    return;
  }
  const std::int64_t oldCode = storedKeyCode();
  const std::uint64_t oldModifiers = storedModifiers();
  const std::optional<std::string> oldLabel = storedKeyLabel();
  storeShortcut(event.code, flags, HLKeyLabelForEvent(event));
  stopRecording();
  if (applyStoredHotKey() == HLHotKeyStatus::success) {
    updateSettingsState();
    setShortcutNote("Saved. Works from any app.", HLTextColor::secondary);
    return;
  }
  const std::string refused = storedShortcutLabel();
  storeShortcut(oldCode, oldModifiers, oldLabel);
  applyStoredHotKey();
  updateSettingsState();
  const std::string taken = HLFormat("%@ is already used by another app. Try a different one.", refused);
  setShortcutNote(host_.hotKeys->unsupportedReason().value_or(taken), HLTextColor::orange);
}

void HLAppDelegate::stopRecording() {
  recordMonitor_ = nullptr;
  setRecordButtonTitle("Record Shortcut");
}

void HLAppDelegate::clearShortcut() {
  stopRecording();
  host_.userDefaults->setValue(kCode, kNoKey);
  applyStoredHotKey();
  updateSettingsState();
  setShortcutNote("No shortcut. Click the menu bar icon to clear notifications.", HLTextColor::secondary);
}
