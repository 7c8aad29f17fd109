#include "core/dismissal/batch.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <unordered_map>
#include <utility>

#include "base/log.h"
#include "core/dismissal/ordering.h"
#include "core/dismissal/resolution.h"
#include "core/dismissal/result.h"
#include "core/scan/notification_center.h"
#include "platform/platform.h"
#include "platform/run_loop.h"
#include "platform/text.h"

namespace {

constexpr int kMaxConcurrentActions = 4;

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
template <class T>
using ZeroedArray = std::unique_ptr<T[], Free>;

// Returns nullptr when there is no memory.
template <class T>
ZeroedArray<T> makeZeroedArray(std::size_t count) {
  return ZeroedArray<T>(static_cast<T*>(std::calloc(std::max<std::size_t>(count, 1), sizeof(T))));
}

std::int64_t milliseconds(double seconds) { return std::llround(seconds * 1000); }

// Performs every action and stores its code and duration in seconds. Returns the wall time in seconds.
double perform(const std::vector<HLDismissTarget>& controls, HLAXError* codes, double* durations) {
  HLRunLoop& runLoop = HLCurrentPlatform().runLoop;
  const std::size_t count = controls.size();
  const int atOnce = static_cast<int>(std::clamp<std::size_t>(count, 1, kMaxConcurrentActions));
  const auto queue =
      runLoop.makeOperationQueue("com.tessaly.hushlet.actions", HLQualityOfService::userInitiated, atOnce);
  std::atomic<std::int64_t> completed = 0;
  const double start = runLoop.now();
  for (std::size_t i = 0; i < count; ++i) {
    queue->addOperation(
        [&runLoop, &completed, count, &control = controls[i], &code = codes[i], &duration = durations[i]] {
          const double begin = runLoop.now();
          code = control.element->performAction(control.action);
          duration = runLoop.now() - begin;
          HLReportProgress(static_cast<std::int64_t>(count) - ++completed);
        });
  }
  queue->waitUntilAllOperationsAreFinished();
  return runLoop.now() - start;
}

}  // namespace

std::string HLProgressIdentityKeyForTarget(const HLDismissTarget& target) {
  return target.action + "|" + target.snapshot;
}

HLPreparedBatch HLPrepareBatch(const std::vector<HLDismissTarget>& eligible, const HLResolutionListener& listener) {
  HLRunLoop& clock = HLCurrentPlatform().runLoop;
  HLPreparedBatch batch;
  std::unordered_map<HLElementRef, std::size_t, HLElementHash, HLElementEqual> controls;
  for (const HLDismissTarget& target : eligible) {
    const double start = clock.now();
    HLDismissTarget control = HLResolvedTarget(target);
    batch.resolutionSeconds += clock.now() - start;
    if (control.element == nullptr) continue;
    const auto [known, isNew] = controls.try_emplace(control.element, batch.resolved.size());
    if (listener) listener({target, control, known->second});
    if (!isNew) continue;
    batch.prepared.push_back(target);
    batch.resolved.push_back(std::move(control));
  }
  return batch;
}

std::vector<HLDismissTarget> HLRunDismissBatch(const std::vector<HLDismissTarget>& eligible, HLKeySet& ineffective) {
  const HLPreparedBatch batch = HLPrepareBatch(eligible);
  const std::size_t count = batch.prepared.size();
  const auto codes = makeZeroedArray<HLAXError>(count);
  const auto durations = makeZeroedArray<double>(count);
  if (codes == nullptr || durations == nullptr) {
    for (const HLDismissTarget& target : batch.prepared) ineffective.insert(HLProgressIdentityKeyForTarget(target));
    HLAppendDiagnostics("batch preparation allocation failed prepared=%ld", static_cast<std::int64_t>(count));
    return {};
  }
  const double wallSeconds = perform(batch.resolved, codes.get(), durations.get());

  std::vector<HLDismissTarget> accepted;
  std::int64_t clear = 0;
  std::int64_t close = 0;
  std::int64_t failed = 0;
  double sumSeconds = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const HLDismissTarget& target = batch.prepared[i];
    sumSeconds += durations[i];
    if (codes[i] != HLAXErrorSuccess) {
      ++failed;
      ineffective.insert(HLProgressIdentityKeyForTarget(target));
      ineffective.insert(HLProgressIdentityKeyForTarget(batch.resolved[i]));
      continue;
    }
    ++(HLTargetUsesClearAction(target) ? clear : close);
    accepted.push_back(target);
  }
  HLAppendDiagnostics(
      "batch actions eligible=%lu attempted=%lu clear=%ld close=%ld failed=%ld resolutionMs=%ld actionWallMs=%ld "
      "actionSumMs=%ld",
      eligible.size(), accepted.size(), clear, close, failed, milliseconds(batch.resolutionSeconds),
      milliseconds(wallSeconds), milliseconds(sumSeconds));
  return accepted;
}

std::vector<HLDismissTarget> HLWaitForBatchProgress(const HLElement& application,
                                                    const std::vector<HLDismissTarget>& before) {
  std::vector<HLDismissTarget> after;
  for (double delay : HLBatchVerificationDelays) {
    HLCurrentPlatform().runLoop->sleep(delay);
    after = HLSortedTargets(HLCurrentTargets(application));
    if (after.empty() || HLRemovedTargetCount(before, after) > 0) break;
  }
  return after;
}

std::int64_t HLRemovedTargetCount(const std::vector<HLDismissTarget>& before,
                                  const std::vector<HLDismissTarget>& after) {
  std::multiset<std::string> left;
  for (const HLDismissTarget& target : after) left.insert(HLLowercase(HLProgressIdentityKeyForTarget(target)));
  std::int64_t removed = 0;
  for (const HLDismissTarget& target : before) {
    const auto found = left.find(HLLowercase(HLProgressIdentityKeyForTarget(target)));
    if (found == left.end()) {
      ++removed;
    } else {
      left.erase(found);
    }
  }
  return removed;
}
