// A desktop for one test: a scene's simulator, installed as the platform, with a home of its own.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.h"
#include "platform/sim/simulator.h"
#include "tests/support/temporary_directory.h"

class SimulatedDesktop {
 public:
  // Throws when the scene cannot be read. The process is told to be in the fresh home unless the scene says otherwise.
  explicit SimulatedDesktop(std::string_view scene, HLSimulatorSetup setup = {});
  SimulatedDesktop(const SimulatedDesktop&) = delete;
  SimulatedDesktop& operator=(const SimulatedDesktop&) = delete;
  ~SimulatedDesktop();

  [[nodiscard]] HLSimulator& simulator() { return *simulator_; }
  [[nodiscard]] const HLPlatform& platform() { return simulator_->platform(); }
  [[nodiscard]] const std::string& home() const { return home_.path(); }

  // Throws when no element bears the id.
  [[nodiscard]] HLElementRef element(std::string_view id);
  // The root element of a process.
  [[nodiscard]] HLElementRef application(std::int32_t pid);

  // Since the start, on the scene's clock.
  [[nodiscard]] std::int64_t elapsedMicroseconds() const;

  // The messages in the diagnostics log, without their times.
  [[nodiscard]] std::vector<std::string> diagnostics() const;
  [[nodiscard]] std::string diagnosticsPath() const;

 private:
  TemporaryDirectory home_;
  std::unique_ptr<HLSimulator> simulator_;
};

// The lines of a log without their times; a line that does not begin with one is left as it is.
[[nodiscard]] std::vector<std::string> LogMessages(const std::string& content);

// What the launch context reads in a test whose scene names no parent.
[[nodiscard]] std::string LaunchContextWithoutParent();
