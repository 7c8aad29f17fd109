"""What is tried on every server."""
import dataclasses
import pathlib
import subprocess
import time

from gi.repository import GLib

import screen
from desktop import Desktop

GTK_NAME = "org.gtk.Notifications"
GTK_PATH = "/org/gtk/Notifications"
GTK_APPLICATION = "org.gnome.Shell.Extensions"  # it must be installed

SETTLE = 1.2  # seconds after posting, and after a run, until animations are over
BANNER_LIMIT = 10  # a shell's first banner may take a while
RUN_LIMIT = 30

ACTIONS = ["default", "Open", "reply", "Reply", "close", "Close", "x", "x"]
REPLY = ["default", "Open", "inline-reply", "Reply", "close", "Close"]
REPLY_HINTS = {"x-kde-reply-placeholder-text": ("s", "Reply to Ada")}

MESSAGES = [
    ("Messages", "Ana Petrova", "Are you still coming tonight?"),
    ("Calendar", "Team meeting", "In ten minutes, room 4"),
    ("Mail", "Three new messages", "Invoice, lunch, your order"),
    ("Backup", "Backup finished", "12 GB in four minutes"),
    ("Software", "Updates available", "Six packages"),
]


@dataclasses.dataclass(frozen=True)
class Case:
    name: str
    title: str
    count: int
    actions: tuple = ()
    hints: dict = dataclasses.field(default_factory=dict)
    equal: bool = False
    replaced: bool = False
    during: bool = False  # as many again are posted once the first is closed
    late: bool = False  # the server starts before accessibility is granted
    needs: str = ""  # a capability of the server
    timed: bool = False  # beside bare calls
    gtk: bool = False  # posted as GNOME's own programs do: without a number, and nobody is told that it is closed


CASES = {case.name: case for case in [
    Case("one", "1", 1, timed=True),
    Case("five", "5", 5, timed=True),
    Case("twenty", "20", 20, timed=True),
    Case("actions", "with actions", 3, actions=tuple(ACTIONS), needs="actions"),
    Case("reply", "with a reply field", 2, actions=tuple(REPLY), hints=REPLY_HINTS, needs="inline-reply"),
    Case("equal", "identical", 3, equal=True),
    Case("replaced", "replaced", 2, replaced=True),
    Case("during", "during the run", 3, during=True),
    Case("gtk", "by GNOME's own programs", 1, gtk=True),
    Case("late", "access granted later", 2, late=True),
]}


@dataclasses.dataclass
class Outcome:
    case: str
    posted: int = 0
    dropped: int = 0  # refused by the server, or closed by itself before the run
    closed: int = 0  # NotificationClosed was heard
    shown: bool = False  # banners are still on screen
    invoked: int = 0  # actions of the application, which must never be
    milliseconds: float = 0  # from the start of the command to the last NotificationClosed
    calls: float = 0  # the same for bare CloseNotification calls
    answer: str = ""  # of the command
    open: int = 0  # nobody was told that they are closed
    kept: int = 0  # more in the server's own list than before
    not_tried: str = ""


def post(desktop: Desktop, case: Case, remark: str = "") -> list:
    """Posts the case's notifications, with the remark in their titles. Returns the numbers of those the server accepted."""
    numbers = []
    for i in range(case.count):
        application, title, text = MESSAGES[0 if case.equal else i % len(MESSAGES)]
        if i >= len(MESSAGES):
            application, title = f"{application} {i}", f"{title} {i}"
        title += remark
        try:
            number = desktop.sender.post(application, title, text, case.actions, case.hints)
            if case.replaced:
                number = desktop.sender.post(application, title + " again", "Or tomorrow?", replaces=number)
            numbers.append(number)
        except GLib.Error as error:
            if "ExcessNotificationGeneration" not in error.message:
                raise
    return numbers


def post_for_gtk(desktop: Desktop) -> list:
    """Posts one notification that has no number."""
    _, title, text = MESSAGES[0]
    notification = {"title": GLib.Variant("s", title), "body": GLib.Variant("s", text)}
    desktop.sender.call(GTK_NAME, GTK_PATH, GTK_NAME, "AddNotification", "ssa{sv}", GTK_APPLICATION, "message",
                        notification)
    return []


def wait_for_banners(desktop: Desktop, picture: pathlib.Path) -> bool:
    end = time.monotonic() + BANNER_LIMIT
    while time.monotonic() < end:
        desktop.sender.listen(SETTLE)
        desktop.save_picture(picture)
        if screen.shows_banners(desktop.empty, picture):
            return True
    return False


def run_command(desktop: Desktop, numbers: list, case: Case, outcome: Outcome):
    """Runs the program once, and waits for what is closed a little later."""
    sender = desktop.sender
    waiting = [case] if case.during else []

    def post_more():
        if waiting:
            numbers.extend(post(desktop, waiting.pop(), ", later"))

    sender.on_close = post_more
    began = time.monotonic()
    command = subprocess.Popen([desktop.program, "--dismiss-now"], env=desktop.environment, stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    ended = sender.listen(RUN_LIMIT, lambda: command.poll() is not None)
    if not ended:
        command.kill()
    outcome.answer = command.communicate()[0].strip() if ended else "it hangs"
    sender.listen(SETTLE)
    sender.on_close = lambda: None
    if waiting:
        outcome.not_tried = "nothing was closed"
    times = [sender.closed[number][0] for number in numbers if number in sender.closed]
    outcome.posted, outcome.closed = len(numbers), len(times)
    outcome.milliseconds = 1000 * (max(times) - began) if times else 0


def clean_up(desktop: Desktop, numbers: list):
    if desktop.server.close_at:
        desktop.sender.close_all([number for number in numbers if number not in desktop.sender.closed],
                                 desktop.server.close_at)
        desktop.sender.listen(SETTLE)


def measure_calls(desktop: Desktop, case: Case) -> float:
    """Milliseconds until bare CloseNotification calls have closed as many; 0 if they did not."""
    sender = desktop.sender
    numbers = post(desktop, case)
    sender.listen(SETTLE)
    numbers = [number for number in numbers if number not in sender.closed]
    began = time.monotonic()
    sender.close_all(numbers, desktop.server.close_at)
    if not sender.listen(5, lambda: all(number in sender.closed for number in numbers)):
        return 0
    return 1000 * (max(sender.closed[number][0] for number in numbers) - began)


def try_case(desktop: Desktop, case: Case, pictures: pathlib.Path) -> Outcome:
    outcome = Outcome(case.name)
    if case.gtk and not desktop.bus.has_owner(GTK_NAME):
        outcome.not_tried = f"the server has no {GTK_NAME}"
        return outcome
    if case.needs and case.needs not in desktop.capabilities():
        outcome.not_tried = f"the server lacks {case.needs}"
        return outcome
    before, after = (pictures / f"{desktop.server.name}-{case.name}-{moment}.png" for moment in ("before", "after"))
    sender = desktop.sender
    sender.invoked.clear()
    kept = desktop.count_kept()
    numbers = post_for_gtk(desktop) if case.gtk else post(desktop, case)
    if not wait_for_banners(desktop, before):
        outcome.not_tried = "no banner appeared"
        clean_up(desktop, numbers)
        return outcome
    sender.listen(0.05)  # what came while the picture was taken
    numbers = [number for number in numbers if number not in sender.closed]
    if not case.gtk:
        outcome.dropped = case.count - len(numbers)
    run_command(desktop, numbers, case, outcome)
    desktop.save_picture(after)
    outcome.shown = screen.shows_banners(desktop.empty, after, before)
    outcome.invoked = len(sender.invoked)
    outcome.kept = desktop.count_kept() - kept
    if case.gtk:
        outcome.posted, outcome.closed = 1, 0 if outcome.shown else 1
    outcome.open = sum(1 for number in numbers if number not in sender.closed)
    clean_up(desktop, numbers)
    if case.timed and desktop.server.close_at:
        outcome.calls = measure_calls(desktop, case)
        sender.listen(SETTLE)
    return outcome
