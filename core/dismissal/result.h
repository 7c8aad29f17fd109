// The result of a dismissal, and the progress counts that it reports.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

// Unscoped with a fixed underlying type on purpose: other values must be representable, and read as failed.
enum HLDismissStatus : std::int64_t {
  HLDismissStatusSuccess = 0,
  HLDismissStatusNothing = 1,
  HLDismissStatusAccessDenied = 2,
  HLDismissStatusNotificationCenterUnavailable = 3,
  HLDismissStatusFailed = 4,
};

struct HLDismissResult {
  HLDismissStatus status = HLDismissStatusSuccess;
  std::int64_t dismissed = 0;
  std::int64_t remaining = 0;  // targets still there at the end
  bool operator==(const HLDismissResult&) const = default;
};

[[nodiscard]] std::string_view HLStatusString(HLDismissStatus status);

// Returns "success|3|0", which the daemon replies and the command line prints, without a line feed.
[[nodiscard]] std::string HLResultWireString(const HLDismissResult& result);

// Parses the text form. Returns false and leaves the record as it is unless the text has three fields and begins with a
// status word.
[[nodiscard]] bool HLParseResultString(std::string_view text, HLDismissResult& result);

// Receives the number of items left. Called from any thread, concurrently, in no fixed order.
using HLProgressCallback = std::function<void(std::int64_t)>;

// Sets the one progress handler of the process; nullptr removes it. Thread-safe; a handler that is replaced while it
// runs lives until it returns.
void HLSetProgressHandler(HLProgressCallback handler);

// Calls the handler with the count, at least 0.
void HLReportProgress(std::int64_t count);
