// Starts the program when the user logs in.
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
  std::optional<std::string> error;  // user-facing; may be nullopt
};

// Main thread only. Every call reads the state from the system; no state is cached.
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
