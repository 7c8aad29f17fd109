// Prints what the desktop's notification server shows now, to be kept among the recorded trees.
#include <cstdio>
#include <iostream>
#include <string>

#include "platform/linux/atspi/accessible_application.h"
#include "platform/linux/atspi/tree_reader.h"
#include "platform/linux/session/linux_running_applications.h"
#include "tests/platform/linux/atspi/recorded_tree.h"

int main(int argc, char** argv) {
  HLLinuxRunLoop loop;
  HLLinuxRunningApplications servers(loop);
  const std::vector<HLRunningApplication> found = servers.list();
  const std::unique_ptr<HLBus> session = HLBus::openSession();
  if (session == nullptr || (found.empty() && argc < 2)) {
    std::cerr << "no notification server\n";
    return 1;
  }
  const std::string address = HLAccessibilityBusAddress(*session);
  const std::int32_t pid = argc > 1 ? std::stoi(argv[1]) : found.front().pid;
  const auto application = HLAccessibleApplication::connect(address, pid, HLProcessKind::other);
  const auto interface = application == nullptr ? nullptr : application->read();
  if (interface == nullptr) {
    std::cerr << "process " << pid << " is not on the accessibility bus, or does not answer\n";
    return 1;
  }
  std::cout << PrintTree(interface->tree);
  return 0;
}
