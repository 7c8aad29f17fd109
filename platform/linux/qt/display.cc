#include "platform/linux/qt/display.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <QByteArray>
#include <QDir>
#include <QLibraryInfo>
#include <QString>
#include <cstring>
#include <string>

namespace {

bool reachX() {
  if (qEnvironmentVariableIsEmpty("DISPLAY")) return false;
  xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
  const bool reached = xcb_connection_has_error(connection) == 0;
  xcb_disconnect(connection);
  return reached;
}

bool hasWaylandPlugin() {
  const QDir plugins(QLibraryInfo::path(QLibraryInfo::PluginsPath) + "/platforms");
  return !plugins.entryList({"libqwayland*.so"}, QDir::Files).isEmpty();
}

bool reachWayland() {
  QByteArray path = qgetenv("WAYLAND_DISPLAY");
  if (path.isEmpty() || !hasWaylandPlugin()) return false;
  if (!path.startsWith('/')) path = qgetenv("XDG_RUNTIME_DIR") + '/' + path;
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (static_cast<std::size_t>(path.size()) >= sizeof address.sun_path) return false;
  std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
  const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const bool reached = connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  ::close(descriptor);
  return reached;
}

}  // namespace

HLQtDisplay HLQtFindDisplay() {
  const QByteArray wanted = qgetenv("QT_QPA_PLATFORM");
  const bool any = wanted.isEmpty();
  const bool wantsX = any || wanted.startsWith("xcb");
  const bool wantsWayland = any || wanted.startsWith("wayland");
  if (!wantsX && !wantsWayland) return {"", ""};  // one that needs no display
  // X first, XWayland too: there a menu can be opened at the tray's icon, a window centered and a hot key grabbed.
  if (wantsX && reachX()) return {any ? "xcb" : "", ""};
  if (wantsWayland && reachWayland()) return {any ? "wayland" : "", ""};
  if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
    return {"", "hushlet: there is no display; the menu-bar application needs a desktop session"};
  }
  return {"", "hushlet: the display cannot be reached; the menu-bar application needs a desktop session"};
}
