// Hot keys of the Carbon event manager.
#pragma once

#include <cstdint>

#include "platform/hot_keys.h"

struct OpaqueEventHandlerRef;

class HLMacHotKeys : public HLHotKeys {
 public:
  ~HLMacHotKeys() override;

  void installHandler(Handler handler) override;
  [[nodiscard]] HLHotKeyRegistration registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                    const HLHotKeyIdentity& identity) override;

 private:
  Handler handler_;
  OpaqueEventHandlerRef* installed_ = nullptr;
};
