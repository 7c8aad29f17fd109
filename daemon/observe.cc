#include "daemon/observe.h"

#include <array>
#include <cstdlib>
#include <memory>
#include <optional>
#include <ostream>
#include <vector>

#include "base/format.h"
#include "base/terminal.h"
#include "core/scan/element_access.h"
#include "core/scan/notification_center.h"
#include "platform/element_facts.h"
#include "platform/platform.h"
#include "platform/run_loop.h"
#include "platform/text.h"

namespace {

constexpr std::array<std::string_view, 8> kNotifications = {
    "AXWindowCreated",   "AXCreated",      "AXUIElementDestroyed", "AXLayoutChanged",
    "AXChildrenChanged", "AXValueChanged", "AXTitleChanged",       "AXAnnouncementRequested"};

constexpr std::size_t kDescriptionLimit = 120;  // UTF-16 code units

std::string orElse(const std::string& text, std::string_view placeholder) {
  return text.empty() ? std::string(placeholder) : text;
}

std::string actionSummary(const std::vector<std::string>& names) {
  std::string joined;
  for (const std::string& name : names) {
    if (&name != &names.front()) joined += ',';
    joined += name;
  }
  return names.empty() ? "(none)" : joined;
}

// Escapes control characters on a terminal: texts of other programs may contain escape sequences.
void printLine(std::ostream& out, std::string_view line) {
  const std::string text = HLEncodableText(line);
  out << (HLIsTerminal(out) ? HLVisibleText(text) : text) << '\n';
}

void printEvent(std::ostream& out, const HLElement& element, std::string_view notification) {
  const std::string description = HLStringAttribute(element, "AXDescription").value_or("");
  printLine(out, HLFormat("%.3f %s %s desc=%s", HLCurrentPlatform().runLoop->now(), notification,
                          HLElementDebugSummary(element), HLUtf16Prefix(description, kDescriptionLimit)));
  out.flush();  // a pipe gets each line as it happens
}

}  // namespace

int HLObserveNotificationCenter(double seconds, std::ostream& out, std::ostream& err) {
  const HLPlatform& platform = HLCurrentPlatform();
  const std::optional<HLRunningApplication> center = HLNotificationCenterApplication();
  if (!center) {
    err << "Notification Center is not running\n";
    return EXIT_FAILURE;
  }
  const std::unique_ptr<HLObserver> observer = platform.accessibility->createObserver(
      center->pid,
      [&out](const HLElementRef& element, std::string_view notification) { printEvent(out, *element, notification); });
  if (observer == nullptr) {
    err << "AXObserverCreate failed\n";
    return EXIT_FAILURE;
  }
  const HLElementRef application = HLNotificationCenterElement(center->pid);
  for (std::string_view notification : kNotifications) {
    const HLAXError error =
        application != nullptr ? observer->addNotification(application, notification) : HLAXErrorFailure;
    printLine(out, HLFormat("register %s -> %d", notification, error));
  }
  const std::vector<HLElementRef> windows =
      application != nullptr ? HLNotificationWindows(*application) : std::vector<HLElementRef>();
  for (const HLElementRef& window : windows) {
    for (std::string_view notification : kNotifications) (void)observer->addNotification(window, notification);
    printLine(out, HLFormat("window registered %s", HLElementDebugSummary(*window)));
  }
  out.flush();
  observer->attach();
  platform.runLoop->runFor(seconds);
  return EXIT_SUCCESS;
}

std::string HLElementDebugSummary(const HLElement& element) {
  const HLElementFacts facts = element.copyFacts();
  return HLFormat("role=%@ subrole=%@ frame=%@ actions=%@ context=%@ closeButton=%@ cancelButton=%@ defaultButton=%@",
                  orElse(facts.role, "(none)"), orElse(facts.subrole, "(none)"), HLFrameSummary(facts.frame),
                  actionSummary(facts.actionNames), orElse(HLSearchableContext(facts), "(empty)"),
                  HLAttributeButtonSummary(element, "AXCloseButton"),
                  HLAttributeButtonSummary(element, "AXCancelButton"),
                  HLAttributeButtonSummary(element, "AXDefaultButton"));
}

std::string HLAttributeButtonSummary(const HLElement& element, std::string_view attribute) {
  const HLElementRef button = HLElementAttribute(element, attribute);
  if (button == nullptr) return "none";
  const HLElementFacts facts = button->copyFacts();
  return HLFormat("context=%@ actions=%@ frame=%@", orElse(HLSearchableContext(facts), "(empty)"),
                  actionSummary(facts.actionNames), HLFrameSummary(facts.frame));
}

std::string HLFrameSummary(const HLRect& frame) {
  if (frame.isNull()) return "null";
  return HLFormat("(%.1f,%.1f,%.1f,%.1f)", frame.x, frame.y, frame.width, frame.height);
}
