#include "autoclose/auto_closer.h"

#include <cstdlib>
#include <optional>
#include <ostream>
#include <string_view>
#include <vector>

#include "base/format.h"
#include "base/log.h"
#include "core/scan/alert_description.h"
#include "core/scan/element_access.h"
#include "core/scan/notification_center.h"
#include "core/scan/words.h"
#include "platform/platform.h"
#include "platform/process_info.h"
#include "platform/run_loop.h"

namespace {

constexpr std::string_view kLayoutChanged = "AXLayoutChanged";
constexpr std::size_t kHandledLimit = 200;

}  // namespace

HLAutoCloser::~HLAutoCloser() { stop(); }

void HLAutoCloser::startForCurrentNotificationCenter() {
  stop();
  const std::optional<HLRunningApplication> center = HLNotificationCenterApplication();
  if (center) {
    observer_ = HLCurrentPlatform().accessibility->createObserver(
        center->pid, [this](const HLElementRef& element, std::string_view) { handleEvent(*element); });
  }
  if (observer_ == nullptr) {
    HLAppendLog("auto-close start failed nc=%@", center ? "present" : "missing");
    return;
  }
  application_ = HLNotificationCenterElement(center->pid);
  const HLAXError registration =
      application_ != nullptr ? observer_->addNotification(application_, kLayoutChanged) : HLAXErrorFailure;
  observer_->attach();
  pid_ = center->pid;
  HLAppendLog("auto-close watching pid=%d register=%d", pid_, registration);
}

void HLAutoCloser::stop() {
  if (observer_ != nullptr) {
    observer_->detach();
    if (application_ != nullptr) observer_->removeNotification(application_, kLayoutChanged);
    observer_ = nullptr;
  }
  application_ = nullptr;
  pid_ = 0;
}

void HLAutoCloser::handleEvent(const HLElement& element) {
  if (HLStringAttribute(element, "AXSubrole") != "AXNotificationCenterAlert") return;
  const std::string description = HLStringAttribute(element, "AXDescription").value_or("");
  if (!HLAlertDescriptionMatchesAutoClose(description, rules_)) return;
  forgetOldDescriptions();
  // An alert is laid out many times while it moves: act on each description once, whether closing succeeds or not.
  if (!handled_.insert(description).second) return;
  if (repeatAfter_) expiry_.emplace_back(HLCurrentPlatform().runLoop->now() + *repeatAfter_, description);
  if (handled_.size() > kHandledLimit) {
    handled_.clear();
    expiry_.clear();
  }

  const std::optional<std::string> action = HLCloseAction(HLActionNames(element));
  if (!action) return;
  const HLAXError error = element.performAction(*action);
  if (error == HLAXErrorSuccess) ++closed_;
  HLAppendLog("auto-close app=%@ error=%d closed=%ld", HLSplitAlertDescription(description).application, error,
              closed_);
}

void HLAutoCloser::forgetOldDescriptions() {
  if (expiry_.empty()) return;
  const double now = HLCurrentPlatform().runLoop->now();
  while (!expiry_.empty() && expiry_.front().first <= now) {
    handled_.erase(expiry_.front().second);
    expiry_.pop_front();
  }
}

int HLRunAutoCloseProbe(double seconds, std::ostream& out) {
  HLAutoCloser closer;
  closer.setRules(HLAutoCloseRules(HLCurrentPlatform().process->environment("HL_AUTO_CLOSE_TEST_RULE")));
  closer.startForCurrentNotificationCenter();
  if (closer.pid() == 0) return EXIT_FAILURE;
  out << "watching\n" << std::flush;
  HLCurrentPlatform().runLoop->runFor(seconds);
  out << HLFormat("closed=%ld\n", closer.closed());
  return EXIT_SUCCESS;
}
