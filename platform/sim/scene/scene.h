// A scene as plain data: a simulated desktop before its first moment, and what will happen on it.
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
#include "platform/due_queue.h"
#include "platform/value.h"

// An id of the scene: its place in HLScene::ids.
using HLSceneId = std::int32_t;

// A process of the scene.
struct HLScenePid {
  std::int32_t pid = 0;
};

struct HLSceneElement;
struct HLSceneApplication;

// What an attribute holds, or a member of a list.
struct HLSceneReference {
  HLSceneId id = -1;
};
struct HLSceneValue : std::variant<HLValue, HLSceneReference, const HLSceneElement*, std::vector<HLSceneValue>> {
  using variant::variant;
};

struct HLSceneAttribute {
  std::string name;
  HLSceneValue value;
};

struct HLSceneAdd {
  std::vector<HLSceneValue> members;
  std::string list;  // the attribute's name
  // The element whose list it is, or a process, for its windows.
  std::variant<HLSceneId, HLScenePid> to;
  bool first = false;
};
struct HLSceneRemove {
  HLSceneId element = -1;
};
struct HLSceneSet {
  HLSceneId element = -1;
  std::string attribute;
  std::optional<HLSceneValue> value;  // nothing takes the attribute away
};
struct HLSceneSetActions {
  HLSceneId element = -1;
  std::vector<std::string> actions;
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
// What a user does to this program's own interface. Modifiers are HLModifier... of platform/events.h.
struct HLSceneClick {
  std::optional<HLEvent> event;  // nothing: its action is sent without one
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

using HLSceneEvent = std::variant<HLSceneAdd, HLSceneRemove, HLSceneSet, HLSceneSetActions, HLSceneNotify,
                                  HLSceneLaunch, HLSceneQuit, HLSceneTrust, HLSceneUserEvent>;

// What performing an action does. Times are in seconds.
struct HLSceneReaction {
  HLAXError error = HLAXErrorSuccess;
  double seconds = 0;  // how long the call takes
  double after = 0;    // from its end to the effects
  std::vector<HLSceneEvent> effects;
};

struct HLSceneElement {
  std::optional<HLSceneId> id;
  // Those written under "attributes" first: of two with one name the first counts.
  std::vector<HLSceneAttribute> attributes;
  std::vector<std::string> actions;
  std::vector<std::pair<std::string, HLAXError>> errors;           // by attribute, or "actions"
  std::vector<std::pair<std::string, HLSceneReaction>> reactions;  // by action
  std::optional<HLSceneId> closes;
  bool freshHandles = false;
};

struct HLSceneRelaunch {
  double after = 0;  // seconds
  const HLSceneApplication* application = nullptr;
};

struct HLSceneApplication {
  std::int32_t pid = 0;
  std::optional<std::string> bundleIdentifier;
  std::optional<std::string> name;
  std::optional<std::vector<HLSceneValue>> windows;  // nothing makes the attribute fail
  bool terminated = false;
  double lingers = 0;  // seconds
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

// Where applications keep their state: as the environment says, nowhere, or a directory.
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
  HLHTTPAnswer answer;
  double seconds = 0;
};

struct HLSceneServices {
  bool grantOnPrompt = false;
  std::optional<std::vector<std::string>> opens;  // prefixes of addresses; nothing for all
  std::vector<HLSceneRefusedHotKey> refusedHotKeys;
  HLSceneLoginItem loginItem;
  HLSceneUserNotifications userNotifications;
  std::vector<HLSceneHTTPAnswer> http;
  std::vector<std::string> alertAnswers;
};

struct HLScene {
  std::string name;  // of its file
  // Elements and applications, those included that are yet to come; the pointers between them point here.
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

  // The first process identifier from there on that no application of the scene has.
  [[nodiscard]] std::int32_t unusedPid(std::int32_t first) const;
};
