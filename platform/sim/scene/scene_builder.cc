#include "platform/sim/scene/scene_builder.h"

#include <algorithm>
#include <set>

namespace {

constexpr std::int64_t kMostRepetitions = 100000;
constexpr int kDeepestRelaunch = 100;
constexpr int kDeepestList = 100;

// True for an object with this key alone, as {"ref": ...}.
bool isForm(const HLJson& json, std::string_view key) {
  return json.is_object() && json.size() == 1 && json.begin().key() == key;
}

// The name of the only event in the object; empty for none or several.
std::string_view eventName(const HLJson& object) {
  std::string_view found;
  int count = 0;
  HLForEachEvent([&](const auto* event) {
    const std::string_view name = HLKindOf(event).name;
    if (!object.contains(name)) return;
    found = name;
    ++count;
  });
  return count == 1 ? found : "";
}

}  // namespace

void HLSceneBuilder::read() {
  readObject(root(), scene_);
  readPending();
  checkReferences();
}

const HLSceneApplication* HLSceneBuilder::application(const HLSceneSpot& spot) {
  HLSceneApplication& made = scene_.allApplications.emplace_back();
  readObject(spot, made);
  return &made;
}

std::vector<const HLSceneApplication*> HLSceneBuilder::applications(const HLSceneSpot& spot) {
  std::vector<const HLSceneApplication*> list;
  std::set<std::int32_t> pids;
  for (const HLSceneSpot& entry : members(spot)) {
    list.push_back(application(entry));
    if (failed()) break;
    if (!pids.insert(list.back()->pid).second) fail(require(entry, "pid"), "another application has this pid");
  }
  return list;
}

HLSceneRelaunch HLSceneBuilder::relaunch(const HLSceneSpot& spot) {
  HLSceneRelaunch made;
  expectKeys(spot, HLKeysOf(&made));
  if (++relaunchDepth_ > kDeepestRelaunch) fail(spot, "nested too deeply");
  readKeys(spot, HLKeysOf(&made), made);
  --relaunchDepth_;
  return made;
}

HLSceneTimelineEvent HLSceneBuilder::timelineEvent(const HLSceneSpot& spot) {
  HLSceneTimelineEvent made;
  if (!spot.json->is_object()) fail(spot, "expected an object");
  if (failed()) return made;
  made.at = HLTimeAfter(0, seconds(require(spot, "at")));
  made.event = event(spot, "at");
  return made;
}

std::vector<HLSceneEvent> HLSceneBuilder::effects(const HLSceneSpot& spot) {
  std::vector<HLSceneEvent> list;
  for (const HLSceneSpot& effect : members(spot)) list.push_back(event(effect, ""));
  return list;
}

HLSceneEvent HLSceneBuilder::event(const HLSceneSpot& spot, std::string_view further) {
  HLSceneEvent made;
  if (!spot.json->is_object()) fail(spot, "expected an object");
  if (failed()) return made;
  const std::string_view name = eventName(*spot.json);
  if (name.empty()) fail(spot, "expected exactly one event");
  HLForEachEvent([&]<class Event>(const Event* type) {
    const HLSceneEventKind<Event> kind = HLKindOf(type);
    if (kind.name != name) return;
    Event event;
    expectKeys(spot, kind.keys, further);
    readKeys(spot, kind.keys, event);
    if constexpr (std::is_constructible_v<HLSceneUserEvent, Event>) {
      made = HLSceneUserEvent(std::move(event));
    } else {
      made = std::move(event);
    }
  });
  return made;
}

void HLSceneBuilder::checkReferences() {
  for (const std::string* name : usedIds_) {
    const Id& id = ids_.at(*name);
    if (!id.defined) fail(id.firstUse, "no element has the id \"" + *name + "\"");
  }
}

void HLSceneBuilder::readPending() {
  std::reverse(pending_.begin(), pending_.end());
  while (!pending_.empty() && !failed()) {
    const Pending next = pending_.back();
    pending_.pop_back();
    const std::size_t others = pending_.size();
    setRepetition(next.repetition);
    readObject(next.spot, *next.element);
    setRepetition(std::nullopt);
    // Its own elements come before the others, the first one first.
    std::reverse(pending_.begin() + static_cast<std::ptrdiff_t>(others), pending_.end());
  }
}

HLSceneElement* HLSceneBuilder::promiseElement(const HLSceneSpot& spot, std::optional<std::int64_t> repetition) {
  countElement(spot);
  HLSceneElement* element = &scene_.elements.emplace_back();
  pending_.push_back({spot, element, repetition});
  return element;
}

void HLSceneBuilder::member(const HLSceneSpot& spot, std::vector<HLSceneValue>& list) {
  if (isForm(*spot.json, "ref")) {
    list.emplace_back(HLSceneReference{reference(require(spot, "ref"))});
    return;
  }
  if (!spot.json->is_object()) {
    list.emplace_back(value(spot));
    return;
  }
  const auto repeat = find(spot, "repeat");
  if (!repeat) {
    list.emplace_back(promiseElement(spot, repetition()));
    return;
  }
  if (repetition()) fail(*repeat, "not inside another repeat");
  const std::int64_t count = integer(*repeat, 0, kMostRepetitions);
  for (std::int64_t number = 1; number <= count && !failed(); ++number) {
    list.emplace_back(promiseElement(spot, number));
  }
}

std::vector<HLSceneValue> HLSceneBuilder::memberList(const HLSceneSpot& spot) {
  std::vector<HLSceneValue> list;
  for (const HLSceneSpot& entry : members(spot)) member(entry, list);
  return list;
}

HLSceneValue HLSceneBuilder::attributeValue(const HLSceneSpot& spot, int depth) {
  const HLJson& json = *spot.json;
  if (isForm(json, "ref")) return HLSceneReference{reference(require(spot, "ref"))};
  if (isForm(json, "element")) {
    const HLSceneSpot element = require(spot, "element");
    if (const auto repeat = find(element, "repeat")) fail(*repeat, "only in a list of members");
    return promiseElement(element, repetition());
  }
  if (depth == 0 && isForm(json, "point")) {
    const std::vector<double> point = numbers(require(spot, "point"), 2);
    return HLValue(HLPoint{point[0], point[1]});
  }
  if (depth == 0 && isForm(json, "size")) {
    const std::vector<double> size = numbers(require(spot, "size"), 2);
    return HLValue(HLSize{size[0], size[1]});
  }
  if (!json.is_array()) return value(spot);
  std::vector<HLSceneValue> list;
  if (depth > kDeepestList) fail(spot, "nested too deeply");
  if (failed()) return list;
  for (const HLSceneSpot& entry : members(spot)) list.push_back(attributeValue(entry, depth + 1));
  return list;
}

std::vector<std::pair<std::string, HLAXError>> HLSceneBuilder::errorCodes(const HLSceneSpot& spot) {
  std::vector<std::pair<std::string, HLAXError>> codes;
  for (const HLSceneSpot& entry : entries(spot)) codes.emplace_back(keyText(entry), code(entry));
  return codes;
}

HLSceneBuilder::Id& HLSceneBuilder::identity(const std::string& name, const HLSceneSpot& spot) {
  const auto [found, isNew] = ids_.try_emplace(name);
  if (isNew) {
    found->second = {static_cast<HLSceneId>(scene_.ids.size()), false, spot};
    scene_.ids.push_back(name);
    usedIds_.push_back(&found->first);
  }
  return found->second;
}

HLSceneId HLSceneBuilder::reference(const HLSceneSpot& spot) {
  if (!spot.json->is_string()) fail(spot, "expected an element's id");
  return failed() ? -1 : identity(string(spot), spot).number;
}

HLSceneId HLSceneBuilder::definition(const HLSceneSpot& spot) {
  const std::string name = string(spot);
  if (failed()) return -1;
  if (repetition() && spot.json->get_ref<const std::string&>().find("{n}") == std::string::npos) {
    fail(spot, "an id in a repeated member must hold \"{n}\"");
  }
  Id& id = identity(name, spot);
  if (id.defined) fail(spot, "the id \"" + name + "\" is given twice");
  id.defined = true;
  return id.number;
}
