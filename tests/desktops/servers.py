"""The notification servers: how each is started, what shows its screen, and what it keeps."""
import dataclasses
import typing


@dataclasses.dataclass(frozen=True)
class Server:
    name: str
    title: str
    package: str  # of Debian
    commands: tuple  # each a list of words; the first window manager or shell first
    screen: str = "x11"  # "x11", "sway", or "own" for a shell that is its own compositor
    desktop: str = ""  # XDG_CURRENT_DESKTOP
    shell: bool = False  # it takes long to start, and its pictures change by themselves
    close_at: str = "org.freedesktop.Notifications"  # the bus name whose CloseNotification is called; "" for none
    expiry: int = 0  # of the notifications, in milliseconds; 0 for never
    keeps_in: str = ""  # where it keeps what was closed or expired
    count_kept: typing.Callable = None  # how much that is, given a bus
    environment: tuple = ()  # pairs of names and values
    silence: typing.Callable = None  # has it show nothing, given a desktop
    remark: str = ""  # for the table


def _dunst_history(bus) -> int:
    return bus.get("org.freedesktop.Notifications", "/org/freedesktop/Notifications", "org.dunstproject.cmd0",
                   "historyLength")


def _swaync_count(bus) -> int:
    return bus.call("org.erikreider.swaync.cc", "/org/erikreider/swaync/cc", "org.erikreider.swaync.cc",
                    "NotificationCount")[0]


def _run(*words) -> typing.Callable:
    return lambda desktop: desktop.call(list(words))


def _silence_lxqt(desktop):
    settings = desktop.directory / "home/.config/lxqt/notifications.conf"
    settings.parent.mkdir(parents=True, exist_ok=True)
    settings.write_text("[General]\ndoNotDisturb=true\n")


def _silence_mako(desktop):
    """As its manual has it."""
    settings = desktop.directory / "home/.config/mako/config"
    settings.parent.mkdir(parents=True, exist_ok=True)
    settings.write_text("[mode=do-not-disturb]\ninvisible=1\n")
    desktop.call(["makoctl", "reload"])
    desktop.call(["makoctl", "mode", "-a", "do-not-disturb"])


def _silence_plasma(desktop):
    """For as long as the connection lives."""
    name = "org.freedesktop.Notifications"
    desktop.bus.call(name, "/org/freedesktop/Notifications", name, "Inhibit", "ssa{sv}", "desktop", "trial", {})


SILENCE_GNOME = _run("gsettings", "set", "org.gnome.desktop.notifications", "show-banners", "false")
OPENBOX = ["openbox", "--sm-disable"]

SERVERS = {server.name: server for server in [
    Server("gnome-x11", "GNOME Shell, X11", "gnome-shell", (["gnome-shell", "--x11"],), desktop="GNOME", shell=True,
           close_at="org.gnome.Shell", keeps_in="message tray", silence=SILENCE_GNOME,
           remark="by number; the message tray keeps what was not on screen"),
    Server("gnome-wayland", "GNOME Shell, Wayland", "gnome-shell",
           (["gnome-shell", "--headless", "--virtual-monitor", "1280x720", "--wayland"],), screen="own",
           desktop="GNOME", shell=True, close_at="org.gnome.Shell", keeps_in="message tray",
           silence=SILENCE_GNOME,
           remark="by number; the message tray keeps what was not on screen"),
    Server("cinnamon", "Cinnamon", "cinnamon", (["cinnamon", "--replace"],), desktop="X-Cinnamon", shell=True,
           keeps_in="tray",
           silence=_run("gsettings", "set", "org.cinnamon.desktop.notifications", "display-notifications", "false"),
           remark="by number; its tray keeps what has expired"),
    Server("budgie", "Budgie", "budgie-core", (["budgie-wm", "--x11"], ["budgie-daemon"], ["budgie-panel"]),
           desktop="Budgie:GNOME", shell=True, expiry=60000,
           silence=lambda desktop: desktop.bus.call(
               "org.budgie_desktop.Notifications", "/org/budgie_desktop/Notifications",
               "org.buddiesofbudgie.budgie.Dispatcher", "ToggleDoNotDisturb")),  # "never" is six seconds to it
    Server("plasma", "Plasma, X11", "plasma-workspace", (["kwin_x11"], ["plasmashell"]), desktop="KDE", shell=True,
           environment=(("KWIN_COMPOSE", "N"), ("QT_QUICK_BACKEND", "software")),  # OpenGL without hardware is too slow
           silence=_silence_plasma, remark="shows four at a time; the next follow at once"),
    Server("mate", "mate-notification-daemon", "mate-notification-daemon",
           (OPENBOX, ["/usr/lib/mate-notification-daemon/mate-notification-daemon"]), desktop="MATE",
           silence=_run("gsettings", "set", "org.mate.NotificationDaemon", "do-not-disturb", "true")),
    Server("lxqt", "lxqt-notificationd", "lxqt-notificationd", (OPENBOX, ["lxqt-notificationd"]), desktop="LXQt",
           silence=_silence_lxqt),
    Server("xfce", "xfce4-notifyd", "xfce4-notifyd",
           (OPENBOX, ["/usr/lib/x86_64-linux-gnu/xfce4/notifyd/xfce4-notifyd"]), desktop="XFCE",
           silence=_run("xfconf-query", "-c", "xfce4-notifyd", "-p", "/do-not-disturb", "-n", "-t", "bool", "-s", "true"),
           remark="by number"),
    Server("notification-daemon", "notification-daemon", "notification-daemon",
           (OPENBOX, ["/usr/lib/notification-daemon/notification-daemon"]), close_at="",
           remark="shows one at a time; the next follows at once"),
    Server("notify-osd", "notify-osd", "notify-osd", (OPENBOX, ["/usr/lib/x86_64-linux-gnu/notify-osd"]), close_at="",
           expiry=-1, remark="its bubbles cannot be closed; they go by themselves"),
    Server("dunst", "dunst", "dunst", (OPENBOX, ["dunst"]), keeps_in="history", count_kept=_dunst_history,
           silence=_run("dunstctl", "set-paused", "true"),
           remark="by number; its history keeps them"),
    Server("mako", "mako", "mako-notifier", (["mako"],), screen="sway", desktop="sway",
           silence=_silence_mako, remark="by number; they can be restored"),
    Server("swaync", "swaync", "sway-notification-center", (["swaync"],), screen="sway", desktop="sway",
           keeps_in="control center",
           silence=_run("swaync-client", "--dnd-on"), count_kept=_swaync_count, remark="by number"),
]}
