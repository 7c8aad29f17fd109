"""Types on a desktop."""
from desktop import Desktop

CONTROL, ALT, SUPER, K = 29, 56, 125, 37  # the kernel's codes (linux/input-event-codes.h)
X_OFFSET = 8  # of X's codes

REMOTE = "org.gnome.Mutter.RemoteDesktop"


class Keyboard:
    def __init__(self, desktop: Desktop):
        self.desktop = desktop
        self.session = None
        if desktop.server.screen == "own":
            self.session = desktop.bus.call(REMOTE, "/org/gnome/Mutter/RemoteDesktop", REMOTE, "CreateSession")[0]
            self._call("Start")

    def press(self, *keys: int):
        """Presses the keys in this order, and releases them in the other."""
        for key in keys:
            self._send(key, True)
        for key in reversed(keys):
            self._send(key, False)

    def _send(self, key: int, down: bool):
        if self.session:
            self._call("NotifyKeyboardKeycode", "ub", key, down)
        else:
            self.desktop.call(["xdotool", "keydown" if down else "keyup", str(key + X_OFFSET)])

    def _call(self, member: str, signature: str = "", *arguments):
        self.desktop.bus.call(REMOTE, self.session, REMOTE + ".Session", member, signature, *arguments)
