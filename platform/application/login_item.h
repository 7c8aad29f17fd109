// Whether the program is started when the user logs in.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

inline constexpr std::int64_t HLLoginItemNotRegistered = 0;
inline constexpr std::int64_t HLLoginItemEnabled = 1;
inline constexpr std::int64_t HLLoginItemRequiresApproval = 2;
inline constexpr std::int64_t HLLoginItemNotFound = 3;

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

  [[nodiscard]] virtual std::int64_t status() = 0;
  [[nodiscard]] virtual HLLoginItemOutcome registerItem() = 0;
  [[nodiscard]] virtual HLLoginItemOutcome unregisterItem() = 0;
};
