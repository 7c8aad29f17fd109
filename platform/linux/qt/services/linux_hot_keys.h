// Hot keys of the session: of its X server, or of a Wayland desktop through its portal.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/application/hot_keys.h"
#include "platform/linux/session/linux_run_loop.h"

// Keys are told by their position on the keyboard. Command is Super, and Option is Alt.
class HLQtHotKeys : public HLHotKeys {
 public:
  // The run loop tells of presses. The identifier is the program's. The display is found when the first hot key is
  // registered.
  HLQtHotKeys(HLLinuxRunLoop& runLoop, std::string identifier)
      : runLoop_(runLoop), identifier_(std::move(identifier)) {}

  void installHandler(Handler handler) override;
  // A portal takes the combination as a wish: the user may change it, or refuse it later.
  [[nodiscard]] HLHotKeyRegistration registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                    const HLHotKeyIdentity& identity) override;
  [[nodiscard]] std::optional<std::string> whyNone() const override;

 private:
  HLLinuxRunLoop& runLoop_;
  const std::string identifier_;
  const std::shared_ptr<Handler> handler_ = std::make_shared<Handler>();
  std::unique_ptr<HLHotKeys> service_;
};
