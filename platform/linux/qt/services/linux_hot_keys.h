// Hot keys of the session, through the X server or, on Wayland, the desktop portal or GNOME's settings.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/application/hot_keys.h"
#include "platform/linux/session/linux_run_loop.h"

// Keys are identified by position. Command maps to Super and Option to Alt.
class HLQtHotKeys : public HLHotKeys {
 public:
  // `runLoop` delivers presses. `identifier` is the program's. The first registerHotKey() chooses the backend.
  HLQtHotKeys(HLLinuxRunLoop& runLoop, std::string identifier)
      : runLoop_(runLoop), identifier_(std::move(identifier)) {}

  void installHandler(Handler handler) override;
  // A portal treats the combination as a proposal: the user may change or refuse it later.
  [[nodiscard]] HLHotKeyRegistration registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                    const HLHotKeyIdentity& identity) override;
  [[nodiscard]] HLHotKeyStatus userRecorded(std::uint32_t code, std::uint32_t modifiers) override;
  void userCleared() override;
  [[nodiscard]] std::optional<std::string> unsupportedReason() const override;
  [[nodiscard]] std::optional<std::string> storageNote() const override;

 private:
  void startService(std::unique_ptr<HLHotKeys> service);

  HLLinuxRunLoop& runLoop_;
  const std::string identifier_;
  const std::shared_ptr<Handler> handler_ = std::make_shared<Handler>();
  std::unique_ptr<HLHotKeys> service_;
};
