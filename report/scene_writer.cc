#include <algorithm>
#include <cmath>
#include <cstdint>
#include <deque>
#include <limits>
#include <map>
#include <set>
#include <utility>

#include "core/scan/context.h"
#include "core/scan/element_access.h"
#include "core/scan/words.h"
#include "platform/platform.h"
#include "platform/process_info.h"
#include "platform/text.h"
#include "report/scene_document.h"

namespace {

constexpr int kNestedElements = 60;  // an element takes two levels of JSON; some parsers allow about 500

bool isList(std::string_view attribute) {
  const auto* const end = HLChildAttributes.end();
  return attribute == "AXWindows" || std::find(HLChildAttributes.begin(), end, attribute) != end;
}

// Calls `found` with the number of each element in the value, also inside lists.
template <class Found>
void forEachElement(const HLValue& value, const Found& found) {
  if (const auto* element = value.as<HLElementRef>()) return found(HLCapturedNumber(**element));
  if (const auto* members = value.as<HLArray>()) {
    for (const HLValue& member : *members) forEachElement(member, found);
  }
}

// How the elements of a capture refer to each other.
struct Links {
  std::map<int, int> owners;  // of each element: the first that names it, breadth-first
  std::set<int> listed;       // those that are in a list
  std::set<int> named;        // those that need an id
};

Links linksOf(const HLCapture& capture) {
  Links links;
  std::set<int> seen;
  for (const HLCapturedElement& element : capture.elements) {
    for (const HLCapturedAttribute& attribute : element.attributes) {
      forEachElement(attribute.answer.value, [&](int number) {
        links.owners.emplace(number, element.number());
        if (isList(attribute.name)) links.listed.insert(number);
        if (!seen.insert(number).second) links.named.insert(number);
      });
    }
  }
  return links;
}

// Writes integers without a fraction. Clamps infinities, which JSON lacks.
HLValue coordinate(double value) {
  constexpr double kMost = std::numeric_limits<double>::max();
  constexpr double kWhole = 1e15;
  const bool isWhole = std::trunc(value) == value && std::abs(value) < kWhole && !(value == 0 && std::signbit(value));
  if (isWhole) return static_cast<std::int64_t>(value);
  return std::clamp(value, -kMost, kMost);
}

// Returns a missing value for NaN, which JSON lacks.
HLValue coordinates(std::string_view key, double first, double second) {
  if (std::isnan(first) || std::isnan(second)) return {};
  return HLDictionary{{std::string(key), HLArray{coordinate(first), coordinate(second)}}};
}

class SceneWriter {
 public:
  SceneWriter(const HLCapture& capture, const HLJudgement& judgement)
      : capture_(capture), links_(linksOf(capture)), order_(capture.elements.size(), -1) {
    if (!order_.empty()) order_[0] = 0;
    for (const HLDismissTarget& press : judgement.batch.resolved) addCloses(HLCapturedNumber(*press.element));
    for (const HLCapturedElement& element : capture.elements) {
      if (HLExplicitDismissAction(element.copyFacts().actionNames)) addCloses(element.number());
    }
  }

  HLValue windows() {
    const HLAttribute answer = capture_.element(0).copyAttributeValue("AXWindows");
    const auto* members = answer.value.as<HLArray>();
    if (members == nullptr) return {};
    HLArray windows;
    HLDictionary* last = nullptr;
    windows.reserve(members->size());
    for (const HLValue& member : *members) {
      const std::size_t before = written_;
      windows.push_back(memberValue(member, 0));
      if (written_ > before) last = std::get_if<HLDictionary>(&windows.back());
    }
    if (last != nullptr && !deep_.empty()) addDeep(*last);
    return windows;
  }

  [[nodiscard]] std::vector<int> order() && { return std::move(order_); }

 private:
  void addCloses(int control) {
    const int notification = notificationAbove(control);
    closes_[control] = notification;
    links_.named.insert(notification);
  }

  // Returns the nearest element at or above the control with a banner's subrole, or else with words of a notification;
  // else the control itself. Ignores the words of the window.
  [[nodiscard]] int notificationAbove(int control) const {
    std::vector<int> path = {control};
    for (auto owner = links_.owners.find(control); owner != links_.owners.end() && owner->second != 0;
         owner = links_.owners.find(owner->second)) {
      if (std::find(path.begin(), path.end(), owner->second) != path.end()) break;
      path.push_back(owner->second);
    }
    for (int number : path) {
      if (HLIsNotificationBannerSubrole(capture_.element(number).copyFacts().subrole)) return number;
    }
    if (path.size() > 1) path.pop_back();  // the window
    for (int number : path) {
      if (HLIsNotificationContext(HLSearchableContext(capture_.element(number).copyFacts()))) return number;
    }
    return control;
  }

  [[nodiscard]] static std::string idOf(int number) { return "e" + std::to_string(number); }

  HLValue reference(int number) {
    links_.named.insert(number);
    return HLDictionary{{"ref", idOf(number)}};
  }

  // Whether an element is in the document, or will be by addDeep().
  [[nodiscard]] bool isPlaced(int number) const {
    return order_[static_cast<std::size_t>(number)] >= 0 ||
           std::find(deep_.begin(), deep_.end(), number) != deep_.end();
  }

  HLValue deferred(int number) {
    deep_.push_back(number);
    return reference(number);
  }

  // A member of a list: an element, a reference to one, or another value.
  HLValue memberValue(const HLValue& member, int depth) {
    if (const auto* held = member.as<HLElementRef>()) {
      const int number = HLCapturedNumber(**held);
      if (isPlaced(number)) return reference(number);
      return depth < kNestedElements ? elementValue(number, depth) : deferred(number);
    }
    const bool isScalar = member.as<std::string>() != nullptr || HLNumberText(member);
    return isScalar ? member : HLValue();
  }

  using Names = std::set<std::string_view>;

  HLValue elementValue(int number, int depth) {
    order_[static_cast<std::size_t>(number)] = static_cast<int>(++written_);
    const HLCapturedElement& element = capture_.element(number);
    HLDictionary value;
    if (links_.named.count(number) > 0) value.push_back({"id", idOf(number)});
    Names done;  // attributes that have a key of their own
    addTexts(element, value, done);
    addFrame(element, value, done);
    if (element.actions.error == HLAXErrorSuccess && !element.actions.names.empty()) {
      value.push_back({"actions", HLArray(element.actions.names.begin(), element.actions.names.end())});
    }
    if (const auto closes = closes_.find(number); closes != closes_.end()) {
      value.push_back({"closes", idOf(closes->second)});
    }
    if (element.freshHandles) value.push_back({"freshHandles", true});
    addLists(element, depth, value, done);
    addFurther(element, depth, value, done);
    return value;
  }

  static void addTexts(const HLCapturedElement& element, HLDictionary& value, Names& done) {
    for (const HLTextAttribute& attribute : HLTextAttributes) {
      HLValue text = element.copyAttributeValue(attribute.name).value;
      const bool isNumber = attribute.name == "AXValue" && HLNumberText(text);
      if (text.as<std::string>() == nullptr && !isNumber) continue;
      value.push_back({HLSceneKey(attribute.name), std::move(text)});
      done.insert(attribute.name);
    }
  }

  static void addFrame(const HLCapturedElement& element, HLDictionary& value, Names& done) {
    const HLValue position = element.copyAttributeValue(HLPositionAttributeName).value;
    const HLValue size = element.copyAttributeValue(HLSizeAttributeName).value;
    const auto* point = position.as<HLPoint>();
    const auto* extent = size.as<HLSize>();
    if (point == nullptr || extent == nullptr) return;
    HLArray frame;
    for (double number : {point->x, point->y, extent->width, extent->height}) {
      if (std::isnan(number)) return;
      frame.push_back(coordinate(number));
    }
    value.push_back({"frame", std::move(frame)});
    done.insert({HLPositionAttributeName, HLSizeAttributeName});
  }

  void addLists(const HLCapturedElement& element, int depth, HLDictionary& value, Names& done) {
    for (std::string_view name : HLChildAttributes) {
      const HLAttribute answer = element.copyAttributeValue(name);
      const auto* members = answer.value.as<HLArray>();
      if (members == nullptr) continue;
      HLArray list;
      for (const HLValue& member : *members) list.push_back(memberValue(member, depth + 1));
      value.push_back({HLSceneKey(name), std::move(list)});
      done.insert(name);
    }
  }

  void addFurther(const HLCapturedElement& element, int depth, HLDictionary& value, const Names& done) {
    HLDictionary further;
    HLDictionary errors;
    for (const HLCapturedAttribute& attribute : element.attributes) {
      if (done.count(attribute.name) > 0) continue;
      further.push_back({attribute.name, attributeValue(attribute.answer.value, depth)});
      const HLAXError error = attribute.answer.error;
      if (error != HLAXErrorSuccess) errors.push_back({attribute.name, std::int64_t{error}});
    }
    if (element.actions.error != HLAXErrorSuccess) {
      errors.push_back({"actions", std::int64_t{element.actions.error}});
    }
    if (!further.empty()) value.push_back({"attributes", std::move(further)});
    if (!errors.empty()) value.push_back({"errors", std::move(errors)});
  }

  // Returns the value of an attribute under "attributes".
  HLValue attributeValue(const HLValue& value, int depth) {
    if (const auto* held = value.as<HLElementRef>()) {
      const int number = HLCapturedNumber(**held);
      if (isPlaced(number) || links_.listed.count(number) > 0) return reference(number);
      if (depth >= kNestedElements) return deferred(number);
      return HLDictionary{{"element", elementValue(number, depth + 1)}};
    }
    if (const auto* members = value.as<HLArray>()) {
      HLArray list;
      for (const HLValue& member : *members) {
        list.push_back(member.as<HLElementRef>() != nullptr ? attributeValue(member, depth)
                                                            : memberValue(member, depth));
      }
      return list;
    }
    if (const auto* point = value.as<HLPoint>()) return coordinates("point", point->x, point->y);
    if (const auto* size = value.as<HLSize>()) return coordinates("size", size->width, size->height);
    if (value.as<HLDictionary>() != nullptr) return HLDictionary();
    return value;
  }

  void addDeep(HLDictionary& window) {
    HLArray elements;
    while (!deep_.empty()) {
      const int number = deep_.front();
      deep_.pop_front();
      elements.push_back(HLDictionary{{"element", elementValue(number, 0)}});
    }
    const auto attributes = std::find_if(window.begin(), window.end(),
                                         [](const HLDictionaryEntry& entry) { return entry.key == "attributes"; });
    HLDictionaryEntry deep = {std::string(HLSceneDeepAttribute), std::move(elements)};
    if (attributes == window.end()) {
      window.push_back({"attributes", HLDictionary{std::move(deep)}});
    } else {
      std::get<HLDictionary>(attributes->value).push_back(std::move(deep));
    }
  }

  const HLCapture& capture_;
  Links links_;
  std::map<int, int> closes_;  // from a control to the notification that it closes
  std::vector<int> order_;     // positions in the document; -1 for elements that are not written yet
  std::deque<int> deep_;       // elements that addDeep() has still to write
  std::size_t written_ = 0;
};

void addText(HLDictionary& dictionary, std::string key, const std::optional<std::string>& text) {
  if (text && !text->empty()) dictionary.push_back({std::move(key), *text});
}

// Returns identifier and information dictionary; no paths, since they may contain the user's name.
HLDictionary bundleValue() {
  HLProcessInfo& process = HLCurrentPlatform().process;
  HLDictionary bundle;
  addText(bundle, "identifier", process.bundleIdentifier());
  HLDictionary info;
  for (const HLDictionaryEntry& entry : process.informationDictionary()) {
    if (entry.value.as<std::string>() != nullptr) info.push_back(entry);
  }
  if (!info.empty()) bundle.push_back({"info", std::move(info)});
  return bundle;
}

// Returns "recorded": where the recording comes from.
HLDictionary noteValue(const HLCapture& capture, const std::string& program) {
  HLDictionary server;
  addText(server, "name", capture.server.name);
  addText(server, "vendor", capture.server.vendor);
  addText(server, "version", capture.server.version);
  HLDictionary value = {{"program", program}, {"texts", capture.texts == HLTexts::kept ? "kept" : "replaced"}};
  addText(value, "system", capture.host);
  if (!server.empty()) value.push_back({"server", std::move(server)});
  if (!capture.isComplete) value.push_back({"complete", false});
  HLArray raw;
  for (const HLRawElement& element : capture.raw) raw.push_back(HLRawElementLine(element));
  if (!raw.empty()) value.push_back({"rawTree", std::move(raw)});
  return value;
}

}  // namespace

std::string HLSceneKey(std::string_view attribute) {
  std::string key(attribute.substr(2));
  key.replace(0, 1, HLLowercase(key.substr(0, 1)));
  return key;
}

HLRecordedScene HLSceneOfCapture(const HLCapture& capture, const HLJudgement& judgement, const std::string& program) {
  HLDictionary scene = {{"recorded", noteValue(capture, program)}, {"trusted", capture.trusted}};
  if (HLDictionary bundle = bundleValue(); !bundle.empty()) scene.push_back({"bundle", std::move(bundle)});
  SceneWriter writer(capture, judgement);
  if (capture.process) {
    HLDictionary application = {{"pid", std::int64_t{capture.process->pid}}};
    addText(application, "bundleIdentifier", capture.process->bundleIdentifier);
    addText(application, "name", capture.process->name);
    if (capture.process->terminated) application.push_back({"terminated", true});
    if (capture.elements.empty()) {
      application.push_back({"elementFails", true});
    } else {
      application.push_back({"windows", writer.windows()});
    }
    scene.push_back({"applications", HLArray{std::move(application)}});
  }
  return {std::move(scene), std::move(writer).order()};
}
