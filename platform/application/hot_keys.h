// Key combinations that reach this program whatever program is in front.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

inline constexpr std::int32_t HLHotKeyHandled = 0;
inline constexpr std::int32_t HLHotKeyNotHandled = -9874;
inline constexpr std::int32_t HLHotKeyTaken = -9878;   // another program holds the combination
inline constexpr std::int32_t HLHotKeyFailed = -9868;  // the host cannot, for another reason

// The hot-key service's own modifiers.
inline constexpr std::uint32_t HLHotKeyCommand = 0x100;
inline constexpr std::uint32_t HLHotKeyShift = 0x200;
inline constexpr std::uint32_t HLHotKeyOption = 0x800;
inline constexpr std::uint32_t HLHotKeyControl = 0x1000;

struct HLHotKeyIdentity {
  std::string signature;  // four characters
  std::uint32_t id = 0;
  bool operator==(const HLHotKeyIdentity&) const = default;
};

// A registration; destruction gives the combination back.
class HLHotKey {
 public:
  HLHotKey() = default;
  HLHotKey(const HLHotKey&) = delete;
  HLHotKey& operator=(const HLHotKey&) = delete;
  virtual ~HLHotKey() = default;
};

struct HLHotKeyRegistration {
  std::int32_t status = 0;
  std::unique_ptr<HLHotKey> hotKey;  // with status 0 only
};

// Main thread only.
class HLHotKeys {
 public:
  HLHotKeys() = default;
  HLHotKeys(const HLHotKeys&) = delete;
  HLHotKeys& operator=(const HLHotKeys&) = delete;
  virtual ~HLHotKeys() = default;

  // Takes the identity of the hot key that was pressed, or nothing when it cannot be read; answers HLHotKeyHandled or
  // HLHotKeyNotHandled. Installed once.
  using Handler = std::function<std::int32_t(const std::optional<HLHotKeyIdentity>& identity)>;
  virtual void installHandler(Handler handler) = 0;

  // The code is the home platform's virtual key code.
  [[nodiscard]] virtual HLHotKeyRegistration registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                            const HLHotKeyIdentity& identity) = 0;

  // A sentence for the user where a registration has failed since the host has no hot keys at all; else nothing.
  [[nodiscard]] virtual std::optional<std::string> whyNone() const { return std::nullopt; }
};
