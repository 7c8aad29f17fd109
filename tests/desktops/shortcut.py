"""A shortcut in GNOME: recorded in the settings window, pressed while a banner is on screen, and cleared."""
import pathlib

from application import Application
from cases import CASES, SETTLE, clean_up, post
from desktop import Desktop
from keyboard import ALT, CONTROL, K, SUPER, Keyboard
from servers import Server
from session import wait_until

KEYS = (CONTROL, ALT, SUPER, K)
SHOWN = "Ctrl+Alt+Super+K"
KEY_SERVICE = "org.gnome.SettingsDaemon.MediaKeys"
SCHEMA = "org.gnome.settings-daemon.plugins.media-keys"
LIMIT = 10  # seconds


def _press(desktop: Desktop, keyboard: Keyboard) -> str:
    """Presses the keys while a banner is on screen. Returns what became of it, and GNOME's custom shortcuts."""
    numbers = post(desktop, CASES["one"])
    desktop.sender.listen(SETTLE)
    keyboard.press(*KEYS)
    closed = desktop.sender.listen(LIMIT, lambda: numbers[0] in desktop.sender.closed)
    clean_up(desktop, numbers)
    stored = desktop.call(["gsettings", "get", SCHEMA, "custom-keybindings"]).strip()
    return f"the banner {'goes' if closed else 'stays'}, GNOME has {stored}"


def try_shortcut(server: Server, program: pathlib.Path):
    """Prints what the keys do before the shortcut is recorded, then, and once it is cleared."""
    with Desktop(server, program) as desktop:
        desktop.start(["/usr/libexec/gsd-media-keys"])
        wait_until(lambda: desktop.bus.has_owner(KEY_SERVICE), LIMIT, KEY_SERVICE)
        keyboard = Keyboard(desktop)
        application = Application(desktop)
        print("before:  ", _press(desktop, keyboard), flush=True)
        application.press("Record Shortcut")
        wait_until(lambda: "Type Shortcut…" in application.parts(), LIMIT, "a recording")
        keyboard.press(*KEYS)
        wait_until(lambda: SHOWN in application.parts(), LIMIT, SHOWN)
        print("recorded:", _press(desktop, keyboard), flush=True)
        application.press("Clear")
        wait_until(lambda: SHOWN not in application.parts(), LIMIT, "the shortcut's end")
        print("cleared: ", _press(desktop, keyboard), flush=True)
