#include "tests/swarm/generate/words.h"

#include <array>
#include <cstdio>
#include <string_view>

#include "tests/swarm/generate/plan.h"

namespace {

using namespace std::string_view_literals;

constexpr std::array kWords = {
    "close"sv,        "dismiss"sv,        "clear"sv,   "xmark"sv,       "reply"sv,
    "open"sv,         "options"sv,        "show"sv,    "view"sv,        "accept"sv,
    "decline"sv,      "allow"sv,          "later"sv,   "snooze"sv,      "mute"sv,
    "unmute"sv,       "play"sv,           "pause"sv,   "call"sv,        "manage"sv,
    "clear menu"sv,   "menu item"sv,      "button"sv,  "menu"sv,        "menu bar"sv,
    "menubar"sv,      "notification"sv,   "stacked"sv, "from iphone"sv, "axnotificationlistitems"sv,
    "Notification"sv, "Center"sv,         "from"sv,    "iPhone"sv,      "CLOSE"sv,
    "Clear All"sv,    "axnotification"sv, "preview"sv, "reopen"sv,      "Running your automation"sv};

constexpr std::array kStrange = {"|"sv,
                                 ", "sv,
                                 ","sv,
                                 "success|3|0"sv,
                                 "\n"sv,
                                 "a\nb"sv,
                                 "\r\n\t\v"sv,
                                 "\x01\x1b[31m"sv,
                                 "\x7f"sv,
                                 "%@ %s %n %ld"sv,
                                 "\u00a0\u2003\u200b\u3000"sv,
                                 "\u0130\u0131\u1e9e\ufb01"sv,
                                 "\u039f\u03a3"sv,
                                 "\u05e9\u05dc\u05d5\u05dd"sv,
                                 "\u0645\u0631\u062d\u0628\u0627 \u202ex"sv,
                                 "\u4f60\u597d"sv,
                                 "\u0e2a\u0e27\u0e31\u0e2a\u0e14\u0e35"sv,
                                 "\u0928\u092e\u0938\u094d\u0924\u0947"sv,
                                 "\U0001F468\u200d\U0001F469\u200d\U0001F467"sv,
                                 "\U0001D54F"sv,
                                 "e\u0301\u0301\u0301"sv,
                                 kHalfMark,
                                 "\ufeff\ufffd"sv,
                                 "0"sv,
                                 "-9223372036854775808"sv,
                                 "{n}"sv,
                                 "\u017f\u212a close \u212a"sv};

constexpr std::array kApplications = {"Mail"sv, "Chat"sv, "Shortcuts"sv, "SHORTCUTS"sv, "Reminders"sv, ""sv, "A|B"sv};

std::string hugeText(Random& random) {
  std::string text;
  const std::size_t length = 100U + random.below(random.chance(5) ? 6000 : 400);
  const std::string_view piece = random.chance(50) ? random.pick(kStrange) : "lorem "sv;
  while (text.size() < length) text += piece;
  return text;
}

}  // namespace

std::string HostileText(Random& random) {
  const std::size_t kind = random.below(20);
  if (kind == 0) return "";
  if (kind == 1) return random.chance(30) ? hugeText(random) : "  ";
  std::string text;
  for (std::size_t count = 1 + random.below(3); count > 0; --count) {
    if (!text.empty() && random.chance(80)) text += ' ';
    text += kind < 6 && random.chance(60) ? random.pick(kStrange) : random.pick(kWords);
  }
  return text;
}

std::string AlertText(Random& random) {
  std::string text(random.pick(kApplications));
  if (random.chance(90)) text += ", ";
  if (random.chance(12)) return text + "Running your automation";
  if (random.chance(70)) return text + "Letter " + std::to_string(random.below(1000));
  return text + HostileText(random);
}

std::string ActionName(Random& random) {
  static constexpr std::array kActions = {
      "AXPress"sv,    "AXPress"sv,        "Name:Close"sv, "Name:Close\nTarget:0x0"sv,
      "AXClose"sv,    "Name:Clear All"sv, "Dismiss"sv,    "AXShowMenu"sv,
      "Name:Reply"sv, "axpress"sv,        "NAME:CLEAR"sv, "AXCancel"sv,
      "Name:Show"sv,  "Enclose|x"sv,      "\u212alose"sv, ""sv};
  return std::string(random.pick(kActions));
}

std::string RoleName(Random& random) {
  static constexpr std::array kRoles = {"AXGroup"sv,      "AXGroup"sv,      "AXButton"sv,     "AXButton"sv,
                                        "axbutton"sv,     "AXImage"sv,      "AXStaticText"sv, "AXMenuItem"sv,
                                        "AXMenuButton"sv, "AXScrollArea"sv, "AXWindow"sv,     ""sv};
  return std::string(random.pick(kRoles));
}

std::string SubroleName(Random& random) {
  static constexpr std::array kSubroles = {"AXNotificationCenterAlert"sv,
                                           "AXNotificationCenterBanner"sv,
                                           "AXNotificationCenterAlertStack"sv,
                                           "axNOTIFICATIONcenter"sv,
                                           "AXCloseButton"sv,
                                           "AXMenuThing"sv,
                                           ""sv};
  return std::string(random.pick(kSubroles));
}

std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte < 0x20) {
      std::array<char, 8> escape{};
      std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(byte));
      quoted += escape.data();
    } else {
      if (character == '"' || character == '\\') quoted += '\\';
      quoted += character;
    }
  }
  return quoted + '"';
}
