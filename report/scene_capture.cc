// Reads a recording again. It knows what recordings have, not all that scenes may have.
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "platform/json.h"
#include "report/scene_text.h"

namespace {

const HLValue* member(const HLValue& object, std::string_view key) {
  const auto* entries = object.as<HLDictionary>();
  return entries == nullptr ? nullptr : HLDictionaryValue(*entries, key);
}

std::string textOf(const HLValue* value) {
  const auto* text = value == nullptr ? nullptr : value->as<std::string>();
  return text == nullptr ? "" : *text;
}

double numberOf(const HLValue& value) {
  if (const auto* integer = value.as<std::int64_t>()) return static_cast<double>(*integer);
  const auto* real = value.as<double>();
  return real == nullptr ? 0 : *real;
}

class SceneReader {
 public:
  explicit SceneReader(HLCapture& capture) : capture_(capture) {}

  void read(const HLValue& windows) {
    HLCapturedElement& application = capture_.add();
    HLAttribute answer{HLAXErrorFailure, {}};
    if (windows.as<HLArray>() != nullptr) answer = {HLAXErrorSuccess, listValue(windows, false)};
    application.attributes.push_back({"AXWindows", std::move(answer)});
    for (HLCapturedElement& element : capture_.elements) {
      for (HLCapturedAttribute& attribute : element.attributes) resolve(attribute.answer.value);
    }
  }

 private:
  // An element that is referred to is found when all are read.
  HLValue placeholder(const HLValue& reference) {
    references_.push_back(textOf(&reference));
    return HLDictionary{{"ref", static_cast<std::int64_t>(references_.size() - 1)}};
  }

  void resolve(HLValue& value) {
    if (auto* members = std::get_if<HLArray>(&value)) {
      for (HLValue& each : *members) resolve(each);
    } else if (const HLValue* reference = member(value, "ref")) {
      const auto* index = reference->as<std::int64_t>();
      const auto found = ids_.find(references_[static_cast<std::size_t>(*index)]);
      value = found == ids_.end() ? HLValue() : HLValue(capture_.handle(found->second));
    }
  }

  // The members of a list are elements; those of an attribute's list are wrapped.
  HLValue listValue(const HLValue& list, bool wrapped) {
    HLArray members;
    for (const HLValue& each : *list.as<HLArray>()) {
      if (each.as<HLDictionary>() == nullptr) {
        members.push_back(each);
      } else if (const HLValue* reference = member(each, "ref")) {
        members.push_back(placeholder(*reference));
      } else if (wrapped) {
        const HLValue* element = member(each, "element");
        members.push_back(element == nullptr ? HLValue() : elementValue(*element));
      } else {
        members.push_back(elementValue(each));
      }
    }
    return members;
  }

  HLValue elementValue(const HLValue& object) {
    HLCapturedElement& element = capture_.add();
    const int number = element.number();
    if (const std::string id = textOf(member(object, "id")); !id.empty()) ids_[id] = number;
    for (const auto& [key, name] : HLSceneTextKeys) {
      if (const HLValue* text = member(object, key)) add(element, name, *text);
    }
    if (const HLValue* frame = member(object, "frame")) addFrame(element, *frame);
    if (const HLValue* actions = member(object, "actions"); actions != nullptr && actions->as<HLArray>() != nullptr) {
      for (const HLValue& action : *actions->as<HLArray>()) element.actions.names.push_back(textOf(&action));
    }
    element.freshHandles = member(object, "freshHandles") != nullptr;
    for (const auto& [key, name] : HLSceneListKeys) {
      if (const HLValue* list = member(object, key); list != nullptr && list->as<HLArray>() != nullptr) {
        add(element, name, listValue(*list, false));
      }
    }
    if (const HLValue* attributes = member(object, "attributes")) addAttributes(element, *attributes);
    if (const HLValue* errors = member(object, "errors")) addErrors(element, *errors);
    return capture_.handle(number);
  }

  static void add(HLCapturedElement& element, std::string_view name, HLValue value) {
    element.attributes.push_back({std::string(name), {HLAXErrorSuccess, std::move(value)}});
  }

  static void addFrame(HLCapturedElement& element, const HLValue& frame) {
    const auto* numbers = frame.as<HLArray>();
    if (numbers == nullptr || numbers->size() != 4) return;
    const HLArray& at = *numbers;
    add(element, HLPositionAttributeName, HLPoint{numberOf(at[0]), numberOf(at[1])});
    add(element, HLSizeAttributeName, HLSize{numberOf(at[2]), numberOf(at[3])});
  }

  // In the order in which they were written, which not every parser keeps.
  void addAttributes(HLCapturedElement& element, const HLValue& attributes) {
    for (std::string_view name : HLCapturedAttributeNames()) {
      if (const HLValue* value = member(attributes, name)) add(element, name, attributeValue(*value));
    }
    const HLValue* deep = member(attributes, HLSceneDeepAttribute);
    if (deep != nullptr && deep->as<HLArray>() != nullptr) (void)listValue(*deep, true);
  }

  HLValue attributeValue(const HLValue& value) {
    if (value.as<HLArray>() != nullptr) return listValue(value, true);
    if (const HLValue* reference = member(value, "ref")) return placeholder(*reference);
    if (const HLValue* element = member(value, "element")) return elementValue(*element);
    const HLValue* point = member(value, "point");
    const HLValue* size = member(value, "size");
    const HLValue* both = point != nullptr ? point : size;
    if (both == nullptr) return value;
    const auto* numbers = both->as<HLArray>();
    if (numbers == nullptr || numbers->size() != 2) return {};
    const double first = numberOf((*numbers)[0]);
    const double second = numberOf((*numbers)[1]);
    return point != nullptr ? HLValue(HLPoint{first, second}) : HLValue(HLSize{first, second});
  }

  static void addErrors(HLCapturedElement& element, const HLValue& errors) {
    if (errors.as<HLDictionary>() == nullptr) return;
    for (const HLDictionaryEntry& entry : *errors.as<HLDictionary>()) {
      const auto error = static_cast<HLAXError>(numberOf(entry.value));
      if (entry.key == "actions") element.actions.error = error;
      for (HLCapturedAttribute& attribute : element.attributes) {
        if (attribute.name == entry.key) attribute.answer = {error, {}};
      }
    }
  }

  HLCapture& capture_;
  std::map<std::string, int> ids_;
  std::vector<std::string> references_;
};

}  // namespace

std::unique_ptr<HLCapture> HLCaptureOfScene(std::string_view text) {
  const std::optional<HLValue> document = HLReadJson(text);
  if (!document) return nullptr;
  auto capture = std::make_unique<HLCapture>();
  const HLValue* trusted = member(*document, "trusted");
  const bool* isTrusted = trusted == nullptr ? nullptr : trusted->as<bool>();
  capture->trusted = isTrusted != nullptr && *isTrusted;
  const HLValue* applications = member(*document, "applications");
  const auto* list = applications == nullptr ? nullptr : applications->as<HLArray>();
  if (list == nullptr || list->empty()) return capture;
  const HLValue& application = list->front();
  const HLValue* pid = member(application, "pid");
  if (pid == nullptr) return nullptr;
  capture->process = HLRunningApplication{static_cast<std::int32_t>(numberOf(*pid)), {}, {}, false};
  if (const HLValue* windows = member(application, "windows")) SceneReader(*capture).read(*windows);
  return capture;
}
