#include "report/capture.h"

#include <algorithm>
#include <array>
#include <unordered_map>

#include "core/scan/element_access.h"
#include "core/scan/notification_center.h"
#include "platform/element_facts.h"
#include "platform/platform.h"

namespace {

constexpr std::string_view kWindows = "AXWindows";
// Read besides HLFactAttributeNames: controls of the element, and why the host doubts one.
constexpr std::array<std::string_view, 4> kFurtherAttributes = {"AXCloseButton", "AXCancelButton", "AXDefaultButton",
                                                                HLDoubtAttributeName};

// One of several handles of an element with freshHandles.
class FreshHandle : public HLElement {
 public:
  explicit FreshHandle(const HLCapturedElement& element) : element_(element) {}

  [[nodiscard]] const HLCapturedElement& element() const { return element_; }

  [[nodiscard]] HLAttribute copyAttributeValue(std::string_view name) const override {
    return element_.copyAttributeValue(name);
  }
  [[nodiscard]] HLActionList copyActionNames() const override { return element_.copyActionNames(); }
  [[nodiscard]] HLAXError performAction(std::string_view action) const override {
    return element_.performAction(action);
  }
  [[nodiscard]] bool isEqual(const HLElement& other) const override { return element_.isEqual(other); }
  [[nodiscard]] std::size_t hash() const override { return element_.hash(); }

 private:
  const HLCapturedElement& element_;
};

void replaceFreshHandles(HLValue& value) {
  if (const HLElementRef* held = value.as<HLElementRef>()) {
    const auto* element = dynamic_cast<const HLCapturedElement*>(held->get());
    if (element != nullptr && element->freshHandles) value = std::make_shared<FreshHandle>(*element);
  } else if (auto* members = std::get_if<HLArray>(&value)) {
    for (HLValue& member : *members) replaceFreshHandles(member);
  }
}

class ScreenReader {
 public:
  explicit ScreenReader(HLCapture& capture) : capture_(capture) {}

  void read(const HLElementRef& application) {
    readAttribute(capture_.add(), *application, kWindows);
    // Reading an element appends its children to found_.
    for (std::size_t next = 0; next < found_.size(); ++next) {
      const HLElement& handle = *found_[next];
      HLCapturedElement& element = capture_.elements[next + 1];
      for (std::string_view name : names_) readAttribute(element, handle, name);
      element.actions = handle.copyActionNames();
      while (!fresh_.empty()) {
        const HLElementRef parent = std::move(fresh_.front());
        fresh_.pop_front();
        meetChildren(*parent);
      }
    }
  }

 private:
  void readAttribute(HLCapturedElement& element, const HLElement& handle, std::string_view name) {
    HLAttribute answer = handle.copyAttributeValue(name);
    if (answer.error == HLAXErrorNoValue) return;
    adopt(answer.value);
    element.attributes.push_back({std::string(name), std::move(answer)});
  }

  // Replaces elements in the value by captured ones.
  void adopt(HLValue& value) {
    if (const HLElementRef* held = value.as<HLElementRef>()) {
      const int number = *held == nullptr ? -1 : numberOf(*held);
      value = number < 0 ? HLValue() : HLValue(capture_.handle(number));
    } else if (auto* members = std::get_if<HLArray>(&value)) {
      for (HLValue& member : *members) adopt(member);
    }
  }

  int numberOf(const HLElementRef& handle) {
    if (const auto known = numbers_.find(handle); known != numbers_.end()) {
      HLCapturedElement& element = capture_.element(known->second);
      if (known->first != handle && !std::exchange(element.freshHandles, true)) fresh_.push_back(handle);
      return element.number();
    }
    if (capture_.elements.size() >= HLCaptureLimit) {
      capture_.isComplete = false;
      return -1;
    }
    found_.push_back(handle);
    return numbers_.emplace(handle, capture_.add().number()).first->second;
  }

  // A scan visits the element again by its second handle. Reading the children as well shows whether they get new
  // handles too.
  void meetChildren(const HLElement& element) {
    for (std::string_view name : HLChildAttributes) {
      for (const HLElementRef& child : HLElementsFromAttribute(element.copyAttributeValue(name))) (void)numberOf(child);
    }
  }

  HLCapture& capture_;
  const std::vector<std::string_view> names_ = HLCapturedAttributeNames();
  std::deque<HLElementRef> found_;  // first handles: of element 1, of element 2, and so on
  std::deque<HLElementRef> fresh_;  // second handles of elements, whose children are still to be met
  std::unordered_map<HLElementRef, int, HLElementHash, HLElementEqual> numbers_;
};

}  // namespace

HLAttribute HLCapturedElement::copyAttributeValue(std::string_view name) const {
  const auto found = std::find_if(attributes.begin(), attributes.end(),
                                  [name](const HLCapturedAttribute& attribute) { return attribute.name == name; });
  if (found == attributes.end()) return {HLAXErrorNoValue, {}};
  HLAttribute answer = found->answer;
  replaceFreshHandles(answer.value);
  return answer;
}

bool HLCapturedElement::isEqual(const HLElement& other) const { return HLCapturedNumber(other) == number_; }

std::unique_ptr<HLCapture> HLCaptureScreen() {
  auto capture = std::make_unique<HLCapture>();
  capture->trusted = HLIsAccessibilityTrusted(false);
  capture->process = HLNotificationCenterApplication();
  HLHostReport& report = HLCurrentPlatform().report;
  capture->host = report.systemVersion();
  capture->program = report.programBundle();
  if (!capture->process) return capture;
  capture->server = report.serverVersion(capture->process->pid);
  const HLElementRef application = HLNotificationCenterElement(capture->process->pid);
  if (application == nullptr) return capture;
  ScreenReader(*capture).read(application);
  capture->raw = report.rawElements(capture->process->pid);
  return capture;
}

std::vector<std::string_view> HLCapturedAttributeNames() {
  std::vector<std::string_view> names(HLFactAttributeNames.begin(), HLFactAttributeNames.end());
  names.insert(names.end(), kFurtherAttributes.begin(), kFurtherAttributes.end());
  return names;
}

int HLCapturedNumber(const HLElement& element) {
  if (const auto* captured = dynamic_cast<const HLCapturedElement*>(&element)) return captured->number();
  const auto* handle = dynamic_cast<const FreshHandle*>(&element);
  return handle == nullptr ? -1 : handle->element().number();
}
