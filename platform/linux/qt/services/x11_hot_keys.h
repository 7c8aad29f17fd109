// Hot keys by X11 key grabs.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/application/hot_keys.h"
#include "platform/linux/session/linux_run_loop.h"

// Passive grabs on all root windows. The first registration opens the connection. Ignores Caps Lock, Num Lock and
// Scroll Lock. Ignores auto-repeat.
class HLX11HotKeys : public HLHotKeys {
 public:
  explicit HLX11HotKeys(HLLinuxRunLoop& runLoop);
  ~HLX11HotKeys() override;

  void installHandler(Handler handler) override;
  // Returns failed without an X server, and for a key or modifier that the keyboard lacks.
  [[nodiscard]] HLHotKeyRegistration registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                    const HLHotKeyIdentity& identity) override;

 private:
  class Display;
  class HotKey;
  HLLinuxRunLoop& runLoop_;
  const std::shared_ptr<Handler> handler_ = std::make_shared<Handler>();
  std::shared_ptr<Display> display_;
};
