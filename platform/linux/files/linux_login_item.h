// Starting with the session, by the desktops' autostart folders.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/application/login_item.h"
#include "platform/process_info.h"

// Registered is an entry that the session would start: of this name in the user's autostart folder, or, where none is
// there, in one of the machine's.
class HLLinuxLoginItem : public HLLoginItem {
 public:
  // The entry is called by the bundle's identifier and starts the process's executable.
  explicit HLLinuxLoginItem(HLProcessInfo& process) : process_(process) {}

  // Not found is an entry whose program is not there.
  [[nodiscard]] HLLoginItemStatus status() override;
  [[nodiscard]] HLLoginItemOutcome registerItem() override;
  // Where one of the machine's entries would take its place, the user's one stays, to hide it.
  [[nodiscard]] HLLoginItemOutcome unregisterItem() override;

 private:
  [[nodiscard]] HLLoginItemStatus statusOf(const std::string& content);
  [[nodiscard]] std::string fileName();
  [[nodiscard]] std::string ownFile();
  [[nodiscard]] std::vector<std::string> machineFiles();

  HLProcessInfo& process_;
};
