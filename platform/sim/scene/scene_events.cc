// The events of a scene: what may stand in a timeline or among a reaction's effects.
#include <algorithm>
#include <array>

#include "platform/sim/scene/scene_builder.h"
#include "platform/sim/scene/scene_services.h"

namespace {

constexpr std::array<std::string_view, 7> kDesktopEvents = {"add",    "remove", "set",  "notify",
                                                            "launch", "quit",   "trust"};

bool isIn(std::string_view key, const auto& list) { return std::find(list.begin(), list.end(), key) != list.end(); }

// The one event that the object is, or nothing where it is none or several.
std::optional<std::string_view> kindOf(const HLJson& object) {
  std::optional<std::string_view> kind;
  for (auto entry = object.begin(); entry != object.end(); ++entry) {
    if (!isIn(entry.key(), kDesktopEvents) && !HLIsUserEvent(entry.key())) continue;
    if (kind) return std::nullopt;
    kind = entry.key();
  }
  return kind;
}

}  // namespace

void HLSceneBuilder::expectKeys(const HLSceneSpot& spot, bool ofTimeline, const std::vector<std::string_view>& keys) {
  for (auto entry = spot.json->begin(); entry != spot.json->end(); ++entry) {
    if (isIn(entry.key(), keys) || (ofTimeline && entry.key() == "at")) continue;
    source_.fail(*source_.find(spot, entry.key()), "unknown key");
  }
}

HLSceneEvent HLSceneBuilder::event(const HLSceneSpot& spot, bool ofTimeline) {
  if (!spot.json->is_object()) source_.fail(spot, "expected an object");
  if (source_.failed()) return {};
  const std::optional<std::string_view> kind = kindOf(*spot.json);
  if (!kind) source_.fail(spot, "expected exactly one event");
  if (source_.failed()) return {};
  if (HLIsUserEvent(*kind)) {
    expectKeys(spot, ofTimeline, HLUserEventKeys(*kind));
    return HLReadUserEvent(source_, spot, *kind);
  }
  const HLSceneSpot what = source_.require(spot, *kind);
  if (*kind == "add") {
    expectKeys(spot, ofTimeline, {"add", "to", "under", "first"});
    return addEvent(spot);
  }
  if (*kind == "set") {
    expectKeys(spot, ofTimeline, {"set", "attribute", "value"});
    return setEvent(spot);
  }
  if (*kind == "notify") {
    expectKeys(spot, ofTimeline, {"notify", "element"});
    return HLSceneNotify{source_.string(what), reference(source_.require(spot, "element"))};
  }
  expectKeys(spot, ofTimeline, {*kind});
  if (*kind == "remove") return HLSceneRemove{reference(what)};
  if (*kind == "launch") return HLSceneLaunch{application(what)};
  if (*kind == "quit") return HLSceneQuit{source_.pid(what)};
  return HLSceneTrust{source_.boolean(what)};
}

HLSceneAdd HLSceneBuilder::addEvent(const HLSceneSpot& spot) {
  HLSceneAdd made;
  std::string under = "children";
  if (const auto key = source_.find(spot, "under")) {
    under = source_.word(*key, {"children", "rows", "visibleChildren", "windows"});
  }
  const HLSceneSpot to = source_.require(spot, "to");
  if (under == "windows") {
    made.to = HLScenePid{source_.pid(to)};
  } else {
    made.to = reference(to);
  }
  made.list = under == "rows"              ? "AXRows"
              : under == "visibleChildren" ? "AXVisibleChildren"
              : under == "windows"         ? "AXWindows"
                                           : "AXChildren";
  if (const auto key = source_.find(spot, "first")) made.first = source_.boolean(*key);
  readMember(source_.require(spot, "add"), made.members);
  return made;
}

HLSceneEvent HLSceneBuilder::setEvent(const HLSceneSpot& spot) {
  const HLSceneId element = reference(source_.require(spot, "set"));
  const std::string attribute = source_.string(source_.require(spot, "attribute"));
  const HLSceneSpot value = source_.require(spot, "value");
  const bool takenAway = value.json->is_null();
  if (attribute == "actions") {
    return HLSceneSetActions{element, takenAway ? std::vector<std::string>() : source_.strings(value)};
  }
  if (takenAway) return HLSceneSet{element, attribute, std::nullopt};
  return HLSceneSet{element, attribute, attributeValue(value)};
}
