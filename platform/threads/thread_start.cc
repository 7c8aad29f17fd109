#include "platform/threads/thread_start.h"

#include <cmath>
#include <exception>
#include <utility>

namespace {

constexpr double kRetrySeconds = 0.1;

void retry(HLRunLoop& loop, std::function<bool()> start, std::function<void()> refused, int attempts) {
  loop.postToMainQueueAfter(kRetrySeconds,
                            [&loop, start = std::move(start), refused = std::move(refused), attempts]() mutable {
                              if (start()) return;
                              if (attempts == 1) return refused ? refused() : void();
                              retry(loop, std::move(start), std::move(refused), attempts - 1);
                            });
}

}  // namespace

std::thread HLTryStartThread(std::function<void()> body) {
  try {
    return std::thread(std::move(body));
  } catch (const std::exception&) {  // std::system_error for EAGAIN, std::bad_alloc
    return {};
  }
}

void HLStartWhenPossible(HLRunLoop& loop, std::function<bool()> start, std::function<void()> refused) {
  retry(loop, std::move(start), std::move(refused),
        static_cast<int>(std::lround(HLThreadStartTimeout / kRetrySeconds)));
}
