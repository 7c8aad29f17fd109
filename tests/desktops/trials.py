"""What the button "Try It" answers: on an empty screen, beside banners of others, and while the server shows nothing."""
import pathlib

from gi.repository import GLib

from application import Application
from cases import CASES, SETTLE, clean_up, post
from desktop import Desktop
from servers import Server
from session import NotReady

TRIALS = {"alone": "alone", "others": "with other banners", "silent": "do not disturb on"}
LIMIT = 30  # seconds


def _answer(desktop: Desktop, application: Application) -> str:
    """Presses the button, and returns what the window then says."""
    answered = len(application.logged("trial outcome="))
    application.press("Try It")
    if not desktop.sender.listen(LIMIT, lambda: len(application.logged("trial outcome=")) > answered):
        return "no answer"
    answer = application.logged("trial outcome=")[-1]
    desktop.sender.listen(SETTLE)
    return answer if answer in application.parts() else f"logged, not shown: {answer}"


def _try(desktop: Desktop, application: Application, trial: str, picture: pathlib.Path) -> str:
    sender = desktop.sender
    others = post(desktop, CASES["actions"]) if trial == "others" else []
    if trial == "silent" and not desktop.server.silence:
        return ""
    if trial == "silent":
        desktop.server.silence(desktop)
    sender.listen(SETTLE)
    others = [number for number in others if number not in sender.closed]
    answer = _answer(desktop, application)
    desktop.save_picture(picture)
    gone = sum(1 for number in others if number in sender.closed)
    if gone:
        answer += f", **{gone} OTHERS CLOSED**"
    if sender.invoked:
        answer += f", **{len(sender.invoked)} ACTIONS INVOKED**"
    clean_up(desktop, others)
    return answer


def try_button(server: Server, program: pathlib.Path, pictures: pathlib.Path) -> dict:
    """Returns the answer of each trial; "" where it is not known how to have the server show nothing."""
    try:
        with Desktop(server, program) as desktop:
            application = Application(desktop)
            answers = {trial: _try(desktop, application, trial, pictures / f"{server.name}-trial-{trial}.png")
                       for trial in TRIALS}
    except (NotReady, GLib.Error) as reason:
        answers = {trial: f"not tried: {reason}" for trial in TRIALS}
    for trial, answer in answers.items():
        print(f"{server.name:<20}trial {trial:<8}{answer}", flush=True)
    return answers
