// The accessibility bus in the home platform's terms.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/accessibility.h"
#include "platform/linux/session/linux_run_loop.h"
#include "platform/running_applications.h"

// Trust is that the session has accessibility switched on and this process reaches its bus. An application element
// stands for a process that is on that bus and has answered; reading its "AXWindows" reads the whole interface afresh,
// and all its elements answer from there until the next such read. Actions always go to the process itself. A process
// that falls silent keeps the windows that it last showed, so that silence is never taken for an empty screen.
class HLLinuxAccessibility : public HLAccessibility {
 public:
  // A process that these list is a notification server. Observers are served by the run loop.
  HLLinuxAccessibility(HLRunningApplications& servers, HLLinuxRunLoop& runLoop)
      : servers_(servers), runLoop_(runLoop) {}

  // Prompting switches accessibility on for the whole session; without it nothing is changed or started by asking.
  [[nodiscard]] bool isProcessTrusted(bool prompt) override;
  [[nodiscard]] HLElementRef createApplication(std::int32_t pid) override;
  [[nodiscard]] std::unique_ptr<HLObserver> createObserver(std::int32_t pid, HLObserverCallback callback) override;

 private:
  HLRunningApplications& servers_;
  HLLinuxRunLoop& runLoop_;
};
