// A scene as values: a simulated desktop at its start, and the events to come. scene_table.h says how they are written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/accessibility.h"
#include "platform/application/events.h"
#include "platform/application/hot_keys.h"
#include "platform/application/http_client.h"
#include "platform/threads/due_queue.h"
#include "platform/value.h"

// For std::visit: one function per alternative, so that a missing one does not compile.
template <class... Functions>
struct HLVisitor : Functions... {
  using Functions::operator()...;
};
template <class... Functions>
HLVisitor(Functions...) -> HLVisitor<Functions...>;

// An id of the scene: an index of HLScene::ids.
using HLSceneId = std::int32_t;

// A process of the scene.
struct HLScenePid {
  std::int32_t pid = 0;
};

struct HLSceneElement;
struct HLSceneApplication;

struct HLSceneReference {
  HLSceneId id = -1;
};

// The value of an attribute or a member of a list. `Element` is an element of the scene or of the live desktop.
template <class Element>
struct HLValueOf : std::variant<HLValue, HLSceneReference, Element*, std::vector<HLValueOf<Element>>> {
  using Base = std::variant<HLValue, HLSceneReference, Element*, std::vector<HLValueOf<Element>>>;
  using Base::Base;
};
template <class Element>
struct HLAttributeOf {
  std::string name;
  HLValueOf<Element> value;
};
using HLSceneValue = HLValueOf<const HLSceneElement>;
using HLSceneAttribute = HLAttributeOf<const HLSceneElement>;

struct HLSceneAdd {
  std::vector<HLSceneValue> members;
  std::string list = "AXChildren";
  std::variant<HLSceneId, HLScenePid> to;  // the owner of the list
  bool first = false;
};
struct HLSceneRemove {
  HLSceneId element = -1;
};
struct HLSceneSet {
  HLSceneId element = -1;
  std::string attribute;
  // monostate removes the attribute; strings replace the action names.
  std::variant<std::monostate, HLSceneValue, std::vector<std::string>> value;
};
struct HLSceneNotify {
  std::string notification;
  HLSceneId element = -1;
};
struct HLSceneLaunch {
  const HLSceneApplication* application = nullptr;
};
struct HLSceneQuit {
  std::int32_t pid = 0;
};
struct HLSceneTrust {
  bool trusted = false;
};
// What a user does in this program's own interface. Modifiers are those of platform/application/events.h.
struct HLSceneClick {
  std::optional<HLEvent> event;  // nullopt sends the action without an event
};
struct HLSceneChoose {
  std::string item;
};
struct HLSceneOpenMenu {};
struct HLSceneShortcut {  // typed in another program
  std::uint32_t code = 0;
  std::uint64_t modifiers = 0;
};
struct HLSceneHotKey {
  std::optional<HLHotKeyIdentity> identity;
};
struct HLScenePress {
  std::string control;
  std::string window;
};
struct HLSceneCloseWindow {
  std::string window;
};
struct HLSceneDump {
  std::string path;
};
struct HLSceneTerminate {};
using HLSceneUserEvent = std::variant<HLSceneClick, HLSceneChoose, HLSceneOpenMenu, HLSceneShortcut, HLSceneHotKey,
                                      HLKeyEvent, HLScenePress, HLSceneCloseWindow, HLSceneDump, HLSceneTerminate>;

using HLSceneEvent = std::variant<HLSceneUserEvent, HLSceneAdd, HLSceneRemove, HLSceneSet, HLSceneNotify, HLSceneLaunch,
                                  HLSceneQuit, HLSceneTrust>;

struct HLSceneReaction {
  HLAXError error = HLAXErrorSuccess;
  double seconds = 0;
  double after = 0;
  std::vector<HLSceneEvent> effects;
};

struct HLSceneElement {
  std::optional<HLSceneId> id;
  std::vector<HLSceneAttribute> attributes;  // of two with one name the first counts
  std::vector<std::string> actions;
  std::vector<std::pair<std::string, HLAXError>> errors;           // by attribute, or "actions"
  std::vector<std::pair<std::string, HLSceneReaction>> reactions;  // by action
  std::optional<HLSceneId> closes;
  bool freshHandles = false;
};

struct HLSceneRelaunch {
  double after = 0;
  const HLSceneApplication* application = nullptr;
};

struct HLSceneApplication {
  std::int32_t pid = 0;
  std::optional<std::string> bundleIdentifier;
  std::optional<std::string> name;
  std::optional<std::vector<HLSceneValue>> windows = std::vector<HLSceneValue>();  // nullopt: reading them fails
  bool terminated = false;
  double lingers = 0;
  bool ignoresTerminate = false;
  std::optional<HLSceneRelaunch> relaunch;
  bool elementFails = false;
  bool observerFails = false;
  std::vector<std::pair<std::string, HLAXError>> registerErrors;  // by notification
};

struct HLSceneTimelineEvent {
  HLMicroseconds at = 0;  // from the program's start
  HLSceneEvent event;
};

struct HLSceneBundle {
  std::optional<std::string> path;
  std::optional<std::string> executablePath;
  std::optional<std::string> identifier;
  HLDictionary info;
};

// The directory for application state: from the environment, none, or a path.
struct HLSceneFromEnvironment {};
using HLSceneApplicationSupport = std::variant<HLSceneFromEnvironment, std::monostate, std::string>;

enum class HLScenePermission { granted, denied, silent };

struct HLSceneUserNotifications {
  HLScenePermission permission = HLScenePermission::granted;
  std::optional<std::string> error;
  std::vector<std::pair<std::string, std::string>> addErrors;  // by identifier
};

struct HLSceneRefusedHotKey {
  std::uint32_t code = 0;
  std::uint64_t modifiers = 0;
  std::int32_t status = 0;
};

struct HLSceneLoginItem {
  std::int64_t status = 0;
  std::int64_t statusAfterRegister = 1;
  std::optional<std::string> registerError;
  std::optional<std::string> unregisterError;
};

struct HLSceneHTTPAnswer {
  std::string path;
  HLHTTPAnswer answer = {200, ""};
  double seconds = 0;
};

struct HLSceneServices {
  bool grantOnPrompt = false;
  std::optional<std::vector<std::string>> opens;  // nullopt: all addresses
  std::vector<HLSceneRefusedHotKey> refusedHotKeys;
  HLSceneLoginItem loginItem;
  HLSceneUserNotifications userNotifications;
  std::vector<HLSceneHTTPAnswer> http;
  std::vector<std::string> alertAnswers;
};

struct HLScene {
  std::string name;       // of its file
  HLDictionary recorded;  // where the scene comes from, if it is a recording
  // Owns all elements and applications, those of later events included.
  std::deque<HLSceneElement> elements;
  std::deque<HLSceneApplication> allApplications;
  std::vector<std::string> ids;

  std::vector<const HLSceneApplication*> applications;
  bool trusted = true;
  bool realClock = false;
  HLSceneBundle bundle;
  std::optional<std::vector<std::string>> arguments;
  std::optional<std::string> home;
  HLSceneApplicationSupport applicationSupport;
  std::optional<std::int32_t> parent;
  HLDictionary propertyLists;
  HLDictionary defaults;
  HLSceneServices services;
  std::vector<HLSceneTimelineEvent> timeline;  // as written
  std::optional<std::string> record;

  // The first process identifier from `first` on that no application of the scene has.
  [[nodiscard]] std::int32_t unusedPid(std::int32_t first) const;
};
