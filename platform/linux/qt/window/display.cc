#include "platform/linux/qt/window/display.h"

#include <xcb/xcb.h>

#include <QByteArray>
#include <QDir>
#include <QLibraryInfo>
#include <QString>

#include "platform/linux/qt/services/wayland.h"

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

}  // namespace

HLQtDisplay HLQtFindDisplay() {
  const QByteArray wanted = qgetenv("QT_QPA_PLATFORM");
  const bool any = wanted.isEmpty();
  const bool wantsX = any || wanted.startsWith("xcb");
  const bool wantsWayland = any || wanted.startsWith("wayland");
  if (!wantsX && !wantsWayland) return {"", ""};  // a plugin that needs no display
  // Prefer X11, XWayland included: Wayland clients can neither place a menu at the tray icon nor center a window.
  if (wantsX && reachX()) return {any ? "xcb" : "", ""};
  if (wantsWayland && hasWaylandPlugin() && HLReachWayland()) return {any ? "wayland" : "", ""};
  if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
    return {"", "hushlet: there is no display; the menu-bar application needs a desktop session"};
  }
  return {"", "hushlet: the display cannot be reached; the menu-bar application needs a desktop session"};
}
