#include "platform/sim/scene/scene_builder.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::int64_t kMostRepetitions = 100000;
constexpr int kDeepestRelaunch = 100;

struct ShortKey {
  std::string_view key;
  std::string_view attribute;
};
constexpr std::array<ShortKey, 6> kTextKeys = {{{"role", "AXRole"},
                                                {"subrole", "AXSubrole"},
                                                {"roleDescription", "AXRoleDescription"},
                                                {"title", "AXTitle"},
                                                {"description", "AXDescription"},
                                                {"identifier", "AXIdentifier"}}};
constexpr std::array<ShortKey, 3> kListKeys = {
    {{"children", "AXChildren"}, {"rows", "AXRows"}, {"visibleChildren", "AXVisibleChildren"}}};

// {"ref": ...} and the like: an object with that key alone.
bool isForm(const HLJson& json, std::string_view key) {
  return json.is_object() && json.size() == 1 && json.begin().key() == key;
}

}  // namespace

const HLSceneApplication* HLSceneBuilder::application(const HLSceneSpot& spot) {
  HLSceneApplication& made = scene_.allApplications.emplace_back();
  source_.expectObject(spot, {"pid", "bundleIdentifier", "name", "windows", "terminated", "lingers", "ignoresTerminate",
                              "relaunch", "elementFails", "observerFails", "registerErrors"});
  if (source_.failed()) return &made;
  made.pid = source_.pid(source_.require(spot, "pid"));
  if (const auto key = source_.find(spot, "bundleIdentifier")) made.bundleIdentifier = source_.string(*key);
  if (const auto key = source_.find(spot, "name")) made.name = source_.string(*key);
  const auto windows = source_.find(spot, "windows");
  if (!windows) made.windows.emplace();
  if (windows && !windows->json->is_null()) made.windows = memberList(*windows);
  if (const auto key = source_.find(spot, "terminated")) made.terminated = source_.boolean(*key);
  if (const auto key = source_.find(spot, "lingers")) made.lingers = source_.seconds(*key);
  if (const auto key = source_.find(spot, "ignoresTerminate")) made.ignoresTerminate = source_.boolean(*key);
  if (const auto key = source_.find(spot, "elementFails")) made.elementFails = source_.boolean(*key);
  if (const auto key = source_.find(spot, "observerFails")) made.observerFails = source_.boolean(*key);
  if (const auto key = source_.find(spot, "registerErrors")) made.registerErrors = errorCodes(*key);
  if (const auto key = source_.find(spot, "relaunch")) {
    source_.expectObject(*key, {"after", "application"});
    if (++relaunchDepth_ > kDeepestRelaunch) source_.fail(*key, "nested too deeply");
    if (source_.failed()) return &made;
    HLSceneRelaunch relaunch;
    if (const auto after = source_.find(*key, "after")) relaunch.after = source_.seconds(*after);
    relaunch.application = application(source_.require(*key, "application"));
    made.relaunch = relaunch;
    --relaunchDepth_;
  }
  return &made;
}

HLSceneTimelineEvent HLSceneBuilder::timelineEvent(const HLSceneSpot& spot) {
  HLSceneTimelineEvent made;
  if (!spot.json->is_object()) source_.fail(spot, "expected an object");
  if (source_.failed()) return made;
  made.at = HLTimeAfter(0, source_.seconds(source_.require(spot, "at")));
  made.event = event(spot, true);
  return made;
}

void HLSceneBuilder::finish() {
  readPending();
  for (const std::string* name : usedIds_) {
    const Id& id = ids_.at(*name);
    if (!id.defined) source_.fail(id.firstUse, "no element has the id \"" + *name + "\"");
  }
}

void HLSceneBuilder::readPending() {
  std::reverse(pending_.begin(), pending_.end());
  while (!pending_.empty() && !source_.failed()) {
    const Pending next = pending_.back();
    pending_.pop_back();
    const std::size_t others = pending_.size();
    source_.setRepetition(next.repetition);
    readElement(next.spot, *next.element);
    source_.setRepetition(std::nullopt);
    // What it holds comes before what stands behind it, first things first.
    std::reverse(pending_.begin() + static_cast<std::ptrdiff_t>(others), pending_.end());
  }
}

HLSceneElement* HLSceneBuilder::promiseElement(const HLSceneSpot& spot, std::optional<std::int64_t> repetition) {
  source_.countElement(spot);
  HLSceneElement* element = &scene_.elements.emplace_back();
  pending_.push_back({spot, element, repetition});
  return element;
}

void HLSceneBuilder::readMember(const HLSceneSpot& spot, std::vector<HLSceneValue>& list) {
  if (isForm(*spot.json, "ref")) {
    list.emplace_back(HLSceneReference{reference(source_.require(spot, "ref"))});
    return;
  }
  if (!spot.json->is_object()) {
    list.emplace_back(source_.value(spot));
    return;
  }
  const auto repeat = source_.find(spot, "repeat");
  if (!repeat) {
    list.emplace_back(promiseElement(spot, source_.repetition()));
    return;
  }
  if (source_.repetition()) source_.fail(*repeat, "not inside another repeat");
  const std::int64_t count = source_.integer(*repeat, 0, kMostRepetitions);
  for (std::int64_t number = 1; number <= count && !source_.failed(); ++number) {
    list.emplace_back(promiseElement(spot, number));
  }
}

std::vector<HLSceneValue> HLSceneBuilder::memberList(const HLSceneSpot& spot) {
  std::vector<HLSceneValue> list;
  for (const HLSceneSpot& member : source_.members(spot)) readMember(member, list);
  return list;
}

void HLSceneBuilder::readElement(const HLSceneSpot& spot, HLSceneElement& element) {
  source_.expectObject(spot, {"id", "role", "subrole", "roleDescription", "title", "description", "identifier", "value",
                              "frame", "children", "rows", "visibleChildren", "attributes", "actions", "errors",
                              "onAction", "closes", "freshHandles", "repeat"});
  if (source_.failed()) return;
  if (const auto key = source_.find(spot, "id")) element.id = definition(*key);
  readAttributes(spot, element);
  if (const auto key = source_.find(spot, "actions")) element.actions = source_.strings(*key);
  if (const auto key = source_.find(spot, "errors")) element.errors = errorCodes(*key);
  if (const auto key = source_.find(spot, "onAction")) {
    for (const HLSceneSpot& entry : source_.entries(*key)) {
      element.reactions.emplace_back(source_.keyText(entry), reaction(entry));
    }
  }
  if (const auto key = source_.find(spot, "closes")) element.closes = reference(*key);
  if (const auto key = source_.find(spot, "freshHandles")) element.freshHandles = source_.boolean(*key);
}

void HLSceneBuilder::readAttributes(const HLSceneSpot& spot, HLSceneElement& element) {
  const auto add = [&element](std::string_view name, HLSceneValue value) {
    element.attributes.push_back({std::string(name), std::move(value)});
  };
  if (const auto key = source_.find(spot, "attributes")) {
    for (const HLSceneSpot& entry : source_.entries(*key)) add(source_.keyText(entry), attributeValue(entry));
  }
  for (const ShortKey& shortKey : kTextKeys) {
    if (const auto key = source_.find(spot, shortKey.key)) add(shortKey.attribute, HLValue(source_.string(*key)));
  }
  if (const auto key = source_.find(spot, "value")) {
    const bool plain = key->json->is_string() || key->json->is_number() || key->json->is_boolean();
    if (!plain) source_.fail(*key, "expected a string, a number, true or false");
    add("AXValue", source_.value(*key));
  }
  if (const auto key = source_.find(spot, "frame")) {
    const std::vector<double> frame = source_.numbers(*key, 4);
    add("AXPosition", HLValue(HLPoint{frame[0], frame[1]}));
    add("AXSize", HLValue(HLSize{frame[2], frame[3]}));
  }
  for (const ShortKey& shortKey : kListKeys) {
    if (const auto key = source_.find(spot, shortKey.key)) add(shortKey.attribute, memberList(*key));
  }
}

HLSceneValue HLSceneBuilder::attributeValue(const HLSceneSpot& spot, int depth) {
  const HLJson& json = *spot.json;
  if (isForm(json, "ref")) return HLSceneReference{reference(source_.require(spot, "ref"))};
  if (isForm(json, "element")) {
    const HLSceneSpot element = source_.require(spot, "element");
    if (const auto repeat = source_.find(element, "repeat")) source_.fail(*repeat, "only in a list of members");
    return promiseElement(element, source_.repetition());
  }
  if (depth == 0 && isForm(json, "point")) {
    const std::vector<double> point = source_.numbers(source_.require(spot, "point"), 2);
    return HLValue(HLPoint{point[0], point[1]});
  }
  if (depth == 0 && isForm(json, "size")) {
    const std::vector<double> size = source_.numbers(source_.require(spot, "size"), 2);
    return HLValue(HLSize{size[0], size[1]});
  }
  constexpr int kDeepestList = 100;
  if (!json.is_array()) return source_.value(spot);
  std::vector<HLSceneValue> list;
  if (depth > kDeepestList) source_.fail(spot, "nested too deeply");
  if (source_.failed()) return list;
  for (const HLSceneSpot& member : source_.members(spot)) list.push_back(attributeValue(member, depth + 1));
  return list;
}

HLSceneReaction HLSceneBuilder::reaction(const HLSceneSpot& spot) {
  HLSceneReaction made;
  source_.expectObject(spot, {"error", "seconds", "after", "effects"});
  if (source_.failed()) return made;
  if (const auto key = source_.find(spot, "error")) made.error = source_.code(*key);
  if (const auto key = source_.find(spot, "seconds")) made.seconds = source_.seconds(*key);
  if (const auto key = source_.find(spot, "after")) made.after = source_.seconds(*key);
  if (const auto key = source_.find(spot, "effects")) {
    for (const HLSceneSpot& effect : source_.members(*key)) made.effects.push_back(event(effect, false));
  }
  return made;
}

std::vector<std::pair<std::string, HLAXError>> HLSceneBuilder::errorCodes(const HLSceneSpot& spot) {
  std::vector<std::pair<std::string, HLAXError>> codes;
  for (const HLSceneSpot& entry : source_.entries(spot))
    codes.emplace_back(source_.keyText(entry), source_.code(entry));
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
  if (!spot.json->is_string()) source_.fail(spot, "expected an element's id");
  return source_.failed() ? -1 : identity(source_.string(spot), spot).number;
}

HLSceneId HLSceneBuilder::definition(const HLSceneSpot& spot) {
  const std::string name = source_.string(spot);
  if (source_.failed()) return -1;
  if (source_.repetition() && spot.json->get_ref<const std::string&>().find("{n}") == std::string::npos) {
    source_.fail(spot, "an id in a repeated member must hold \"{n}\"");
  }
  Id& id = identity(name, spot);
  if (id.defined) source_.fail(spot, "the id \"" + name + "\" is given twice");
  id.defined = true;
  return id.number;
}
