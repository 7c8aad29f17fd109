"""A desktop session: its own directories, session bus, system bus and screen. Everything started in it ends with it."""
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import tempfile
import time

SIZE = "1280x720"
BACKGROUND = "#2e3440"

# The system bus is empty, so that no desktop talks to services of the machine.
BUS_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
  "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path={socket}</listen>
  <servicedir>{services}</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""

# Desktop components a session bus may activate. Other notification servers are not among them.
SERVICES = ["ca.desrt.dconf", "org.a11y.Bus", "org.gnome.Shell.*", "org.xfce.Xfconf", "org.cinnamon.CalendarServer",
            "org.kde.ActivityManager", "org.kde.kglobalaccel", "org.kde.kded5"]

SWAY_CONFIGURATION = f"output * resolution {SIZE} position 0 0 bg {BACKGROUND} solid_color\nxwayland disable\n"


class NotReady(Exception):
    """A component did not start within its time limit."""

    def __str__(self):
        return f"{self.args[0]} did not start"


def wait_until(condition, limit: float, what: str):
    """Polls until the condition holds and returns its value. Raises NotReady at the limit."""
    end = time.monotonic() + limit
    while not (value := condition()):
        if time.monotonic() > end:
            raise NotReady(what)
        time.sleep(0.02)
    return value


def accepts(path: pathlib.Path) -> bool:
    """Whether somebody listens at the socket. The file is there a moment earlier."""
    with socket.socket(socket.AF_UNIX) as client:
        return client.connect_ex(str(path)) == 0


def end_descendants(limit: float = 5):
    """Terminates all processes below this one, then kills those that remain. Orphans of the namespace are among them."""
    end = time.monotonic() + limit
    number = signal.SIGTERM
    while True:
        try:
            while os.waitpid(-1, os.WNOHANG) != (0, 0):
                pass
        except ChildProcessError:
            return
        children = pathlib.Path(f"/proc/self/task/{os.getpid()}/children").read_text().split()
        for child in children:
            os.kill(int(child), number)
        if time.monotonic() > end:
            number = signal.SIGKILL
        time.sleep(0.05)


class Session:
    """A context manager. One at a time, in the first process of a process namespace."""

    def __init__(self):
        self.directory = pathlib.Path(tempfile.mkdtemp(prefix="hushlet-desktop-"))
        for name in ("run", "home", "services", "none", "logs"):
            (self.directory / name).mkdir(mode=0o700)
        self.environment = {
            "PATH": "/usr/local/bin:/usr/bin:/bin",
            "HOME": str(self.directory / "home"),
            "XDG_RUNTIME_DIR": str(self.directory / "run"),
            "LC_ALL": "C.UTF-8",
            "TZ": "UTC",
            "GIO_USE_VFS": "local",
        }

    def __enter__(self):
        self._start_bus("DBUS_SYSTEM_BUS_ADDRESS", "none")
        for pattern in SERVICES:
            for service in pathlib.Path("/usr/share/dbus-1/services").glob(pattern + ".service"):
                (self.directory / "services" / service.name).symlink_to(service)
        return self

    def __exit__(self, *_):
        end_descendants()
        shutil.rmtree(self.directory, ignore_errors=True)

    def start(self, command: list, **environment) -> subprocess.Popen:
        """Starts a program in the session. Its output goes to logs/NAME."""
        log = open(self.directory / "logs" / pathlib.Path(command[0]).name, "ab")
        with log:
            return subprocess.Popen(command, env=self.environment | environment, stdin=subprocess.DEVNULL, stdout=log,
                                    stderr=log)

    def call(self, command: list, limit: float = 60) -> str:
        """Runs a program in the session to its end. Returns its standard output."""
        ran = subprocess.run(command, env=self.environment, stdin=subprocess.DEVNULL, capture_output=True, text=True,
                             timeout=limit, check=False)
        return ran.stdout

    def start_session_bus(self):
        self._start_bus("DBUS_SESSION_BUS_ADDRESS", "services")

    def _start_bus(self, variable: str, services: str):
        path = self.directory / "run" / variable.lower()
        configuration = self.directory / f"{variable}.conf"
        configuration.write_text(BUS_CONFIGURATION.format(socket=path, services=self.directory / services))
        self.environment[variable] = f"unix:path={path}"
        self.start(["dbus-daemon", "--nofork", f"--config-file={configuration}"])
        wait_until(lambda: accepts(path), 10, variable)

    def start_x_server(self):
        """A virtual X server."""
        display = self.directory / "display"
        self.start(["sh", "-c", f"exec Xvfb -displayfd 3 -noreset -nolisten tcp -screen 0 {SIZE}x24 3>{display}"])
        number = wait_until(lambda: display.exists() and display.read_text().endswith("\n") and display.read_text(), 20,
                            "Xvfb")
        self.environment["DISPLAY"] = ":" + number.strip()
        self.call(["xsetroot", "-solid", BACKGROUND])

    def start_sway(self):
        """A wlroots compositor without a screen of the machine's."""
        configuration = self.directory / "sway.conf"
        configuration.write_text(SWAY_CONFIGURATION)
        self.start(["sway", "-c", str(configuration)], WLR_BACKENDS="headless", WLR_RENDERER="pixman",
                   WLR_LIBINPUT_NO_DEVICES="1")
        run = self.directory / "run"
        display = wait_until(lambda: [path for path in run.glob("wayland-*") if path.is_socket()], 20, "sway")[0]
        self.environment["WAYLAND_DISPLAY"] = display.name
        self.environment["XDG_SESSION_TYPE"] = "wayland"
