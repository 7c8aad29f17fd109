// Tables of what a desktop consists of.
#include "platform/sim/scene/scene_table.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>

#include "platform/sim/scene/scene_builder.h"
#include "platform/sim/scene/scene_types.h"

namespace {

using Builder = HLSceneBuilder;
using Spot = HLSceneSpot;

constexpr std::array<HLSceneWord<bool>, 2> kClocks = {{{"virtual", false}, {"real", true}}};

void readApplicationSupport(Builder& builder, const Spot& spot, HLScene& scene) {
  const std::optional<std::string> path = builder.stringOrNull(spot);
  scene.applicationSupport = path ? HLSceneApplicationSupport(*path) : std::monostate();
}

void readTimeline(Builder& builder, const Spot& spot, HLScene& scene) {
  for (const Spot& event : builder.members(spot)) scene.timeline.push_back(builder.timelineEvent(event));
}

constexpr HLSceneKey<HLScene> kScene[] = {
    {"recorded", HLSceneDictionary<&HLScene::recorded>, "{}", "see [Recordings](#recordings)"},
    {"trusted", HLSceneBoolean<&HLScene::trusted>, "true", "whether the program may read and press at the start"},
    {"clock",
     {R"("virtual" or "real")",
      [](Builder& builder, const Spot& spot, HLScene& scene) { scene.realClock = builder.choice(spot, kClocks); }},
     R"("virtual")",
     "see [Time](#time)"},
    {"bundle", HLSceneTable<&HLScene::bundle>("object"), "no bundle", "the program's bundle"},
    {"arguments", HLSceneTexts<&HLScene::arguments>, "the process's own",
     "replaces the arguments that follow the path of the executable"},
    {"home", HLSceneText<&HLScene::home>, "`HOME`", "path of the home directory"},
    {"applicationSupport",
     {"string or null", readApplicationSupport},
     "`XDG_DATA_HOME`, or `.local/share` in the home directory",
     "path; null if the platform finds no such directory"},
    {"parent", HLScenePidKey<&HLScene::parent>, "no application",
     "the application that is the parent process of the program"},
    {"propertyLists", HLSceneDictionary<&HLScene::propertyLists>, "no files", "path of a property list to its content"},
    {"defaults", HLSceneDictionary<&HLScene::defaults>, "empty", "the stored user defaults at the start"},
    {"services", HLSceneTable<&HLScene::services>("object"), "{}", "see [Services](#services)"},
    {"record", HLSceneText<&HLScene::record>, "no record",
     "path of a file that gets one line at the end, see [The record](#the-record)"},
    {"applications", HLSceneBy<&HLScene::applications, &Builder::applications>("list of applications"), "[]",
     "the running applications, in the platform's order"},
    {"timeline", {"list of events", readTimeline}, "[]", "events, each with its time in `at` (seconds)"},
};

constexpr HLSceneKey<HLSceneBundle> kBundle[] = {
    {"path", HLSceneText<&HLSceneBundle::path>, "none", "path of the bundle"},
    {"executablePath", HLSceneText<&HLSceneBundle::executablePath>, "none", "path of the executable in it"},
    {"identifier", HLSceneText<&HLSceneBundle::identifier>, "none", "bundle identifier"},
    {"info", HLSceneDictionary<&HLSceneBundle::info>, "empty", "the information dictionary"},
};

void readWindows(Builder& builder, const Spot& spot, HLSceneApplication& application) {
  application.windows = std::nullopt;
  if (!spot.json->is_null()) application.windows = builder.memberList(spot);
}

constexpr HLSceneKey<HLSceneApplication> kApplication[] = {
    {"pid", HLScenePidKey<&HLSceneApplication::pid>, "required",
     "process identifier, 1 to 2147483647, unique among `applications`"},
    {"bundleIdentifier", HLSceneText<&HLSceneApplication::bundleIdentifier>, "none", "as the platform reports it"},
    {"name", HLSceneText<&HLSceneApplication::name>, "none", "as the platform reports it"},
    {"windows",
     {"list of members, or null", readWindows},
     "[]",
     "\"AXWindows\" of the root element; null makes reading it fail"},
    {"terminated", HLSceneBoolean<&HLSceneApplication::terminated>, "false",
     "still listed, but dead: its elements are invalid"},
    {"lingers", HLSceneSeconds<&HLSceneApplication::lingers>, "0",
     "how long it stays listed, as terminated, after its death"},
    {"ignoresTerminate", HLSceneBoolean<&HLSceneApplication::ignoresTerminate>, "false",
     "SIGTERM has no effect; SIGKILL always kills"},
    {"elementFails", HLSceneBoolean<&HLSceneApplication::elementFails>, "false", "its root element cannot be created"},
    {"observerFails", HLSceneBoolean<&HLSceneApplication::observerFails>, "false", "observers of it cannot be created"},
    {"registerErrors", HLSceneErrorCodes<&HLSceneApplication::registerErrors>, "none",
     "notification to the error of registering for it"},
    {"relaunch", HLSceneBy<&HLSceneApplication::relaunch, &Builder::relaunch>("object"), "none",
     "what the system starts after its death"},
};

constexpr HLSceneKey<HLSceneRelaunch> kRelaunch[] = {
    {"after", HLSceneSeconds<&HLSceneRelaunch::after>, "0", "how long after the death"},
    {"application", HLSceneBy<&HLSceneRelaunch::application, &Builder::application>("application"), "required",
     "the application that starts"},
};

// The name of an attribute as a template argument.
struct Attribute {
  template <std::size_t kSize>
  consteval Attribute(const char (&text)[kSize]) {  // NOLINT(google-explicit-constructor)
    std::copy_n(text, kSize, name.begin());
  }
  std::array<char, 24> name{};
};

void addAttribute(HLSceneElement& element, std::string name, HLSceneValue value) {
  element.attributes.push_back({std::move(name), std::move(value)});
}

template <Attribute kAttribute>
constexpr HLSceneType<HLSceneElement> kTextOf = {
    "string", [](Builder& builder, const Spot& spot, HLSceneElement& element) {
      addAttribute(element, kAttribute.name.data(), HLValue(builder.string(spot)));
    }};

template <Attribute kAttribute>
constexpr HLSceneType<HLSceneElement> kMembersOf = {
    "list of members", [](Builder& builder, const Spot& spot, HLSceneElement& element) {
      addAttribute(element, kAttribute.name.data(), builder.memberList(spot));
    }};

void readAttributes(Builder& builder, const Spot& spot, HLSceneElement& element) {
  for (const Spot& entry : builder.entries(spot)) {
    addAttribute(element, builder.keyText(entry), builder.attributeValue(entry));
  }
}

void readValue(Builder& builder, const Spot& spot, HLSceneElement& element) {
  const bool plain = spot.json->is_string() || spot.json->is_number() || spot.json->is_boolean();
  if (!plain) builder.fail(spot, "expected a string, a number, true or false");
  addAttribute(element, "AXValue", builder.value(spot));
}

void readFrame(Builder& builder, const Spot& spot, HLSceneElement& element) {
  const std::vector<double> frame = builder.numbers(spot, 4);
  addAttribute(element, "AXPosition", HLValue(HLPoint{frame[0], frame[1]}));
  addAttribute(element, "AXSize", HLValue(HLSize{frame[2], frame[3]}));
}

void readReactions(Builder& builder, const Spot& spot, HLSceneElement& element) {
  for (const Spot& entry : builder.entries(spot)) {
    element.reactions.emplace_back(builder.keyText(entry), HLSceneReaction());
    builder.readObject(entry, element.reactions.back().second);
  }
}

constexpr HLSceneKey<HLSceneElement> kElement[] = {
    {"id", HLSceneBy<&HLSceneElement::id, &Builder::definition>("string"), "none",
     "name for references, unique in the scene"},
    // First: of two attributes with one name the first counts.
    {"attributes", {"name to attribute", readAttributes}, "none", "attributes by name; these win over the keys below"},
    {"role", kTextOf<"AXRole">, "none", "\"AXRole\""},
    {"subrole", kTextOf<"AXSubrole">, "none", "\"AXSubrole\""},
    {"roleDescription", kTextOf<"AXRoleDescription">, "none", "\"AXRoleDescription\""},
    {"title", kTextOf<"AXTitle">, "none", "\"AXTitle\""},
    {"description", kTextOf<"AXDescription">, "none", "\"AXDescription\""},
    {"identifier", kTextOf<"AXIdentifier">, "none", "\"AXIdentifier\""},
    {"value", {"string, number or boolean", readValue}, "none", "\"AXValue\""},
    {"frame", {"[x, y, width, height]", readFrame}, "none", "\"AXPosition\" and \"AXSize\""},
    {"children", kMembersOf<"AXChildren">, "none", "\"AXChildren\""},
    {"rows", kMembersOf<"AXRows">, "none", "\"AXRows\""},
    {"visibleChildren", kMembersOf<"AXVisibleChildren">, "none", "\"AXVisibleChildren\""},
    {"actions", HLSceneTexts<&HLSceneElement::actions>, "[]", "action names, in order"},
    {"errors", HLSceneErrorCodes<&HLSceneElement::errors>, "none",
     "attribute to the error of reading it; \"actions\" for the action names"},
    {"onAction", {"name to reaction", readReactions}, "none", "what performing the action does"},
    {"closes", HLSceneBy<&HLSceneElement::closes, &Builder::reference>("id"), "none",
     "the element that the usual actions remove, see below"},
    {"freshHandles", HLSceneBoolean<&HLSceneElement::freshHandles>, "false",
     "every read yields a new handle, equal to the others"},
    // The list that has the member reads this key.
    {"repeat", {"integer 0 to 100000", nullptr}, "1", "how many copies of this member the list has, see below"},
};

void readEffects(Builder& builder, const Spot& spot, HLSceneReaction& reaction) {
  reaction.effects = builder.effects(spot);
}

constexpr HLSceneKey<HLSceneReaction> kReaction[] = {
    {"error", HLSceneCode<&HLSceneReaction::error>, "0", "what performing the action returns"},
    {"seconds", HLSceneSeconds<&HLSceneReaction::seconds>, "0", "how long the call takes"},
    {"after", HLSceneSeconds<&HLSceneReaction::after>, "0", "from the end of the call to the effects"},
    {"effects", {"list of events", readEffects}, "[]", "events without `at`"},
};

}  // namespace

HLSceneKeys<HLScene> HLKeysOf(const HLScene*) { return kScene; }
HLSceneKeys<HLSceneBundle> HLKeysOf(const HLSceneBundle*) { return kBundle; }
HLSceneKeys<HLSceneApplication> HLKeysOf(const HLSceneApplication*) { return kApplication; }
HLSceneKeys<HLSceneRelaunch> HLKeysOf(const HLSceneRelaunch*) { return kRelaunch; }
HLSceneKeys<HLSceneElement> HLKeysOf(const HLSceneElement*) { return kElement; }
HLSceneKeys<HLSceneReaction> HLKeysOf(const HLSceneReaction*) { return kReaction; }
