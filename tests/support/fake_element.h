// An element whose attributes and actions a test sets directly, for cases that no scene can express.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "platform/accessibility.h"

class FakeElement : public HLElement {
 public:
  std::map<std::string, HLAttribute, std::less<>> attributes;  // others are missing
  HLActionList actions;
  std::function<void()> onRead;  // called before each attribute is read
  std::function<HLAXError(std::string_view)> onAction = [](std::string_view) { return HLAXErrorSuccess; };
  const void* node = this;  // fake elements with the same node are equal

  [[nodiscard]] HLAttribute copyAttributeValue(std::string_view name) const override {
    if (onRead) onRead();
    const auto found = attributes.find(name);
    return found == attributes.end() ? HLAttribute{HLAXErrorNoValue, {}} : found->second;
  }
  [[nodiscard]] HLActionList copyActionNames() const override { return actions; }
  [[nodiscard]] HLAXError performAction(std::string_view action) const override { return onAction(action); }
  [[nodiscard]] bool isEqual(const HLElement& other) const override {
    const auto* fake = dynamic_cast<const FakeElement*>(&other);
    return fake != nullptr && fake->node == node;
  }
  [[nodiscard]] std::size_t hash() const override { return std::hash<const void*>()(node); }
};
