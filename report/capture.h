// The interface of the process that shows notifications, read once and kept in memory.
#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/accessibility.h"
#include "platform/host_report.h"
#include "platform/running_applications.h"

struct HLCapturedAttribute {
  std::string name;
  HLAttribute answer;  // elements in its value are those of the capture
};

// An element as it was read. Its answers never change; its actions fail. Equal to each of its handles.
class HLCapturedElement : public HLElement {
 public:
  explicit HLCapturedElement(int number) : number_(number) {}

  [[nodiscard]] HLAttribute copyAttributeValue(std::string_view name) const override;
  [[nodiscard]] HLActionList copyActionNames() const override { return actions; }
  [[nodiscard]] HLAXError performAction(std::string_view) const override { return HLAXErrorFailure; }
  [[nodiscard]] bool isEqual(const HLElement& other) const override;

  // In the capture, the application's element being 0.
  [[nodiscard]] int number() const { return number_; }

  std::vector<HLCapturedAttribute> attributes;  // those that were answered by a value or an error other than NoValue
  HLActionList actions;
  bool freshHandles = false;  // each read that yields the element yields another handle

 private:
  const int number_;
};

inline constexpr std::size_t HLCaptureLimit = 20000;  // elements

enum class HLTexts {
  kept,
  replaced,  // made unreadable
};

struct HLCapture {
  HLTexts texts = HLTexts::kept;
  bool trusted = false;
  std::string host;
  HLServerVersion server;
  std::optional<HLRunningApplication> process;
  std::vector<HLRawElement> raw;  // the same interface in the host's words, read a moment later
  // The first is the application; empty when there is no process, or when its element cannot be made. The elements
  // refer to each other, so a capture is not copied.
  std::deque<HLCapturedElement> elements;
  bool isComplete = true;  // false when there were more elements than the limit

  HLCapture() = default;
  HLCapture(const HLCapture&) = delete;
  HLCapture& operator=(const HLCapture&) = delete;

  // Adds an element without attributes.
  HLCapturedElement& add() { return elements.emplace_back(static_cast<int>(elements.size())); }

  // A handle that does not own the element.
  [[nodiscard]] HLElementRef handle(int number) {
    return {std::shared_ptr<void>(), &elements[static_cast<std::size_t>(number)]};
  }
  [[nodiscard]] const HLCapturedElement& element(int number) const {
    return elements[static_cast<std::size_t>(number)];
  }
};

// Reads everything that the engine may read of the process, from its windows down, each element once. Blocks.
[[nodiscard]] std::unique_ptr<HLCapture> HLCaptureScreen();

// Returns the names of the attributes that are read of each element, in order.
[[nodiscard]] std::vector<std::string_view> HLCapturedAttributeNames();

// Returns the number of a captured element, by any of its handles; -1 for an element of another kind.
[[nodiscard]] int HLCapturedNumber(const HLElement& element);

// Returns the elements of a list attribute by number, repetitions included; empty for any other value.
[[nodiscard]] std::vector<int> HLCapturedList(const HLCapturedElement& element, std::string_view name);

// Returns the children under all HLChildAttributes by number, in the order in which a scan meets them.
[[nodiscard]] std::vector<int> HLCapturedChildren(const HLCapturedElement& element);
