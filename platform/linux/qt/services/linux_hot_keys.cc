#include "platform/linux/qt/services/linux_hot_keys.h"

#include <cstdlib>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/linux/qt/services/portal_hot_keys.h"
#include "platform/linux/qt/services/wayland.h"
#include "platform/linux/qt/services/x11_hot_keys.h"

namespace {

// XWayland grants every grab but receives keys only while one of its own windows has the focus, so it cannot serve hot
// keys. XDG_SESSION_TYPE describes the login and stays "tty" for a compositor started from a console.
bool isWaylandSession() {
  const char* type = std::getenv("XDG_SESSION_TYPE");
  return (type != nullptr && std::string_view(type) == "wayland") || HLReachWayland();
}

}  // namespace

void HLQtHotKeys::installHandler(Handler handler) { *handler_ = std::move(handler); }

HLHotKeyRegistration HLQtHotKeys::registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                 const HLHotKeyIdentity& identity) {
  if (service_ == nullptr) {
    if (isWaylandSession()) {
      service_ = std::make_unique<HLPortalHotKeys>(runLoop_, identifier_);
    } else {
      service_ = std::make_unique<HLX11HotKeys>(runLoop_);
    }
    service_->installHandler([handler = handler_](const std::optional<HLHotKeyIdentity>& pressed) {
      return *handler ? (*handler)(pressed) : HLHotKeyStatus::notHandled;
    });
  }
  return service_->registerHotKey(code, modifiers, identity);
}

std::optional<std::string> HLQtHotKeys::unsupportedReason() const {
  return service_ == nullptr ? std::nullopt : service_->unsupportedReason();
}
