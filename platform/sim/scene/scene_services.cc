#include "platform/sim/scene/scene_services.h"

#include <limits>
#include <map>
#include <string>
#include <vector>

namespace {

constexpr std::int64_t kMostKeyCode = 0xFFFF;
constexpr std::int64_t kMostUnsigned = 0xFFFFFFFF;
constexpr std::int64_t kOK = 200;

using Keys = std::vector<std::string_view>;

const std::map<std::string_view, Keys>& userEvents() {
  static const std::map<std::string_view, Keys> events = {
      {"click", {"click", "modifiers"}}, {"choose", {"choose"}},           {"openMenu", {"openMenu"}},
      {"shortcut", {"shortcut"}},        {"hotKey", {"hotKey"}},           {"key", {"key"}},
      {"press", {"press", "window"}},    {"closeWindow", {"closeWindow"}}, {"dump", {"dump"}},
      {"terminate", {"terminate"}}};
  return events;
}

std::uint64_t readModifiers(HLSceneSource& source, const HLSceneSpot& object) {
  static const std::map<std::string_view, std::uint64_t> flags = {
      {"shift", HLModifierShift},     {"control", HLModifierControl},   {"option", HLModifierOption},
      {"command", HLModifierCommand}, {"capsLock", HLModifierCapsLock}, {"function", HLModifierFunction}};
  const auto key = source.find(object, "modifiers");
  if (!key) return 0;
  std::uint64_t modifiers = 0;
  for (const HLSceneSpot& member : source.members(*key)) {
    const auto flag =
        flags.find(source.word(member, {"shift", "control", "option", "command", "capsLock", "function"}));
    if (flag != flags.end()) modifiers |= flag->second;
  }
  return modifiers;
}

std::uint16_t readKeyCode(HLSceneSource& source, const HLSceneSpot& object) {
  return static_cast<std::uint16_t>(source.integer(source.require(object, "code"), 0, kMostKeyCode));
}

HLSceneClick readClick(HLSceneSource& source, const HLSceneSpot& spot) {
  const std::string button = source.word(source.require(spot, "click"), {"left", "right", "none"});
  const std::uint64_t modifiers = readModifiers(source, spot);
  if (button == "none") return {};
  return {HLEvent{button == "right" ? HLEventRightMouseUp : HLEventLeftMouseUp, modifiers}};
}

HLSceneHotKey readHotKey(HLSceneSource& source, const HLSceneSpot& spot) {
  if (spot.json->is_null()) return {};
  source.expectObject(spot, {"signature", "id"});
  HLHotKeyIdentity identity;
  identity.signature = source.string(source.require(spot, "signature"));
  identity.id = static_cast<std::uint32_t>(source.integer(source.require(spot, "id"), 0, kMostUnsigned));
  return {identity};
}

HLKeyEvent readKey(HLSceneSource& source, const HLSceneSpot& spot) {
  source.expectObject(spot, {"code", "modifiers", "characters"});
  HLKeyEvent event{readKeyCode(source, spot), readModifiers(source, spot), ""};
  if (const auto key = source.find(spot, "characters")) event.charactersIgnoringModifiers = source.string(*key);
  return event;
}

HLSceneShortcut readShortcut(HLSceneSource& source, const HLSceneSpot& spot) {
  source.expectObject(spot, {"code", "modifiers"});
  return {readKeyCode(source, spot), readModifiers(source, spot)};
}

void checkTrue(HLSceneSource& source, const HLSceneSpot& spot) {
  if (!spot.json->is_boolean() || !spot.json->get<bool>()) source.fail(spot, "expected true");
}

std::optional<std::string> readTextOrNull(HLSceneSource& source, const HLSceneSpot& object, std::string_view name) {
  const auto spot = source.find(object, name);
  if (!spot || spot->json->is_null()) return std::nullopt;
  if (!spot->json->is_string()) source.fail(*spot, "expected a string or null");
  return source.failed() ? std::string() : source.string(*spot);
}

HLSceneLoginItem readLoginItem(HLSceneSource& source, const HLSceneSpot& spot) {
  source.expectObject(spot, {"status", "registerError", "unregisterError", "statusAfterRegister"});
  HLSceneLoginItem item;
  if (const auto key = source.find(spot, "status")) item.status = source.integer(*key, 0, 3);
  if (const auto key = source.find(spot, "statusAfterRegister")) item.statusAfterRegister = source.integer(*key, 0, 3);
  item.registerError = readTextOrNull(source, spot, "registerError");
  item.unregisterError = readTextOrNull(source, spot, "unregisterError");
  return item;
}

HLSceneUserNotifications readUserNotifications(HLSceneSource& source, const HLSceneSpot& spot) {
  source.expectObject(spot, {"permission", "error", "addErrors"});
  HLSceneUserNotifications service;
  if (const auto key = source.find(spot, "permission")) {
    const std::string permission = source.word(*key, {"granted", "denied", "silent"});
    service.permission = permission == "granted"  ? HLScenePermission::granted
                         : permission == "denied" ? HLScenePermission::denied
                                                  : HLScenePermission::silent;
  }
  service.error = readTextOrNull(source, spot, "error");
  if (const auto key = source.find(spot, "addErrors")) {
    for (const HLSceneSpot& entry : source.entries(*key))
      service.addErrors.emplace_back(source.keyText(entry), source.string(entry));
  }
  return service;
}

HLSceneHTTPAnswer readHTTPAnswer(HLSceneSource& source, const HLSceneSpot& spot) {
  source.expectObject(spot, {"status", "body", "error", "seconds"});
  const auto status = source.find(spot, "status");
  const auto body = source.find(spot, "body");
  const auto error = source.find(spot, "error");
  if (error.has_value() == (status || body)) source.fail(spot, "expected \"status\" and \"body\", or \"error\"");
  HLSceneHTTPAnswer made;
  made.path = source.keyText(spot);
  if (const auto seconds = source.find(spot, "seconds")) made.seconds = source.seconds(*seconds);
  if (error) {
    (void)source.string(*error);
    return made;
  }
  made.answer = {kOK, ""};
  if (status) made.answer.status = source.integer(*status, 0, 999);
  if (body) made.answer.body = source.string(*body);
  return made;
}

HLSceneRefusedHotKey readRefusedHotKey(HLSceneSource& source, const HLSceneSpot& spot) {
  source.expectObject(spot, {"code", "modifiers", "status"});
  return {readKeyCode(source, spot), readModifiers(source, spot), source.code(source.require(spot, "status"))};
}

}  // namespace

bool HLIsUserEvent(std::string_view kind) { return userEvents().contains(kind); }

const std::vector<std::string_view>& HLUserEventKeys(std::string_view kind) { return userEvents().at(kind); }

HLSceneUserEvent HLReadUserEvent(HLSceneSource& source, const HLSceneSpot& spot, std::string_view kind) {
  const HLSceneSpot what = source.require(spot, kind);
  if (kind == "click") return readClick(source, spot);
  if (kind == "choose") return HLSceneChoose{source.string(what)};
  if (kind == "shortcut") return readShortcut(source, what);
  if (kind == "hotKey") return readHotKey(source, what);
  if (kind == "key") return readKey(source, what);
  if (kind == "press") return HLScenePress{source.string(what), source.string(source.require(spot, "window"))};
  if (kind == "closeWindow") return HLSceneCloseWindow{source.string(what)};
  if (kind == "dump") return HLSceneDump{source.string(what)};
  checkTrue(source, what);
  if (kind == "openMenu") return HLSceneOpenMenu{};
  return HLSceneTerminate{};
}

HLSceneServices HLReadServices(HLSceneSource& source, const HLSceneSpot& spot) {
  source.expectObject(
      spot, {"grantOnPrompt", "opens", "refusedHotKeys", "loginItem", "userNotifications", "http", "alertAnswers"});
  HLSceneServices services;
  if (const auto key = source.find(spot, "grantOnPrompt")) services.grantOnPrompt = source.boolean(*key);
  if (const auto key = source.find(spot, "opens")) services.opens = source.strings(*key);
  if (const auto key = source.find(spot, "alertAnswers")) services.alertAnswers = source.strings(*key);
  if (const auto key = source.find(spot, "refusedHotKeys")) {
    for (const HLSceneSpot& refused : source.members(*key))
      services.refusedHotKeys.push_back(readRefusedHotKey(source, refused));
  }
  if (const auto key = source.find(spot, "loginItem")) services.loginItem = readLoginItem(source, *key);
  if (const auto key = source.find(spot, "userNotifications"))
    services.userNotifications = readUserNotifications(source, *key);
  if (const auto key = source.find(spot, "http")) {
    for (const HLSceneSpot& answer : source.entries(*key)) services.http.push_back(readHTTPAnswer(source, answer));
  }
  return services;
}
