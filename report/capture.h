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

// A copy of an element. Its attributes never change; its actions fail.
class HLCapturedElement : public HLElement {
 public:
  explicit HLCapturedElement(int number) : number_(number) {}

  [[nodiscard]] HLAttribute copyAttributeValue(std::string_view name) const override;
  [[nodiscard]] HLActionList copyActionNames() const override { return actions; }
  [[nodiscard]] HLAXError performAction(std::string_view) const override { return HLAXErrorFailure; }
  [[nodiscard]] bool isEqual(const HLElement& other) const override;
  [[nodiscard]] std::size_t hash() const override { return static_cast<std::size_t>(number_); }

  // Its index in the capture; the application's element has 0.
  [[nodiscard]] int number() const { return number_; }

  std::vector<HLCapturedAttribute> attributes;  // those with a value or an error other than NoValue
  HLActionList actions;
  bool freshHandles = false;  // each read returns a new handle of the element

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
  std::string program;  // the path of this program's bundle; may be empty
  HLServerVersion server;
  std::optional<HLRunningApplication> process;
  std::vector<HLRawElement> raw;  // the same interface as the host reads it, read slightly later
  // The first is the application; empty without a process, or if its element cannot be created. Elements point to each
  // other, so a capture cannot be copied.
  std::deque<HLCapturedElement> elements;
  bool isComplete = true;  // false if elements beyond HLCaptureLimit were left out

  HLCapture() = default;
  HLCapture(const HLCapture&) = delete;
  HLCapture& operator=(const HLCapture&) = delete;

  // Adds an element without attributes.
  HLCapturedElement& add() { return elements.emplace_back(static_cast<int>(elements.size())); }

  // A handle that does not own the element.
  [[nodiscard]] HLElementRef handle(int number) { return {std::shared_ptr<void>(), &element(number)}; }
  [[nodiscard]] HLCapturedElement& element(int number) { return elements[static_cast<std::size_t>(number)]; }
  [[nodiscard]] const HLCapturedElement& element(int number) const {
    return elements[static_cast<std::size_t>(number)];
  }
};

// Copies the windows of the process that shows notifications: every element, and every attribute that the engine reads.
// Blocks.
[[nodiscard]] std::unique_ptr<HLCapture> HLCaptureScreen();

// Returns the names of the attributes that are read of each element, in order.
[[nodiscard]] std::vector<std::string_view> HLCapturedAttributeNames();

// Returns the number of a captured element or of a handle of one; -1 for other elements.
[[nodiscard]] int HLCapturedNumber(const HLElement& element);
