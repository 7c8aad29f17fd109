// A simulated desktop as the platform's tests use it: a scene, and short ways to look at it.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/accessibility.h"
#include "platform/platform.h"
#include "platform/process_info.h"
#include "platform/run_loop.h"
#include "platform/running_applications.h"
#include "platform/sim/simulator.h"

// A path for a file of this process's. No file is there.
inline std::string FreshPath(const std::string& name) {
  const std::string path = testing::TempDir() + "sim_test." + std::to_string(getpid()) + "." + name;
  std::remove(path.c_str());
  return path;
}

class Desktop {
 public:
  // Throws when the scene cannot be read.
  explicit Desktop(std::string_view scene, HLSimulatorSetup setup = {}) : simulator_(make(scene, std::move(setup))) {}

  [[nodiscard]] HLSimulator& simulator() { return *simulator_; }
  [[nodiscard]] HLAccessibility& accessibility() { return simulator_->platform().accessibility; }
  [[nodiscard]] HLRunningApplications& applications() { return simulator_->platform().runningApplications; }
  [[nodiscard]] HLRunLoop& runLoop() { return simulator_->platform().runLoop; }
  [[nodiscard]] HLProcessInfo& process() { return simulator_->platform().process; }

  [[nodiscard]] HLElementRef element(std::string_view id) {
    HLElementRef element = simulator_->element(id);
    if (element == nullptr) throw std::runtime_error("no element with the id " + std::string(id));
    return element;
  }
  [[nodiscard]] HLAttribute read(std::string_view id, std::string_view attribute) {
    return element(id)->copyAttributeValue(attribute);
  }
  [[nodiscard]] HLAXError error(std::string_view id, std::string_view attribute) { return read(id, attribute).error; }
  // A text attribute; nothing for an error or another type.
  [[nodiscard]] std::optional<std::string> text(std::string_view id, std::string_view attribute) {
    const HLAttribute attributeRead = read(id, attribute);
    const std::string* value = attributeRead.value.as<std::string>();
    return value == nullptr ? std::nullopt : std::optional(*value);
  }
  // The titles of a list's elements, in order.
  [[nodiscard]] std::vector<std::string> titles(const HLElementRef& owner, std::string_view list) {
    std::vector<std::string> found;
    for (const HLElementRef& member : elements(owner, list)) {
      const HLAttribute title = member->copyAttributeValue("AXTitle");
      found.push_back(title.value.as<std::string>() == nullptr ? "" : *title.value.as<std::string>());
    }
    return found;
  }
  [[nodiscard]] std::vector<HLElementRef> elements(const HLElementRef& owner, std::string_view list) {
    std::vector<HLElementRef> found;
    const HLAttribute value = owner->copyAttributeValue(list);
    const HLArray* array = value.value.as<HLArray>();
    for (const HLValue& member : array == nullptr ? HLArray() : *array) {
      if (const HLElementRef* element = member.as<HLElementRef>()) found.push_back(*element);
    }
    return found;
  }
  HLAXError press(std::string_view id, std::string_view action = "AXPress") {
    return element(id)->performAction(action);
  }
  [[nodiscard]] std::vector<std::string> present() { return simulator_->presentElements(); }
  void sleep(double seconds) { runLoop().sleep(seconds); }

 private:
  static std::unique_ptr<HLSimulator> make(std::string_view scene, HLSimulatorSetup setup) {
    auto made = HLMakeSimulator(scene, "scene.json", std::move(setup));
    if (const auto* failure = std::get_if<std::string>(&made)) throw std::runtime_error(*failure);
    return std::move(std::get<std::unique_ptr<HLSimulator>>(made));
  }

  std::unique_ptr<HLSimulator> simulator_;
};

// What is said about a scene that cannot be read; "" for one that can.
[[nodiscard]] inline std::string SceneError(std::string_view scene) {
  const auto made = HLMakeSimulator(scene, "scene.json", {});
  const auto* failure = std::get_if<std::string>(&made);
  return failure == nullptr ? "" : *failure;
}

// A desktop with one process, pid 400, whose windows are these members; further top-level keys follow a comma.
[[nodiscard]] inline std::string Scene(std::string_view windows, std::string_view further = "") {
  return R"({"applications": [{"pid": 400, "windows": [)" + std::string(windows) + "]}]" + std::string(further) + "}";
}
