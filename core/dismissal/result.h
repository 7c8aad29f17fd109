// What a dismissal hands outward: one result record, and progress counts while it runs.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

// Unscoped and wide on purpose: values beyond the names can be held, and read as failed.
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

// "success|3|0": the daemon's reply and the command line's result, without a line feed.
[[nodiscard]] std::string HLResultWireString(const HLDismissResult& result);

// False, and the record untouched, unless the text has three fields and begins with a status word.
[[nodiscard]] bool HLParseResultString(std::string_view text, HLDismissResult& result);

// Takes the number of items left. Called from any thread, several at once, in no certain order.
using HLProgressCallback = std::function<void(std::int64_t)>;

// The one slot of the process: whoever wants to follow a dismissal puts a handler in and takes it out again. Any
// thread; a handler that is replaced while it runs lives until it returns.
void HLSetProgressHandler(HLProgressCallback handler);

// Reports a count, a negative one as 0.
void HLReportProgress(std::int64_t count);
