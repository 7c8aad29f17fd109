// Closes banners of running automations as they appear.
#pragma once

#include <cstdint>
#include <deque>
#include <iosfwd>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "autoclose/rules.h"
#include "platform/accessibility.h"

// Watches one Notification Center process. Does not notice that the process exits: its owner restarts it when another
// one is launched. Main thread only.
class HLAutoCloser {
 public:
  HLAutoCloser() = default;
  ~HLAutoCloser();
  HLAutoCloser(const HLAutoCloser&) = delete;
  HLAutoCloser& operator=(const HLAutoCloser&) = delete;

  // Without rules nothing is closed.
  void setRules(HLAutoCloseRuleList rules) { rules_ = std::move(rules); }

  // Allows another press for an equal description `seconds` after the last one.
  void setRepeatAfter(double seconds) { repeatAfter_ = seconds; }

  // Stops watching, then watches the running Notification Center. On success pid() is not 0.
  void startForCurrentNotificationCenter();
  void stop();

  [[nodiscard]] std::int32_t pid() const { return pid_; }        // 0 when not watching
  [[nodiscard]] std::int64_t closed() const { return closed_; }  // since construction
  // Descriptions of alerts that were handled. Each is handled once, unless setRepeatAfter() was called.
  [[nodiscard]] const std::set<std::string>& handled() const { return handled_; }

 private:
  void handleEvent(const HLElement& element);
  void forgetOldDescriptions();

  std::unique_ptr<HLObserver> observer_;
  HLElementRef application_;
  std::int32_t pid_ = 0;
  HLAutoCloseRuleList rules_;
  std::int64_t closed_ = 0;
  std::set<std::string> handled_;
  std::optional<double> repeatAfter_;                  // seconds
  std::deque<std::pair<double, std::string>> expiry_;  // of handled_, oldest first; with repeatAfter_ only
};

// Runs an auto-closer for `seconds` with the built-in rule and that of the environment variable
// "HL_AUTO_CLOSE_TEST_RULE". Prints the number of closed banners. Returns 1 when it cannot start, else 0.
[[nodiscard]] int HLRunAutoCloseProbe(double seconds, std::ostream& out);
