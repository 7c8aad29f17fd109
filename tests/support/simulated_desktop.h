// A simulated desktop for one test: installed as the platform, with a temporary home directory.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/accessibility.h"
#include "platform/platform.h"
#include "platform/process_info.h"
#include "platform/run_loop.h"
#include "platform/running_applications.h"
#include "platform/sim/simulator.h"
#include "tests/support/temporary_directory.h"

class SimulatedDesktop {
 public:
  // Throws if the scene is malformed. HOME is the temporary directory unless the setup or the scene names another.
  explicit SimulatedDesktop(std::string_view scene, HLSimulatorSetup setup = {});
  SimulatedDesktop(const SimulatedDesktop&) = delete;
  SimulatedDesktop& operator=(const SimulatedDesktop&) = delete;
  ~SimulatedDesktop();

  [[nodiscard]] HLSimulator& simulator() { return *simulator_; }
  [[nodiscard]] const HLPlatform& platform() { return simulator_->platform(); }
  [[nodiscard]] HLAccessibility& accessibility() { return platform().accessibility; }
  [[nodiscard]] HLRunningApplications& applications() { return platform().runningApplications; }
  [[nodiscard]] HLRunLoop& runLoop() { return platform().runLoop; }
  [[nodiscard]] HLProcessInfo& process() { return platform().process; }
  void sleep(double seconds) { runLoop().sleep(seconds); }
  [[nodiscard]] const std::string& home() const { return home_.path(); }

  // Throws if no element has the id.
  [[nodiscard]] HLElementRef element(std::string_view id);
  // The root element of a process.
  [[nodiscard]] HLElementRef application(std::int32_t pid);

  // Attributes of the element with the id. text() is nullopt for an error or another type.
  [[nodiscard]] HLAttribute read(std::string_view id, std::string_view attribute);
  [[nodiscard]] HLAXError error(std::string_view id, std::string_view attribute) { return read(id, attribute).error; }
  [[nodiscard]] std::optional<std::string> text(std::string_view id, std::string_view attribute);
  // The elements of a list, and their titles; "" for an element without one.
  [[nodiscard]] std::vector<HLElementRef> elements(const HLElementRef& owner, std::string_view list);
  [[nodiscard]] std::vector<std::string> titles(const HLElementRef& owner, std::string_view list);
  HLAXError press(std::string_view id, std::string_view action = "AXPress");
  [[nodiscard]] std::vector<std::string> present() { return simulator_->presentElements(); }

  // Time since the start on the scene's clock.
  [[nodiscard]] std::int64_t elapsedMicroseconds() const;

  // The messages of a scene with ProductBundle in the status log, without their times.
  [[nodiscard]] std::vector<std::string> statusLog() const;
  // The messages in the diagnostics log, without their times.
  [[nodiscard]] std::vector<std::string> diagnostics() const;
  [[nodiscard]] std::string diagnosticsPath() const;

 private:
  TemporaryDirectory home_;
  std::unique_ptr<HLSimulator> simulator_;
};

// The lines of a log without timestamps. Lines without a timestamp stay unchanged.
[[nodiscard]] std::vector<std::string> LogMessages(const std::string& content);

// The launch context of a test whose scene has no parent process.
[[nodiscard]] std::string LaunchContextWithoutParent();
