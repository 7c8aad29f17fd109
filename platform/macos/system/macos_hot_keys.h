// Hot keys of the Carbon event manager. Programs may share a combination, and all of them hear of it: what the system
// refuses as taken is what this program holds itself.
#pragma once

#include <cstdint>

#include "platform/application/hot_keys.h"

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
