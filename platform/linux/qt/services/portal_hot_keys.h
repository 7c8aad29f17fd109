// Hot keys of a Wayland desktop, by org.freedesktop.portal.GlobalShortcuts.
#pragma once

#include <cstdint>

#include "platform/hot_keys.h"
#include "platform/linux/run_loop.h"

// Each hot key is a session of the portal with one shortcut. What keys it has in the end is between the user and the
// desktop, and is not known here.
class HLPortalHotKeys : public HLHotKeys {
 public:
  explicit HLPortalHotKeys(HLLinuxRunLoop& runLoop) : runLoop_(runLoop) {}

  void installHandler(Handler handler) override;
  // Failed where there is no portal, or it has no such service, or refuses.
  [[nodiscard]] HLHotKeyRegistration registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                    const HLHotKeyIdentity& identity) override;

 private:
  class HotKey;
  HLLinuxRunLoop& runLoop_;
  const std::shared_ptr<Handler> handler_ = std::make_shared<Handler>();
};
