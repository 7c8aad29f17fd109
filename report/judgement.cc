#include "report/judgement.h"

#include <string_view>
#include <unordered_map>

#include "core/dismissal/attempt_loop.h"
#include "core/dismissal/ordering.h"
#include "core/scan/notification_center.h"

namespace {

// Returns for each text the index of the first text that equals it.
std::vector<std::size_t> firstAlike(const std::vector<std::string>& texts) {
  std::unordered_map<std::string_view, std::size_t> known;
  std::vector<std::size_t> first;
  for (const std::string& text : texts) first.push_back(known.try_emplace(text, first.size()).first->second);
  return first;
}

}  // namespace

HLJudgement HLJudgeCapture(HLCapture& capture, const HLScanListener& scanListener,
                           const HLResolutionListener& resolutionListener) {
  if (!capture.trusted || capture.elements.empty()) return {};
  // A scan with a listener writes no log.
  const HLScanListener nobody = [](const HLScanStep&) {};
  HLJudgement judgement;
  judgement.targets = HLSortedTargets(HLCurrentTargets(*capture.handle(0), scanListener ? scanListener : nobody));
  judgement.batch = HLPrepareBatch(judgement.targets, resolutionListener);
  return judgement;
}

HLJudgementOutline HLOutlineOf(const HLCapture& capture, const HLJudgement& judgement, const std::vector<int>& order) {
  HLJudgementOutline outline;
  outline.trusted = capture.trusted;
  std::vector<std::string> keys;
  std::vector<std::string> applications;
  for (HLDismissTarget target : judgement.targets) {
    keys.push_back(HLProgressIdentityKeyForTarget(target));
    applications.push_back(HLAlertAppName(target));
    target.snapshot = "";
    outline.targets.push_back(HLTopCandidateSummary({target}));
  }
  outline.alike = firstAlike(keys);
  outline.applications = firstAlike(applications);
  for (const HLDismissTarget& control : judgement.batch.resolved) {
    const int number = HLCapturedNumber(*control.element);
    outline.presses.emplace_back(order.empty() ? number : order[static_cast<std::size_t>(number)], control.action);
  }
  return outline;
}
