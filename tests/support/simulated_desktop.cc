#include "tests/support/simulated_desktop.h"

#include <cmath>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <utility>
#include <variant>

#include "platform/process_info.h"

namespace {

std::unique_ptr<HLSimulator> makeSimulator(std::string_view scene, HLSimulatorSetup setup, const std::string& home) {
  setup.environment.emplace("HOME", home);
  auto made = HLMakeSimulator(scene, "scene.json", std::move(setup));
  if (const auto* failure = std::get_if<std::string>(&made)) throw std::runtime_error(*failure);
  return std::move(std::get<std::unique_ptr<HLSimulator>>(made));
}

}  // namespace

SimulatedDesktop::SimulatedDesktop(std::string_view scene, HLSimulatorSetup setup)
    : simulator_(makeSimulator(scene, std::move(setup), home_.path())) {
  HLInstallPlatform(&simulator_->platform());
}

SimulatedDesktop::~SimulatedDesktop() { HLInstallPlatform(nullptr); }

HLElementRef SimulatedDesktop::element(std::string_view id) {
  HLElementRef element = simulator_->element(id);
  if (element == nullptr) throw std::runtime_error("no element with the id " + std::string(id));
  return element;
}

HLElementRef SimulatedDesktop::application(std::int32_t pid) {
  return platform().accessibility->createApplication(pid);
}

HLAttribute SimulatedDesktop::read(std::string_view id, std::string_view attribute) {
  return element(id)->copyAttributeValue(attribute);
}

std::optional<std::string> SimulatedDesktop::text(std::string_view id, std::string_view attribute) {
  const HLAttribute found = read(id, attribute);
  const auto* value = found.value.as<std::string>();
  return value == nullptr ? std::nullopt : std::optional(*value);
}

std::vector<HLElementRef> SimulatedDesktop::elements(const HLElementRef& owner, std::string_view list) {
  std::vector<HLElementRef> found;
  const HLAttribute value = owner->copyAttributeValue(list);
  const auto* array = value.value.as<HLArray>();
  for (const HLValue& member : array == nullptr ? HLArray() : *array) {
    if (const auto* element = member.as<HLElementRef>()) found.push_back(*element);
  }
  return found;
}

std::vector<std::string> SimulatedDesktop::titles(const HLElementRef& owner, std::string_view list) {
  std::vector<std::string> found;
  for (const HLElementRef& member : elements(owner, list)) {
    const HLAttribute title = member->copyAttributeValue("AXTitle");
    const auto* text = title.value.as<std::string>();
    found.push_back(text == nullptr ? "" : *text);
  }
  return found;
}

HLAXError SimulatedDesktop::press(std::string_view id, std::string_view action) {
  return element(id)->performAction(action);
}

std::int64_t SimulatedDesktop::elapsedMicroseconds() const { return std::llround(simulator_->elapsed() * 1e6); }

std::string SimulatedDesktop::diagnosticsPath() const {
  return home() + "/.local/state/hushlet/hushlet_detailed_diagnostics.log";
}

std::vector<std::string> SimulatedDesktop::statusLog() const {
  return LogMessages(FileContent(home() + "/.local/share/test/status.log"));
}

std::vector<std::string> SimulatedDesktop::diagnostics() const { return LogMessages(FileContent(diagnosticsPath())); }

std::vector<std::string> LogMessages(const std::string& content) {
  static const std::regex time(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} [+-]\d{4} )");
  std::vector<std::string> messages;
  std::istringstream lines(content);
  for (std::string line; std::getline(lines, line);)
    messages.push_back(std::regex_replace(line, time, "", std::regex_constants::match_continuous));
  return messages;
}

std::string LaunchContextWithoutParent() {
  HLProcessInfo& process = HLCurrentPlatform().process;
  return "pid=" + std::to_string(process.processIdentifier()) +
         " ppid=" + std::to_string(process.parentProcessIdentifier()) + " parentBundle=none parentName=none";
}
