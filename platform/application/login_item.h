// Whether the program is started when the user logs in.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

// The numbers are those of macOS, which may return others too; the log shows them.
enum class HLLoginItemStatus : std::int64_t {
  notRegistered = 0,
  enabled = 1,
  requiresApproval = 2,
  notFound = 3,
};

struct HLLoginItemOutcome {
  bool ok = false;
  std::optional<std::string> error;  // for the user to read
};

// Main thread only. The system keeps the state; every call asks it anew.
class HLLoginItem {
 public:
  HLLoginItem() = default;
  HLLoginItem(const HLLoginItem&) = delete;
  HLLoginItem& operator=(const HLLoginItem&) = delete;
  virtual ~HLLoginItem() = default;

  [[nodiscard]] virtual HLLoginItemStatus status() = 0;
  [[nodiscard]] virtual HLLoginItemOutcome registerItem() = 0;
  [[nodiscard]] virtual HLLoginItemOutcome unregisterItem() = 0;
};
