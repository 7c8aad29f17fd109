#include "platform/linux/qt/services/linux_hot_keys.h"

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/linux/files/desktop_entry.h"
#include "platform/linux/qt/services/gnome_hot_keys.h"
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

// As GNOME's settings hold it, split into words like a line of a shell.
std::string dismissCommand() {
  std::error_code error;
  const std::string program = std::filesystem::read_symlink("/proc/self/exe", error).string();
  return HLExecOfProgram(error ? "hushlet" : program) + " --dismiss-now";
}

}  // namespace

void HLQtHotKeys::installHandler(Handler handler) { *handler_ = std::move(handler); }

void HLQtHotKeys::startService(std::unique_ptr<HLHotKeys> service) {
  service_ = std::move(service);
  service_->installHandler([handler = handler_](const std::optional<HLHotKeyIdentity>& pressed) {
    return *handler ? (*handler)(pressed) : HLHotKeyStatus::notHandled;
  });
}

HLHotKeyRegistration HLQtHotKeys::registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                 const HLHotKeyIdentity& identity) {
  const bool isFirst = service_ == nullptr;
  if (isFirst && !isWaylandSession()) startService(std::make_unique<HLX11HotKeys>(runLoop_));
  if (service_ == nullptr) startService(std::make_unique<HLPortalHotKeys>(runLoop_, identifier_));
  HLHotKeyRegistration registration = service_->registerHotKey(code, modifiers, identity);
  if (!isFirst || !service_->unsupportedReason() || !HLGnomeShortcut::isOffered()) return registration;
  startService(std::make_unique<HLGnomeHotKeys>(HLGnomeShortcut(identifier_, "Clear Notifications", dismissCommand())));
  return service_->registerHotKey(code, modifiers, identity);
}

HLHotKeyStatus HLQtHotKeys::userRecorded(std::uint32_t code, std::uint32_t modifiers) {
  if (service_ == nullptr) (void)registerHotKey(code, modifiers, {});  // chooses the backend
  return service_->userRecorded(code, modifiers);
}

void HLQtHotKeys::userCleared() {
  if (service_ != nullptr) service_->userCleared();
}

std::optional<std::string> HLQtHotKeys::storageNote() const {
  return service_ == nullptr ? std::nullopt : service_->storageNote();
}

std::optional<std::string> HLQtHotKeys::unsupportedReason() const {
  return service_ == nullptr ? std::nullopt : service_->unsupportedReason();
}
