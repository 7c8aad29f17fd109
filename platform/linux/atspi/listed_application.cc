#include "platform/linux/atspi/listed_application.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "platform/linux/atspi/closing.h"

namespace {

int addNode(HLRawTree& tree, int parent, HLRawRole role, std::string path) {
  const int index = static_cast<int>(tree.size());
  HLRawNode& node = tree.emplace_back();
  node.path = std::move(path);
  node.parent = parent;
  node.role = role;
  node.states = HLRawState::kShowing | HLRawState::kVisible;
  if (parent >= 0) tree[static_cast<std::size_t>(parent)].children.push_back(index);
  return index;
}

std::string pathOf(const HLNotificationName& name) {
  if (name.number != 0) return "/notification/" + std::to_string(name.number);
  return "/notification/" + name.application + "/" + name.identifier;
}

}  // namespace

std::unique_ptr<const HLShownApplication::Interface> HLListedApplication::read() {
  const std::optional<std::vector<HLListedNotification>> shown = notifications_.shown();
  return shown ? std::make_unique<const Interface>(HLInterfaceOfNotifications(*shown)) : nullptr;
}

HLAXError HLListedApplication::perform(const Interface&, const HLMappedAction& action) {
  if (hasEnded()) return HLAXErrorInvalidElement;
  return notifications_.close(std::get<HLNotificationName>(action)) ? HLAXErrorSuccess : HLAXErrorFailure;
}

std::vector<HLEventSource> HLListedApplication::watch() { return HLEventsOfNotifications(&notifications_); }

HLShownApplication::Interface HLInterfaceOfNotifications(const std::vector<HLListedNotification>& notifications) {
  HLShownApplication::Interface interface;
  HLRawTree& tree = interface.tree;
  const int application = addNode(tree, -1, HLRawRole::application, "/");
  const int window = notifications.empty() ? -1 : addNode(tree, application, HLRawRole::window, "/window");
  std::vector<HLBanner> banners;
  HLClosingActions closings;
  for (const HLListedNotification& each : notifications) {
    const std::string path = pathOf(each.name);
    HLBanner& banner = banners.emplace_back();
    banner.node = addNode(tree, window, HLRawRole::notification, path);
    // Three labels, even if empty: the number of labels decides whether the first is the application.
    for (const std::string* text : {&each.application, &each.summary, &each.body}) {
      const int label = addNode(tree, banner.node, HLRawRole::label, path + "/" + std::to_string(banner.labels.size()));
      tree[static_cast<std::size_t>(label)].name = *text;
      banner.labels.push_back(label);
    }
    closings.emplace_back(each.name);
  }
  interface.mapped = HLMapTree(tree, banners, closings, HLProcessKind::notificationServer);
  return interface;
}
