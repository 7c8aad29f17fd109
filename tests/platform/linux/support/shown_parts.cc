#include "tests/platform/linux/support/shown_parts.h"

#include <memory>
#include <numeric>

#include "platform/linux/atspi/accessible_application.h"
#include "platform/linux/atspi/tree_reader.h"

namespace {

constexpr std::uint64_t kChecked = 1ULL << 4;

}  // namespace

std::vector<ShownPart> ShownParts(const Environment& environment, pid_t program) {
  const std::unique_ptr<HLBus> session = HLBus::openBus(environment.at("DBUS_SESSION_BUS_ADDRESS"));
  if (session == nullptr) return {};
  const std::string address = HLAccessibilityBusAddress(*session);
  const auto application = HLAccessibleApplication::connect(address, program, HLProcessKind::other);
  const std::unique_ptr<HLBus> bus = HLBus::openBus(address);
  if (application == nullptr || bus == nullptr) return {};

  HLRawTree tree;
  if (HLReadTree(*bus, application->busName(), tree) != HLBusOutcome::answered) return {};
  std::vector<int> all(tree.size());
  std::iota(all.begin(), all.end(), 0);
  if (HLReadDetails(*bus, application->busName(), tree, all, {}) != HLBusOutcome::answered) return {};

  std::vector<ShownPart> parts;
  for (const HLRawNode& node : tree) {
    if (!node.isShowing() || !node.extents) continue;
    parts.push_back({node.name, node.role, (node.states & kChecked) != 0, *node.extents});
  }
  return parts;
}
