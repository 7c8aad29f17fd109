// Running applications of which one, the test's own process, is the notification server.
#pragma once

#include <unistd.h>

#include <functional>
#include <optional>
#include <vector>

#include "platform/running_applications.h"

class OwnProcess : public HLRunningApplications {
 public:
  std::vector<HLRunningApplication> list() override { return {server()}; }
  std::optional<HLRunningApplication> find(std::int32_t pid) override {
    return pid == getpid() ? std::optional(server()) : std::nullopt;
  }
  void observeLaunches(std::function<void(const HLRunningApplication&)>) override {}
  HLSignalOutcome sendSignal(std::int32_t, int) override { return HLSignalOutcome::refused; }

 private:
  static HLRunningApplication server() { return {getpid(), "com.apple.notificationcenterui", "server", false}; }
};
