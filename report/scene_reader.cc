#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "platform/json.h"
#include "report/scene_document.h"

namespace {

// Returns nullptr for a missing key, and if the object is none.
const HLValue* member(const HLValue& object, std::string_view key) {
  const auto* entries = object.as<HLDictionary>();
  return entries == nullptr ? nullptr : HLDictionaryValue(*entries, key);
}

// Returns nullptr unless the key has a value of this type.
template <class T>
const T* memberAs(const HLValue& object, std::string_view key) {
  const HLValue* value = member(object, key);
  return value == nullptr ? nullptr : value->as<T>();
}

double numberOf(const HLValue& value) {
  if (const auto* integer = value.as<std::int64_t>()) return static_cast<double>(*integer);
  const auto* real = value.as<double>();
  return real == nullptr ? 0 : *real;
}

// Returns the point or size of two numbers from `index` on.
template <class Pair>
HLValue pairAt(const HLArray& numbers, std::size_t index) {
  if (numbers.size() < index + 2) return {};
  return Pair{numberOf(numbers[index]), numberOf(numbers[index + 1])};
}

class SceneReader {
 public:
  explicit SceneReader(HLCapture& capture) : capture_(capture) {}

  void read(const HLValue& windows) {
    HLCapturedElement& application = capture_.add();
    HLAttribute answer{HLAXErrorFailure, {}};
    if (const auto* list = windows.as<HLArray>()) answer = {HLAXErrorSuccess, elements(*list)};
    application.attributes.push_back({"AXWindows", std::move(answer)});
    for (HLCapturedElement& element : capture_.elements) {
      for (HLCapturedAttribute& attribute : element.attributes) resolve(attribute.answer.value);
    }
  }

 private:
  // Replaces references by elements, once all elements are read.
  void resolve(HLValue& value) {
    if (auto* members = std::get_if<HLArray>(&value)) {
      for (HLValue& each : *members) resolve(each);
    } else if (const auto* id = memberAs<std::string>(value, "ref")) {
      const auto found = numbers_.find(*id);
      value = found == numbers_.end() ? HLValue() : HLValue(capture_.handle(found->second));
    }
  }

  // Reads "windows", "children", "rows" or "visibleChildren".
  HLValue elements(const HLArray& list) {
    HLArray members;
    for (const HLValue& each : list) {
      const bool isElement = each.as<HLDictionary>() != nullptr && member(each, "ref") == nullptr;
      members.push_back(isElement ? element(each) : each);
    }
    return members;
  }

  HLValue element(const HLValue& object) {
    HLCapturedElement& read = capture_.add();
    if (const auto* id = memberAs<std::string>(object, "id")) numbers_[*id] = read.number();
    for (const HLTextAttribute& attribute : HLTextAttributes) {
      if (const HLValue* text = member(object, HLSceneKey(attribute.name))) add(read, attribute.name, *text);
    }
    if (const auto* frame = memberAs<HLArray>(object, "frame")) {
      add(read, HLPositionAttributeName, pairAt<HLPoint>(*frame, 0));
      add(read, HLSizeAttributeName, pairAt<HLSize>(*frame, 2));
    }
    if (const auto* actions = memberAs<HLArray>(object, "actions")) {
      for (const HLValue& action : *actions) {
        if (const auto* name = action.as<std::string>()) read.actions.names.push_back(*name);
      }
    }
    read.freshHandles = member(object, "freshHandles") != nullptr;
    for (std::string_view name : HLChildAttributes) {
      if (const auto* list = memberAs<HLArray>(object, HLSceneKey(name))) add(read, name, elements(*list));
    }
    if (const HLValue* attributes = member(object, "attributes")) addAttributes(read, *attributes);
    if (const auto* errors = memberAs<HLDictionary>(object, "errors")) addErrors(read, *errors);
    return capture_.handle(read.number());
  }

  static void add(HLCapturedElement& element, std::string_view name, HLValue value) {
    element.attributes.push_back({std::string(name), {HLAXErrorSuccess, std::move(value)}});
  }

  // Reads the attributes in the order of the writer, since some parsers sort keys.
  void addAttributes(HLCapturedElement& element, const HLValue& attributes) {
    for (std::string_view name : HLCapturedAttributeNames()) {
      if (const HLValue* value = member(attributes, name)) add(element, name, attribute(*value));
    }
    if (const HLValue* deep = member(attributes, HLSceneDeepAttribute)) (void)attribute(*deep);
  }

  HLValue attribute(const HLValue& value) {
    if (const auto* list = value.as<HLArray>()) {
      HLArray members;
      for (const HLValue& each : *list) members.push_back(attribute(each));
      return members;
    }
    if (const HLValue* object = member(value, "element")) return element(*object);
    if (const auto* point = memberAs<HLArray>(value, "point")) return pairAt<HLPoint>(*point, 0);
    if (const auto* size = memberAs<HLArray>(value, "size")) return pairAt<HLSize>(*size, 0);
    return value;
  }

  static void addErrors(HLCapturedElement& element, const HLDictionary& errors) {
    for (const HLDictionaryEntry& entry : errors) {
      const auto error = static_cast<HLAXError>(numberOf(entry.value));
      if (entry.key == "actions") element.actions.error = error;
      for (HLCapturedAttribute& attribute : element.attributes) {
        if (attribute.name == entry.key) attribute.answer = {error, {}};
      }
    }
  }

  HLCapture& capture_;
  std::map<std::string, int> numbers_;  // of elements, by id
};

}  // namespace

std::unique_ptr<HLCapture> HLCaptureOfScene(std::string_view text) {
  const std::optional<HLValue> document = HLReadJson(text);
  if (!document) return nullptr;
  auto capture = std::make_unique<HLCapture>();
  const bool* trusted = memberAs<bool>(*document, "trusted");
  capture->trusted = trusted != nullptr && *trusted;
  const auto* applications = memberAs<HLArray>(*document, "applications");
  if (applications == nullptr || applications->empty()) return capture;
  if (const HLValue* windows = member(applications->front(), "windows")) SceneReader(*capture).read(*windows);
  return capture;
}
