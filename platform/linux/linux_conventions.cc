#include "platform/linux/linux_conventions.h"

#include <array>
#include <memory>
#include <string_view>
#include <utility>

#include "platform/application/events.h"
#include "platform/linux/notifications/notification_protocol.h"
#include "platform/linux/session/bus.h"

namespace {

// Key labels are stored as the symbols of macOS keyboards.
constexpr std::array<std::pair<std::string_view, std::string_view>, 4> kKeyNames = {
    {{"↩", "Enter"}, {"⇥", "Tab"}, {"⌫", "Backspace"}, {"⎋", "Esc"}}};

// Returns, for example, "Ctrl+Alt+Super+N".
std::string shortcutText(std::uint64_t modifiers, const std::optional<std::string>& keyLabel) {
  std::string text;
  if ((modifiers & HLModifierControl) != 0) text += "Ctrl+";
  if ((modifiers & HLModifierOption) != 0) text += "Alt+";
  if ((modifiers & HLModifierShift) != 0) text += "Shift+";
  if ((modifiers & HLModifierCommand) != 0) text += "Super+";
  std::string_view key = keyLabel ? std::string_view(*keyLabel) : "?";
  for (const auto& [symbol, name] : kKeyNames) {
    if (key == symbol) key = name;
  }
  return text.append(key);
}

// Whether a Hushlet of this session knows the open notifications.
bool isHushletRunning() {
  const std::unique_ptr<HLBus> session = HLBus::openSession();
  if (session == nullptr) return false;
  const HLBusCall call{"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner"};
  const HLBusReply reply = session->call(call, "s", HLNotificationsName);
  int isOwned = 0;
  return reply && sd_bus_message_read_basic(reply.message.get(), 'b', &isOwned) > 0 && isOwned != 0;
}

}  // namespace

HLConventions HLLinuxConventions() {
  HLConventions conventions;
  conventions.accessExplanation =
      "%@ clears notification banners by pressing their close buttons for you. It reaches them through your "
      "desktop's accessibility interface. It only looks at the program that shows your notifications, and nothing "
      "leaves your computer.\n\n"
      "Some banners have no close button. To close those too, %@ watches which notifications are posted while it "
      "runs, and remembers the open ones in memory. It never stores, logs or sends them. The settings switch that off.";
  conventions.accessSteps =
      "1. Click Switch On Accessibility.\n"
      "2. If your desktop shows its settings, change nothing there.\n"
      "3. Come back here. This window updates by itself.";
  conventions.accessNote =
      "From then on all programs of your desktop, not only %@, offer their windows to assistive programs. That may "
      "make some of them a little slower. Programs that are running already may have to be started again before they "
      "do: if banners stay, log out and in once. Accessibility stays on until you switch it off in your desktop's "
      "settings; some desktops forget it when you log out.";
  conventions.accessButton = "Switch On Accessibility";
  conventions.icon = "tray icon";
  conventions.fallbackHint = "Run \"hushlet --dismiss-now\" to clear notifications.";
  conventions.modifierChoice = "Super, Alt or Ctrl";
  conventions.shortcutText = shortcutText;
  conventions.choice = {"HLWatchNotifications", "Watch Which Notifications Are Posted",
                        "In memory only, to close banners that have no close button. Counts from the next start."};
  conventions.spellsModifiers = true;
  conventions.offersAutoClose = false;
  conventions.offersUserRules = true;
  conventions.marksInactiveShortcuts = true;
  conventions.restoresShortcutNote = true;
  conventions.logsUnchangedPolls = false;
  conventions.explainsFailures = true;
  conventions.iconMayBeMissing = true;
  return conventions;
}

HLCommandAdvice HLLinuxCommandAdvice(std::function<bool()> showsUnclosableBanners) {
  return {
      "hushlet: accessibility is switched off, or this process is outside of the desktop session. Inside of it, run "
      "\"hushlet --request-accessibility\"; outside, start \"hushlet --daemon\" inside and use --daemon-dismiss.",
      "hushlet: no notification server runs in this session. Run hushlet in the session that shows the banners.",
      "hushlet: not every banner could be cleared. See the diagnostics log: ",
      [showsUnclosable = std::move(showsUnclosableBanners)]() -> std::string_view {
        if (isHushletRunning() || !showsUnclosable()) return "";
        return "hushlet: banners without a close button remain. Start Hushlet, or \"hushlet --daemon\", before they "
               "come: "
               "it closes them by their numbers.";
      },
  };
}
