#include "core/dismissal/result.h"

#include <array>
#include <memory>
#include <optional>
#include <utility>

#include "base/format.h"
#include "platform/text.h"
#include "platform/threads/thread_safety.h"

namespace {

constexpr std::array<std::string_view, 5> kStatusWords = {"success", "nothing", "accessDenied",
                                                          "notificationCenterUnavailable", "failed"};

// HLProgressHandler.
struct ProgressSlot {
  HLMutex mutex;
  std::shared_ptr<const HLProgressCallback> handler HL_GUARDED_BY(mutex);
};

// Never destroyed: an application may end through exit() while a dismissal on another thread still reports.
ProgressSlot& progressSlot() {
  static ProgressSlot& slot = *new ProgressSlot;
  return slot;
}

}  // namespace

std::string_view HLStatusString(HLDismissStatus status) {
  const bool known = status >= HLDismissStatusSuccess && status < HLDismissStatusFailed;
  return kStatusWords[static_cast<std::size_t>(known ? status : HLDismissStatusFailed)];
}

std::string HLResultWireString(const HLDismissResult& result) {
  return HLFormat("%@|%ld|%ld", HLStatusString(result.status), result.dismissed, result.remaining);
}

bool HLParseResultString(std::string_view text, HLDismissResult& result) {
  const std::size_t first = text.find('|');
  const std::size_t second = first == std::string_view::npos ? first : text.find('|', first + 1);
  if (second == std::string_view::npos) return false;
  for (std::size_t i = 0; i < kStatusWords.size(); ++i) {
    if (text.substr(0, first) != kStatusWords[i]) continue;
    // HLLeadingInteger() stops at the bar behind a number.
    result = {static_cast<HLDismissStatus>(i), HLLeadingInteger(text.substr(first + 1, second - first - 1)),
              HLLeadingInteger(text.substr(second + 1))};
    return true;
  }
  return false;
}

void HLSetProgressHandler(HLProgressCallback handler) {
  auto shared = handler ? std::make_shared<const HLProgressCallback>(std::move(handler)) : nullptr;
  ProgressSlot& slot = progressSlot();
  const HLLock lock(slot.mutex);
  slot.handler.swap(shared);
}

void HLReportProgress(std::int64_t count) {
  ProgressSlot& slot = progressSlot();
  std::shared_ptr<const HLProgressCallback> handler;
  {
    const HLLock lock(slot.mutex);
    handler = slot.handler;
  }
  if (handler != nullptr) (*handler)(count < 0 ? 0 : count);
}
