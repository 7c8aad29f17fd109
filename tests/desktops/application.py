"""The menu-bar application on a desktop, used through the accessibility bus, as a screen reader uses it."""
from gi.repository import GLib

from bus import Bus
from desktop import Desktop
from session import wait_until

REGISTRY = "org.a11y.atspi.Registry"
ROOT = "/org/a11y/atspi/accessible/root"
ACCESSIBLE = "org.a11y.atspi.Accessible"

LIMIT = 20  # seconds


class Application:
    """Shows its settings window."""

    def __init__(self, desktop: Desktop):
        self.log = desktop.directory / "home/.local/share/com.tessaly.hushlet/status.log"
        self.process = desktop.start([str(desktop.program), "--open-settings"])
        self.bus = Bus(desktop.bus.call("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress")[0])
        self.name = wait_until(self._find, LIMIT, "the application")
        wait_until(lambda: "Try It" in self.parts(), LIMIT, "the settings window")

    def _find(self) -> str:
        """Returns its name on the accessibility bus, or "" until it has one."""
        if not self.bus.has_owner(REGISTRY):  # it starts with the first program
            return ""
        for name, _ in self.bus.call(REGISTRY, ROOT, ACCESSIBLE, "GetChildren")[0]:
            pid = self.bus.call("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetConnectionUnixProcessID", "s",
                                name)[0]
            if pid == self.process.pid:
                return name
        return ""

    def parts(self) -> dict:
        """Returns the texts of its windows, each with the path of its element."""
        found, waiting = {}, [ROOT]
        while waiting:
            path = waiting.pop()
            try:
                found[self.bus.get(self.name, path, ACCESSIBLE, "Name")] = path
                waiting += [child for _, child in self.bus.call(self.name, path, ACCESSIBLE, "GetChildren")[0]]
            except GLib.Error:  # the element is gone
                pass
        return found

    def press(self, title: str):
        path = wait_until(lambda: self.parts().get(title), LIMIT, title)
        self.bus.call(self.name, path, "org.a11y.atspi.Action", "DoAction", "i", 0)

    def logged(self, beginning: str) -> list:
        """Returns the rest of each line of its log that begins so, after the time."""
        lines = self.log.read_text().splitlines() if self.log.exists() else []
        return [line.split(" " + beginning, 1)[1] for line in lines if " " + beginning in line]
