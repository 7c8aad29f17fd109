"""The session bus as an application sees it: it posts notifications and hears what becomes of them."""
import time

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402  (after the version is named)

NAME = "org.freedesktop.Notifications"
PATH = "/org/freedesktop/Notifications"
TIMEOUT_MS = 30000


class Bus:
    def __init__(self, address: str):
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self.connection = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)
        self.connection.set_exit_on_close(False)

    def call(self, name: str, path: str, interface: str, member: str, signature: str = "", *arguments):
        """Returns the reply's values. Raises GLib.Error."""
        parameters = GLib.Variant(f"({signature})", arguments)
        reply = self.connection.call_sync(name, path, interface, member, parameters, None,
                                          Gio.DBusCallFlags.NO_AUTO_START, TIMEOUT_MS, None)
        return reply.unpack()

    def has_owner(self, name: str) -> bool:
        return self.call("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "NameHasOwner", "s", name)[0]

    def own(self, name: str):
        self.call("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "RequestName", "su", name, 0)

    def get(self, name: str, path: str, interface: str, property_name: str):
        return self.call(name, path, "org.freedesktop.DBus.Properties", "Get", "ss", interface, property_name)[0]

    def set(self, name: str, path: str, interface: str, property_name: str, value: GLib.Variant):
        self.call(name, path, "org.freedesktop.DBus.Properties", "Set", "ssv", interface, property_name, value)


class Sender(Bus):
    """Posts notifications. Times are those of time.monotonic()."""

    def __init__(self, address: str, expiry: int):
        """The expiry is in milliseconds: 0 for never, -1 for the server's own."""
        super().__init__(address)
        self.expiry = expiry
        self.closed = {}  # number -> (time, reason)
        self.invoked = []  # numbers and keys of actions, and texts of replies, that the server reported
        self.on_close = lambda: None
        for member in ("NotificationClosed", "ActionInvoked", "NotificationReplied"):
            self.connection.signal_subscribe(None, NAME, member, PATH, None, Gio.DBusSignalFlags.NONE, self._heard)

    def _heard(self, _connection, _sender, _path, _interface, member, parameters):
        if member != "NotificationClosed":
            self.invoked.append(parameters.unpack())
            return
        number, reason = parameters.unpack()
        if number not in self.closed:
            self.closed[number] = (time.monotonic(), reason)
        self.on_close()

    def post(self, application: str, summary: str, body: str, actions=(), hints=None, replaces: int = 0) -> int:
        hints = {name: GLib.Variant(*value) for name, value in (hints or {}).items()}
        number = self.call(NAME, PATH, NAME, "Notify", "susssasa{sv}i", application, replaces, "dialog-information",
                           summary, body, list(actions), hints, self.expiry)[0]
        self.closed.pop(number, None)  # some servers give a number again
        return number

    def close_all(self, numbers, name: str):
        """Sends one CloseNotification for each number, without waiting for replies."""
        for number in numbers:
            self.connection.call(name, PATH, NAME, "CloseNotification", GLib.Variant("(u)", (number,)), None,
                                 Gio.DBusCallFlags.NONE, TIMEOUT_MS, None, None)
        self.connection.flush_sync(None)

    def listen(self, limit: float, until=lambda: False) -> bool:
        """Handles signals until the condition holds. False at the limit, in seconds."""
        context = GLib.MainContext.default()
        end = time.monotonic() + limit
        while not until():
            if time.monotonic() > end:
                return False
            if not context.iteration(False):
                time.sleep(0.0002)
        return True
