// The format of scenes as data. Every kind of object has one table with a row per key: type, target and documentation.
// The reader, its error messages and the reference in docs/scenes.md follow from the tables.
#pragma once

#include <span>
#include <string_view>
#include <variant>

#include "platform/sim/scene/scene.h"
#include "platform/sim/scene/scene_source.h"

class HLSceneBuilder;

template <class Object>
struct HLSceneType {
  std::string_view name;
  void (*read)(HLSceneBuilder& builder, const HLSceneSpot& spot, Object& object);
};

template <class Object>
struct HLSceneKey {
  std::string_view key;
  HLSceneType<Object> type;
  std::string_view otherwise = "required";  // the value of a missing key
  std::string_view meaning = "";

  [[nodiscard]] constexpr bool isRequired() const { return otherwise == "required"; }
};

// Keys are read in this order, so that of several mistakes the first in this order is reported.
template <class Object>
using HLSceneKeys = std::span<const HLSceneKey<Object>>;

// The table of a kind of object; the argument's type says which, its value is not used.
[[nodiscard]] HLSceneKeys<HLScene> HLKeysOf(const HLScene*);
[[nodiscard]] HLSceneKeys<HLSceneBundle> HLKeysOf(const HLSceneBundle*);
[[nodiscard]] HLSceneKeys<HLSceneApplication> HLKeysOf(const HLSceneApplication*);
[[nodiscard]] HLSceneKeys<HLSceneRelaunch> HLKeysOf(const HLSceneRelaunch*);
[[nodiscard]] HLSceneKeys<HLSceneElement> HLKeysOf(const HLSceneElement*);
[[nodiscard]] HLSceneKeys<HLSceneReaction> HLKeysOf(const HLSceneReaction*);
[[nodiscard]] HLSceneKeys<HLSceneShortcut> HLKeysOf(const HLSceneShortcut*);
[[nodiscard]] HLSceneKeys<HLHotKeyIdentity> HLKeysOf(const HLHotKeyIdentity*);
[[nodiscard]] HLSceneKeys<HLKeyEvent> HLKeysOf(const HLKeyEvent*);
[[nodiscard]] HLSceneKeys<HLSceneServices> HLKeysOf(const HLSceneServices*);
[[nodiscard]] HLSceneKeys<HLSceneRefusedHotKey> HLKeysOf(const HLSceneRefusedHotKey*);
[[nodiscard]] HLSceneKeys<HLSceneLoginItem> HLKeysOf(const HLSceneLoginItem*);
[[nodiscard]] HLSceneKeys<HLSceneUserNotifications> HLKeysOf(const HLSceneUserNotifications*);
[[nodiscard]] HLSceneKeys<HLSceneHTTPAnswer> HLKeysOf(const HLSceneHTTPAnswer*);

// An event is recognized by the key that is its name.
template <class Event>
struct HLSceneEventKind {
  std::string_view name;
  std::string_view meaning;
  HLSceneKeys<Event> keys;
};

[[nodiscard]] HLSceneEventKind<HLSceneAdd> HLKindOf(const HLSceneAdd*);
[[nodiscard]] HLSceneEventKind<HLSceneRemove> HLKindOf(const HLSceneRemove*);
[[nodiscard]] HLSceneEventKind<HLSceneSet> HLKindOf(const HLSceneSet*);
[[nodiscard]] HLSceneEventKind<HLSceneNotify> HLKindOf(const HLSceneNotify*);
[[nodiscard]] HLSceneEventKind<HLSceneLaunch> HLKindOf(const HLSceneLaunch*);
[[nodiscard]] HLSceneEventKind<HLSceneQuit> HLKindOf(const HLSceneQuit*);
[[nodiscard]] HLSceneEventKind<HLSceneTrust> HLKindOf(const HLSceneTrust*);
[[nodiscard]] HLSceneEventKind<HLSceneClick> HLKindOf(const HLSceneClick*);
[[nodiscard]] HLSceneEventKind<HLSceneChoose> HLKindOf(const HLSceneChoose*);
[[nodiscard]] HLSceneEventKind<HLSceneOpenMenu> HLKindOf(const HLSceneOpenMenu*);
[[nodiscard]] HLSceneEventKind<HLSceneShortcut> HLKindOf(const HLSceneShortcut*);
[[nodiscard]] HLSceneEventKind<HLSceneHotKey> HLKindOf(const HLSceneHotKey*);
[[nodiscard]] HLSceneEventKind<HLKeyEvent> HLKindOf(const HLKeyEvent*);
[[nodiscard]] HLSceneEventKind<HLScenePress> HLKindOf(const HLScenePress*);
[[nodiscard]] HLSceneEventKind<HLSceneCloseWindow> HLKindOf(const HLSceneCloseWindow*);
[[nodiscard]] HLSceneEventKind<HLSceneDump> HLKindOf(const HLSceneDump*);
[[nodiscard]] HLSceneEventKind<HLSceneTerminate> HLKindOf(const HLSceneTerminate*);

// Calls visit(const Event*) with a null pointer for every kind of event: those of the desktop, then those of the user.
template <class Visit, class... User, class... Desktop>
void HLForEachEvent(const Visit& visit, const std::variant<std::variant<User...>, Desktop...>*) {
  (visit(static_cast<const Desktop*>(nullptr)), ...);
  (visit(static_cast<const User*>(nullptr)), ...);
}
template <class Visit>
void HLForEachEvent(const Visit& visit) {
  HLForEachEvent(visit, static_cast<const HLSceneEvent*>(nullptr));
}
