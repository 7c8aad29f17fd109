// Trial notifications: one that this program posts to see whether it can clear it.
#pragma once

#include <memory>
#include <optional>
#include <string>

// A posted notification. Destroying it leaves it on screen. One thread at a time.
class HLTrialNotification {
 public:
  HLTrialNotification() = default;
  HLTrialNotification(const HLTrialNotification&) = delete;
  HLTrialNotification& operator=(const HLTrialNotification&) = delete;
  virtual ~HLTrialNotification() = default;

  // Has the notification server withdraw it, unless that server is known not to. Blocks.
  virtual void withdraw() = 0;
};

// Thread-safe. Calls may block for some seconds, until the notification server replies.
class HLTrials {
 public:
  HLTrials() = default;
  HLTrials(const HLTrials&) = delete;
  HLTrials& operator=(const HLTrials&) = delete;
  virtual ~HLTrials() = default;

  // Returns name and version of the notification server, such as "dunst 1.9.0", or nullopt if there is none.
  [[nodiscard]] virtual std::optional<std::string> serverName() = 0;

  // Returns why no program can close the server's banners, such as "its banners go by themselves"; nullopt if no such
  // reason is known.
  [[nodiscard]] virtual std::optional<std::string> unclosableReason() = 0;

  // Returns whether the server keeps banners back because the user does not want to be disturbed; nullopt if that
  // cannot be read.
  [[nodiscard]] virtual std::optional<bool> isDoNotDisturbOn() = 0;

  // Posts a notification. Returns nullptr if the server refuses.
  [[nodiscard]] virtual std::unique_ptr<HLTrialNotification> post(const std::string& title,
                                                                  const std::string& body) = 0;
};
