// System-wide key combinations: they reach this program while another one has the keyboard focus.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

// The values of Carbon's event manager, which are also logged. A host may return others.
enum class HLHotKeyStatus : std::int32_t {
  success = 0,
  notHandled = -9874,
  taken = -9878,   // the combination is already registered (X11 and macOS also refuse our own duplicate)
  failed = -9868,  // any other reason
};

// Modifier flags of Carbon's hot-key service.
inline constexpr std::uint32_t HLHotKeyCommand = 0x100;
inline constexpr std::uint32_t HLHotKeyShift = 0x200;
inline constexpr std::uint32_t HLHotKeyOption = 0x800;
inline constexpr std::uint32_t HLHotKeyControl = 0x1000;

struct HLHotKeyIdentity {
  std::string signature;  // four characters
  std::uint32_t id = 0;
  bool operator==(const HLHotKeyIdentity&) const = default;
};

// A registered combination. Destroying it unregisters the combination.
class HLHotKey {
 public:
  HLHotKey() = default;
  HLHotKey(const HLHotKey&) = delete;
  HLHotKey& operator=(const HLHotKey&) = delete;
  virtual ~HLHotKey() = default;
};

struct HLHotKeyRegistration {
  HLHotKeyStatus status = HLHotKeyStatus::success;
  std::unique_ptr<HLHotKey> hotKey;  // nullptr unless the status is success
};

// Main thread only.
class HLHotKeys {
 public:
  HLHotKeys() = default;
  HLHotKeys(const HLHotKeys&) = delete;
  HLHotKeys& operator=(const HLHotKeys&) = delete;
  virtual ~HLHotKeys() = default;

  // Receives the identity of the pressed hot key, or nullopt if the host cannot read it. Returns success or notHandled.
  using Handler = std::function<HLHotKeyStatus(const std::optional<HLHotKeyIdentity>& identity)>;
  // Called at most once.
  virtual void installHandler(Handler handler) = 0;

  // `code` is a virtual key code of macOS.
  [[nodiscard]] virtual HLHotKeyRegistration registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                            const HLHotKeyIdentity& identity) = 0;

  // The user has recorded this combination; registerHotKey() follows on success. A host that keeps shortcuts in the
  // desktop's settings changes those here only.
  [[nodiscard]] virtual HLHotKeyStatus userRecorded(std::uint32_t /*code*/, std::uint32_t /*modifiers*/) {
    return HLHotKeyStatus::success;
  }
  // The user has cleared the combination.
  virtual void userCleared() {}

  // User-facing: where the host keeps the registered combination, if not in this process alone; else nullopt.
  [[nodiscard]] virtual std::optional<std::string> storageNote() const { return std::nullopt; }

  // User-facing reason if registration failed because the host supports no hot keys; else nullopt.
  [[nodiscard]] virtual std::optional<std::string> unsupportedReason() const { return std::nullopt; }
};
