// Tables of the events: of the desktop, and of a user of the program.
#include <array>
#include <string>
#include <utility>

#include "platform/sim/scene/scene_builder.h"
#include "platform/sim/scene/scene_table.h"
#include "platform/sim/scene/scene_types.h"

namespace {

using Builder = HLSceneBuilder;
using Spot = HLSceneSpot;

constexpr std::array<HLSceneWord<const char*>, 4> kLists = {{{"children", "AXChildren"},
                                                             {"rows", "AXRows"},
                                                             {"visibleChildren", "AXVisibleChildren"},
                                                             {"windows", "AXWindows"}}};
constexpr std::array<HLSceneWord<std::uint64_t>, 6> kModifiers = {{{"shift", HLModifierShift},
                                                                   {"control", HLModifierControl},
                                                                   {"option", HLModifierOption},
                                                                   {"command", HLModifierCommand},
                                                                   {"capsLock", HLModifierCapsLock},
                                                                   {"function", HLModifierFunction}}};
constexpr std::array<HLSceneWord<std::int64_t>, 3> kButtons = {
    {{"left", HLEventLeftMouseUp}, {"right", HLEventRightMouseUp}, {"none", 0}}};

// The desktop

void readTarget(Builder& builder, const Spot& spot, HLSceneAdd& add) {
  if (add.list == "AXWindows") {
    add.to = HLScenePid{builder.pid(spot)};
  } else {
    add.to = builder.reference(spot);
  }
}

void readSetValue(Builder& builder, const Spot& spot, HLSceneSet& set) {
  if (set.attribute == "actions") {
    set.value = spot.json->is_null() ? std::vector<std::string>() : builder.strings(spot);
  } else if (!spot.json->is_null()) {
    set.value = builder.attributeValue(spot);
  }
}

// The user

template <class Event>
constexpr HLSceneType<Event> kTrue = {"true", [](Builder& builder, const Spot& spot, Event&) {
                                        const bool isTrue = spot.json->is_boolean() && spot.json->get<bool>();
                                        if (!isTrue) builder.fail(spot, "expected true");
                                      }};

// The value of the key is an object that has a table of its own, for the event itself.
template <class Event>
constexpr HLSceneType<Event> kWhole = {
    "object", [](Builder& builder, const Spot& spot, Event& event) { builder.readObject(spot, event); }};

// Objects in events

constexpr HLSceneKey<HLSceneShortcut> kShortcutKeys[] = {
    {"code", HLSceneKeyCode<&HLSceneShortcut::code>, "required", "virtual key code, in macOS's numbers"},
    {"modifiers", HLSceneModifiers<&HLSceneShortcut::modifiers>, "[]", "Caps Lock and Function are ignored"},
};

constexpr HLSceneKey<HLHotKeyIdentity> kHotKeyIdentity[] = {
    {"signature", HLSceneText<&HLHotKeyIdentity::signature>, "required", "four characters"},
    {"id", HLSceneInteger<&HLHotKeyIdentity::id, 0, 0xFFFFFFFF>("integer 0 to 4294967295")},
};

constexpr HLSceneKey<HLKeyEvent> kKeyEvent[] = {
    {"code", HLSceneKeyCode<&HLKeyEvent::code>, "required", "virtual key code, in macOS's numbers"},
    {"modifiers", HLSceneModifiers<&HLKeyEvent::modifiers>, "[]"},
    {"characters", HLSceneText<&HLKeyEvent::charactersIgnoringModifiers>, "\"\"",
     "what the key types without modifiers"},
};

}  // namespace

std::uint64_t HLReadModifiers(HLSceneBuilder& builder, const HLSceneSpot& spot) {
  std::uint64_t modifiers = 0;
  for (const HLSceneSpot& member : builder.members(spot)) modifiers |= builder.choice(member, kModifiers);
  return modifiers;
}

HLSceneKeys<HLSceneShortcut> HLKeysOf(const HLSceneShortcut*) { return kShortcutKeys; }
HLSceneKeys<HLHotKeyIdentity> HLKeysOf(const HLHotKeyIdentity*) { return kHotKeyIdentity; }
HLSceneKeys<HLKeyEvent> HLKeysOf(const HLKeyEvent*) { return kKeyEvent; }

HLSceneEventKind<HLSceneAdd> HLKindOf(const HLSceneAdd*) {
  // "under" comes first: the type of "to" depends on it.
  static constexpr HLSceneKey<HLSceneAdd> kKeys[] = {
      {"under",
       {R"("children", "rows", "visibleChildren" or "windows")",
        [](Builder& builder, const Spot& spot, HLSceneAdd& add) { add.list = builder.choice(spot, kLists); }},
       R"("children")"},
      {"to", {"id, or pid under \"windows\"", readTarget}},
      {"first", HLSceneBoolean<&HLSceneAdd::first>, "false"},
      {"add",
       {"member", [](Builder& builder, const Spot& spot, HLSceneAdd& add) { builder.member(spot, add.members); }}}};
  return {"add", "a new element appears in that list, last unless `first`; with \"windows\", a new window", kKeys};
}
HLSceneEventKind<HLSceneRemove> HLKindOf(const HLSceneRemove*) {
  static constexpr HLSceneKey<HLSceneRemove> kKeys[] = {{"remove", HLSceneReferenceTo<&HLSceneRemove::element>}};
  return {"remove", "the element goes away, and all that its lists and attributes hold, references apart", kKeys};
}
HLSceneEventKind<HLSceneSet> HLKindOf(const HLSceneSet*) {
  static constexpr HLSceneKey<HLSceneSet> kKeys[] = {{"set", HLSceneReferenceTo<&HLSceneSet::element>},
                                                     {"attribute", HLSceneText<&HLSceneSet::attribute>},
                                                     {"value", {"attribute", readSetValue}}};
  return {"set", "the attribute changes; null removes it; \"actions\" changes the action names (list of strings)",
          kKeys};
}
HLSceneEventKind<HLSceneNotify> HLKindOf(const HLSceneNotify*) {
  static constexpr HLSceneKey<HLSceneNotify> kKeys[] = {{"notify", HLSceneText<&HLSceneNotify::notification>},
                                                        {"element", HLSceneReferenceTo<&HLSceneNotify::element>}};
  return {"notify", "the application notifies its observers about the element, even one that has gone", kKeys};
}
HLSceneEventKind<HLSceneLaunch> HLKindOf(const HLSceneLaunch*) {
  static constexpr HLSceneKey<HLSceneLaunch> kKeys[] = {
      {"launch", HLSceneBy<&HLSceneLaunch::application, &Builder::application>("application")}};
  return {"launch", "the application starts and is listed last", kKeys};
}
HLSceneEventKind<HLSceneQuit> HLKindOf(const HLSceneQuit*) {
  static constexpr HLSceneKey<HLSceneQuit> kKeys[] = {{"quit", HLScenePidKey<&HLSceneQuit::pid>}};
  return {"quit", "the application dies", kKeys};
}
HLSceneEventKind<HLSceneTrust> HLKindOf(const HLSceneTrust*) {
  static constexpr HLSceneKey<HLSceneTrust> kKeys[] = {{"trust", HLSceneBoolean<&HLSceneTrust::trusted>}};
  return {"trust", "trust is granted or withdrawn", kKeys};
}
HLSceneEventKind<HLSceneClick> HLKindOf(const HLSceneClick*) {
  static constexpr HLSceneKey<HLSceneClick> kKeys[] = {{"click",
                                                        {R"("left", "right" or "none")",
                                                         [](Builder& builder, const Spot& spot, HLSceneClick& click) {
                                                           const std::int64_t type = builder.choice(spot, kButtons);
                                                           if (type != 0) click.event = HLEvent{type, 0};
                                                         }}},
                                                       {"modifiers",
                                                        {HLModifiersType,
                                                         [](Builder& builder, const Spot& spot, HLSceneClick& click) {
                                                           const std::uint64_t modifiers =
                                                               HLReadModifiers(builder, spot);
                                                           if (click.event) click.event->modifiers = modifiers;
                                                         }},
                                                        "[]"}};
  return {"click",
          "the status button is clicked; with \"none\" its action is sent without an event, which the program sees as "
          "type 0 without modifiers. A menu that opens is closed with nothing chosen",
          kKeys};
}
HLSceneEventKind<HLSceneChoose> HLKindOf(const HLSceneChoose*) {
  static constexpr HLSceneKey<HLSceneChoose> kKeys[] = {{"choose", HLSceneText<&HLSceneChoose::item>}};
  return {"choose", "the menu is opened and the item with this title chosen; the program sees no click", kKeys};
}
HLSceneEventKind<HLSceneOpenMenu> HLKindOf(const HLSceneOpenMenu*) {
  static constexpr HLSceneKey<HLSceneOpenMenu> kKeys[] = {{"openMenu", kTrue<HLSceneOpenMenu>}};
  return {"openMenu", "the menu is opened, and closed with nothing chosen", kKeys};
}
HLSceneEventKind<HLSceneShortcut> HLKindOf(const HLSceneShortcut*) {
  static constexpr HLSceneKey<HLSceneShortcut> kKeys[] = {{"shortcut", kWhole<HLSceneShortcut>}};
  return {"shortcut", "the keys are typed in another program: the hot key registered for them fires, if any", kKeys};
}
HLSceneEventKind<HLSceneHotKey> HLKindOf(const HLSceneHotKey*) {
  static constexpr HLSceneKey<HLSceneHotKey> kKeys[] = {
      {"hotKey", {"object or null", [](Builder& builder, const Spot& spot, HLSceneHotKey& event) {
                    if (!spot.json->is_null()) builder.readObject(spot, event.identity.emplace());
                  }}}};
  return {"hotKey",
          "the hot-key handler gets an event with this identity, registered or not; with null the identity cannot be "
          "read",
          kKeys};
}
HLSceneEventKind<HLKeyEvent> HLKindOf(const HLKeyEvent*) {
  static constexpr HLSceneKey<HLKeyEvent> kKeys[] = {{"key", kWhole<HLKeyEvent>}};
  return {"key", "a key is pressed in the front window, if a window is open", kKeys};
}
HLSceneEventKind<HLScenePress> HLKindOf(const HLScenePress*) {
  static constexpr HLSceneKey<HLScenePress> kKeys[] = {{"press", HLSceneText<&HLScenePress::control>},
                                                       {"window", HLSceneText<&HLScenePress::window>}};
  return {"press", "the button with this title is pressed in the window, or the check box toggled", kKeys};
}
HLSceneEventKind<HLSceneCloseWindow> HLKindOf(const HLSceneCloseWindow*) {
  static constexpr HLSceneKey<HLSceneCloseWindow> kKeys[] = {{"closeWindow", HLSceneText<&HLSceneCloseWindow::window>}};
  return {"closeWindow", "the user closes the window with this title", kKeys};
}
HLSceneEventKind<HLSceneDump> HLKindOf(const HLSceneDump*) {
  static constexpr HLSceneKey<HLSceneDump> kKeys[] = {{"dump", HLSceneText<&HLSceneDump::path>}};
  return {"dump", "appends the state of the user interface to the file at this path, see [The dump](#the-dump)", kKeys};
}
HLSceneEventKind<HLSceneTerminate> HLKindOf(const HLSceneTerminate*) {
  static constexpr HLSceneKey<HLSceneTerminate> kKeys[] = {{"terminate", kTrue<HLSceneTerminate>}};
  return {"terminate", "the application's event loop returns", kKeys};
}
