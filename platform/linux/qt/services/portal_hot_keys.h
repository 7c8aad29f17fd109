// Hot keys of a Wayland desktop, by org.freedesktop.portal.GlobalShortcuts.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "platform/application/hot_keys.h"
#include "platform/linux/session/linux_run_loop.h"

// Each hot key is a session of the portal with one shortcut. What keys it has in the end is between the user and the
// desktop, and is not known here. The desktop may keep them for the combination that was wished for, by the program's
// identifier.
class HLPortalHotKeys : public HLHotKeys {
 public:
  HLPortalHotKeys(HLLinuxRunLoop& runLoop, std::string identifier)
      : runLoop_(runLoop), identifier_(std::move(identifier)) {}

  void installHandler(Handler handler) override;
  // Failed where there is no portal, or it has no such service, or refuses. Waits for it, but not for its user: while
  // that one is asked, the hot key counts as registered.
  [[nodiscard]] HLHotKeyRegistration registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                    const HLHotKeyIdentity& identity) override;
  [[nodiscard]] std::optional<std::string> whyNone() const override;

 private:
  class HotKey;
  HLLinuxRunLoop& runLoop_;
  const std::string identifier_;
  bool isMissing_ = false;  // the portal, or its service
  const std::shared_ptr<Handler> handler_ = std::make_shared<Handler>();
};
