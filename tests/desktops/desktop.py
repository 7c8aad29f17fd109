"""One notification server in a session of its own, with the program beside it."""
import pathlib
import re
import time

from gi.repository import GLib

import screen
from bus import NAME, PATH, Bus, Sender
from servers import Server
from session import Session, wait_until

PICTURE_RIGHT = "org.freedesktop.impl.portal.desktop.gnome"  # GNOME Shell takes pictures for the owner of this name
START_LIMIT = 60
IDLE_TIME = 5  # seconds
QUIET = 1.0  # seconds without a change, until a desktop has started


class Desktop(Session):
    def __init__(self, server: Server, program: pathlib.Path, accessible: bool = True):
        """Accessibility is switched on before the server starts, or not at all."""
        super().__init__()
        self.server = server
        self.program = program
        self.accessible = accessible
        self.daemon = None

    def __enter__(self):
        try:
            return self._begin()
        except BaseException:
            self.__exit__()
            raise

    def _begin(self):
        super().__enter__()
        server = self.server
        self.environment |= dict(server.environment)
        if server.desktop:
            self.environment["XDG_CURRENT_DESKTOP"] = server.desktop
        if server.screen == "x11":
            self.environment["XDG_SESSION_TYPE"] = "x11"
            self.start_x_server()
        self.start_session_bus()
        self.bus = Bus(self.environment["DBUS_SESSION_BUS_ADDRESS"])
        self.bus.own(PICTURE_RIGHT)
        if server.screen == "sway":
            self.start_sway()
        self.start(["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"])
        wait_until(lambda: self.bus.has_owner("org.a11y.Bus"), 10, "the accessibility bus")
        if self.accessible:
            self.bus.set("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Status", "IsEnabled", GLib.Variant("b", True))
        if server.screen == "own":
            self.environment["XDG_SESSION_TYPE"] = "wayland"
        self._silence_welcome()
        for command in server.commands:
            self.start(command)
        wait_until(lambda: self.bus.has_owner(NAME), START_LIMIT, server.name)
        if server.screen == "own":
            self.environment["WAYLAND_DISPLAY"] = "wayland-0"
        if server.shell:
            time.sleep(QUIET * 5)
        if "gnome" in server.name:
            self.bus.set("org.gnome.Shell", "/org/gnome/Shell", "org.gnome.Shell", "OverviewActive",
                         GLib.Variant("b", False))
        self.empty = self.directory / "empty.png"
        wait_until(self._is_still, START_LIMIT, "a still screen")
        self.sender = Sender(self.environment["DBUS_SESSION_BUS_ADDRESS"], server.expiry)
        return self

    def start_program(self):
        """Starts the daemon, which is what remembers open notifications for the command."""
        self.daemon = self.start([str(self.program), "--daemon"])
        self.sender.listen(QUIET)

    def _silence_welcome(self):
        """GNOME Shell warns once, by a banner, that it has no lock screen."""
        warned = self.directory / "home/.local/share/gnome-shell/lock-warning-shown"
        warned.parent.mkdir(parents=True)
        warned.touch()

    def idle(self) -> dict:
        """Memory and wake-ups of the daemon while nothing is posted."""
        before = self._wake_ups()
        self.sender.listen(IDLE_TIME)
        resident = re.search(r"VmRSS:\s*(\d+)", pathlib.Path(f"/proc/{self.daemon.pid}/status").read_text()).group(1)
        return {"mebibytes": int(resident) / 1024, "wake_ups": (self._wake_ups() - before) / IDLE_TIME}

    def _wake_ups(self) -> int:
        threads = pathlib.Path(f"/proc/{self.daemon.pid}/task").glob("*/status")
        return sum(int(re.search(r"^voluntary_ctxt_switches:\s*(\d+)", status.read_text(), re.M).group(1))
                   for status in threads)

    def information(self) -> tuple:
        """Name, vendor, version and version of the protocol, as the server gives them."""
        return self.bus.call(NAME, PATH, NAME, "GetServerInformation")

    def capabilities(self) -> list:
        return self.bus.call(NAME, PATH, NAME, "GetCapabilities")[0]

    def count_kept(self) -> int:
        """What the server's own list holds. 0 where it cannot be asked."""
        return self.server.count_kept(self.bus) if self.server.count_kept else 0

    def _is_still(self) -> bool:
        self.save_picture(self.empty)
        time.sleep(QUIET)
        return self.is_clean()

    def is_clean(self) -> bool:
        """Whether the screen is as it was before the first notification."""
        now = self.directory / "now.png"
        self.save_picture(now)
        return not screen.shows_banners(self.empty, now)

    def save_picture(self, path: pathlib.Path):
        path.parent.mkdir(parents=True, exist_ok=True)
        if self.server.screen == "x11":
            self.call(["import", "-window", "root", "-silent", str(path)])
        elif self.server.screen == "sway":
            self.call(["grim", str(path)])
        else:
            self.bus.call("org.gnome.Shell.Screenshot", "/org/gnome/Shell/Screenshot", "org.gnome.Shell.Screenshot",
                          "Screenshot", "bbs", False, False, str(path))
