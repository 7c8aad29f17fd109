// Hot keys of an X server.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/application/hot_keys.h"
#include "platform/linux/session/linux_run_loop.h"

// Passive grabs on the root windows, by a connection of its own, which is made for the first of them. The locks of the
// keyboard make no difference. A key that is held down counts once.
class HLX11HotKeys : public HLHotKeys {
 public:
  explicit HLX11HotKeys(HLLinuxRunLoop& runLoop);
  ~HLX11HotKeys() override;

  void installHandler(Handler handler) override;
  // Failed without an X server, and for a key or a modifier that the keyboard lacks.
  [[nodiscard]] HLHotKeyRegistration registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                    const HLHotKeyIdentity& identity) override;

 private:
  class Display;
  class HotKey;
  HLLinuxRunLoop& runLoop_;
  const std::shared_ptr<Handler> handler_ = std::make_shared<Handler>();
  std::shared_ptr<Display> display_;
};
