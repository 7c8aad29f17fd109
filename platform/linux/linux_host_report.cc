#include "platform/linux/linux_host_report.h"

#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/linux/atspi/accessible_application.h"
#include "platform/linux/atspi/raw_elements.h"
#include "platform/linux/notifications/server_connection.h"
#include "platform/linux/session/bus.h"

namespace {

// Empty if the process does not answer.
HLRawTree treeOf(const std::string& address, std::int32_t pid, HLProcessKind kind) {
  const auto application = HLAccessibleApplication::connect(address, pid, kind);
  const auto interface = application == nullptr ? nullptr : application->read();
  return interface == nullptr ? HLRawTree() : interface->tree;
}

}  // namespace

std::string HLLinuxHostReport::systemVersion() {
  constexpr std::string_view kName = "PRETTY_NAME=";
  std::string version = "Linux";
  std::ifstream release("/etc/os-release");
  for (std::string line; std::getline(release, line);) {
    if (!line.starts_with(kName)) continue;
    version = line.substr(kName.size());
    if (version.size() > 1 && version.front() == '"') version = version.substr(1, version.size() - 2);
  }
  for (const char* variable : {"XDG_CURRENT_DESKTOP", "XDG_SESSION_TYPE"}) {
    const char* value = std::getenv(variable);
    if (value != nullptr && *value != '\0') version += std::string(", ") + value;
  }
  return version;
}

HLServerVersion HLLinuxHostReport::serverVersion(std::int32_t) {
  HLServerConnection connection;
  const std::optional<HLPresentServer> server = connection.server();
  if (!server) return {};
  return {server->information.name, server->information.vendor, server->information.version};
}

std::vector<HLRawElement> HLLinuxHostReport::rawElements(std::int32_t pid) {
  const std::unique_ptr<HLBus> session = HLBus::openSession();
  const std::string address = session == nullptr ? "" : HLAccessibilityBusAddress(*session);
  if (address.empty()) return {};
  HLRawTree tree = treeOf(address, pid, HLProcessKind::notificationServer);
  // Of a server only what the adapter needs is read; of any other process every action.
  std::map<std::string, HLRawNode> details;
  for (HLRawNode& node : treeOf(address, pid, HLProcessKind::other)) details.emplace(node.path, std::move(node));
  for (HLRawNode& node : tree) {
    const auto found = details.find(node.path);
    if (found == details.end()) continue;
    if (!node.extents) node.extents = found->second.extents;
    if (node.actions.empty()) node.actions = found->second.actions;
  }
  return HLRawElementsOf(tree);
}
