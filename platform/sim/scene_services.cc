#include "platform/sim/scene_services.h"

#include <limits>
#include <map>
#include <string>

namespace {

using Keys = std::initializer_list<std::string_view>;

constexpr std::int64_t kMostKeyCode = 0xFFFF;
constexpr std::int64_t kMostUnsigned = 0xFFFFFFFF;

const std::map<std::string_view, Keys>& userEvents() {
  static const Keys click = {"click", "modifiers"};
  static const Keys choose = {"choose"};
  static const Keys openMenu = {"openMenu"};
  static const Keys shortcut = {"shortcut"};
  static const Keys hotKey = {"hotKey"};
  static const Keys key = {"key"};
  static const Keys press = {"press", "window"};
  static const Keys closeWindow = {"closeWindow"};
  static const Keys dump = {"dump"};
  static const Keys terminate = {"terminate"};
  static const std::map<std::string_view, Keys> events = {{"click", click},       {"choose", choose},
                                                          {"openMenu", openMenu}, {"shortcut", shortcut},
                                                          {"hotKey", hotKey},     {"key", key},
                                                          {"press", press},       {"closeWindow", closeWindow},
                                                          {"dump", dump},         {"terminate", terminate}};
  return events;
}

void checkModifiers(HLSceneSource& source, const HLSceneSpot& spot) {
  for (const HLSceneSpot& member : source.members(spot)) {
    (void)source.word(member, {"shift", "control", "option", "command", "capsLock", "function"});
  }
}

// {"code": 45, "modifiers": [...]} and what else may stand with it.
void checkKey(HLSceneSource& source, const HLSceneSpot& spot, Keys keys) {
  source.expectObject(spot, keys);
  (void)source.integer(source.require(spot, "code"), 0, kMostKeyCode);
  if (const auto modifiers = source.find(spot, "modifiers")) checkModifiers(source, *modifiers);
  if (const auto characters = source.find(spot, "characters")) (void)source.string(*characters);
}

void checkTrue(HLSceneSource& source, const HLSceneSpot& spot) {
  if (!spot.json->is_boolean() || !spot.json->get<bool>()) source.fail(spot, "expected true");
}

void checkTextOrNull(HLSceneSource& source, const HLSceneSpot& spot) {
  if (!spot.json->is_string() && !spot.json->is_null()) source.fail(spot, "expected a string or null");
}

void checkLoginItem(HLSceneSource& source, const HLSceneSpot& spot) {
  source.expectObject(spot, {"status", "registerError", "unregisterError", "statusAfterRegister"});
  if (const auto key = source.find(spot, "status")) (void)source.integer(*key, 0, 3);
  if (const auto key = source.find(spot, "statusAfterRegister")) (void)source.integer(*key, 0, 3);
  if (const auto key = source.find(spot, "registerError")) checkTextOrNull(source, *key);
  if (const auto key = source.find(spot, "unregisterError")) checkTextOrNull(source, *key);
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
  if (const auto key = source.find(spot, "error")) {
    checkTextOrNull(source, *key);
    if (!key->json->is_null()) service.error = source.string(*key);
  }
  if (const auto key = source.find(spot, "addErrors")) {
    for (const HLSceneSpot& entry : source.entries(*key))
      service.addErrors.emplace_back(source.keyText(entry), source.string(entry));
  }
  return service;
}

void checkHttp(HLSceneSource& source, const HLSceneSpot& spot) {
  for (const HLSceneSpot& answer : source.entries(spot)) {
    source.expectObject(answer, {"status", "body", "error", "seconds"});
    const auto status = source.find(answer, "status");
    const auto body = source.find(answer, "body");
    const auto error = source.find(answer, "error");
    if (error.has_value() == (status || body)) source.fail(answer, "expected \"status\" and \"body\", or \"error\"");
    if (status) (void)source.integer(*status, 0, 999);
    if (body) (void)source.string(*body);
    if (error) (void)source.string(*error);
    if (const auto seconds = source.find(answer, "seconds")) (void)source.seconds(*seconds);
  }
}

}  // namespace

bool HLIsUserEvent(std::string_view kind) { return userEvents().contains(kind); }

std::initializer_list<std::string_view> HLUserEventKeys(std::string_view kind) { return userEvents().at(kind); }

HLSceneUserEvent HLReadUserEvent(HLSceneSource& source, const HLSceneSpot& spot) {
  if (const auto key = source.find(spot, "click")) (void)source.word(*key, {"left", "right", "none"});
  if (const auto key = source.find(spot, "modifiers")) checkModifiers(source, *key);
  if (const auto key = source.find(spot, "openMenu")) checkTrue(source, *key);
  if (const auto key = source.find(spot, "terminate")) checkTrue(source, *key);
  for (const std::string_view text : {"choose", "press", "window", "closeWindow", "dump"}) {
    if (const auto key = source.find(spot, text)) (void)source.string(*key);
  }
  if (const auto key = source.find(spot, "shortcut")) checkKey(source, *key, {"code", "modifiers"});
  if (const auto key = source.find(spot, "key")) checkKey(source, *key, {"code", "modifiers", "characters"});
  if (const auto key = source.find(spot, "hotKey"); key && !key->json->is_null()) {
    source.expectObject(*key, {"signature", "id"});
    (void)source.string(source.require(*key, "signature"));
    (void)source.integer(source.require(*key, "id"), 0, kMostUnsigned);
  }
  return {source.dictionary(spot)};
}

void HLReadServices(HLSceneSource& source, const HLSceneSpot& spot, HLScene& scene) {
  source.expectObject(
      spot, {"grantOnPrompt", "opens", "refusedHotKeys", "loginItem", "userNotifications", "http", "alertAnswers"});
  if (const auto key = source.find(spot, "grantOnPrompt")) scene.grantOnPrompt = source.boolean(*key);
  if (const auto key = source.find(spot, "opens")) (void)source.strings(*key);
  if (const auto key = source.find(spot, "alertAnswers")) (void)source.strings(*key);
  if (const auto key = source.find(spot, "refusedHotKeys")) {
    for (const HLSceneSpot& refused : source.members(*key)) {
      checkKey(source, refused, {"code", "modifiers", "status"});
      (void)source.code(source.require(refused, "status"));
    }
  }
  if (const auto key = source.find(spot, "loginItem")) checkLoginItem(source, *key);
  if (const auto key = source.find(spot, "userNotifications"))
    scene.userNotifications = readUserNotifications(source, *key);
  if (const auto key = source.find(spot, "http")) checkHttp(source, *key);
  scene.services = source.dictionary(spot);
}
