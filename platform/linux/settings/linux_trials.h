// Trial notifications of the session's notification server.
#pragma once

#include <functional>
#include <string>

#include "platform/application/trials.h"
#include "platform/process_info.h"

class HLLinuxTrials final : public HLTrials {
 public:
  HLLinuxTrials(HLProcessInfo& process, std::string displayName)
      : process_(process), displayName_(std::move(displayName)) {}

  [[nodiscard]] std::optional<std::string> serverName() override;
  [[nodiscard]] std::optional<std::string> unclosableReason() override;
  [[nodiscard]] std::optional<bool> isDoNotDisturbOn() override;
  // Starts the server if it does not run. The notification keeps its connection: some servers let no one else withdraw
  // it.
  [[nodiscard]] std::unique_ptr<HLTrialNotification> post(const std::string& title, const std::string& body) override;

 private:
  HLProcessInfo& process_;
  const std::string displayName_;
};
