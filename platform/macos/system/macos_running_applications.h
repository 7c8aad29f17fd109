// The applications that the workspace lists.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "platform/running_applications.h"

// The system brings what the workspace has learned up to date while the main run loop runs. A process whose main thread
// asks while its loop does not run has it run for a moment, until nothing is due.
class HLMacRunningApplications : public HLRunningApplications {
 public:
  [[nodiscard]] std::vector<HLRunningApplication> list() override;
  [[nodiscard]] std::optional<HLRunningApplication> find(std::int32_t pid) override;
  // The workspace reports only applications with a Dock icon, so changes of the list are reported too. An application
  // may be reported twice.
  void observeLaunches(std::function<void(const HLRunningApplication&)> observer) override;
  // Every signal is sent: the system starts Notification Center again by itself.
  [[nodiscard]] HLSignalOutcome sendSignal(std::int32_t pid, int signal) override;
};
