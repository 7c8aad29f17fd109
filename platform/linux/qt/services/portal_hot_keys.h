// Hot keys through org.freedesktop.portal.GlobalShortcuts, for Wayland desktops.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "platform/application/hot_keys.h"
#include "platform/linux/session/linux_run_loop.h"

// Each hot key is a portal session with one shortcut. The desktop and its user choose the keys, which are not reported
// back. The desktop may store that choice per program identifier and proposed combination.
class HLPortalHotKeys : public HLHotKeys {
 public:
  HLPortalHotKeys(HLLinuxRunLoop& runLoop, std::string identifier)
      : runLoop_(runLoop), identifier_(std::move(identifier)) {}

  void installHandler(Handler handler) override;
  // Returns failed if the portal or its GlobalShortcuts interface is missing, or if it refuses. Blocks up to 3 s for
  // the portal. While the desktop asks its user, the hot key counts as registered.
  [[nodiscard]] HLHotKeyRegistration registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                    const HLHotKeyIdentity& identity) override;
  [[nodiscard]] std::optional<std::string> unsupportedReason() const override;

 private:
  class HotKey;
  HLLinuxRunLoop& runLoop_;
  const std::string identifier_;
  bool isMissing_ = false;  // the portal or its GlobalShortcuts interface
  const std::shared_ptr<Handler> handler_ = std::make_shared<Handler>();
};
