"""Writes the tables of docs/desktops.md and of the README from the stored outcomes."""
import json
import pathlib
import string

from cases import CASES
from servers import SERVERS, Server
from trials import TRIALS

BEGIN = "<!-- {} by make desktops -->"
END = "<!-- end -->"
MANY = 3  # more cases than the README lists


def _rows(header: list, rows: list) -> str:
    lines = [header, ["---"] * len(header), *rows]
    return "\n".join("| " + " | ".join(line) + " |" for line in lines)


def _cell(outcome: dict, reasons: list) -> str:
    """Closed of posted, and what became of the others. A reason is a letter, explained below the table."""
    reason = outcome["not_tried"] if outcome else "not run yet"
    if reason and not (outcome and outcome["closed"]):
        if reason not in reasons:
            reasons.append(reason)
        return f"not tried ({_letter(reasons.index(reason))})"
    closed, posted = outcome["closed"], outcome["posted"]
    text = f"{closed} of {posted}" if closed < posted else f"all {posted}"
    if outcome["shown"]:
        text += ", **banners stay**"
    elif closed < posted:
        text += f", {posted - closed} kept"
    if outcome.get("dropped"):
        text += f" ({outcome['dropped']} dropped)"
    if outcome["invoked"]:
        text += f", **{outcome['invoked']} ACTIONS INVOKED**"
    return text


def _letter(index: int) -> str:
    return string.ascii_lowercase[index]


def _kept(server: Server, outcome: dict) -> str:
    if not outcome or outcome["not_tried"] or outcome["shown"]:
        return ""
    count = outcome["kept"] or outcome["open"]
    return f"{count}, {server.keeps_in}" if server.keeps_in else str(count)


def _time(outcome: dict) -> str:
    if not outcome or not outcome["milliseconds"]:
        return ""
    calls = f"{outcome['calls']:.1f}" if outcome["calls"] else "none"
    return f"{outcome['milliseconds']:.0f} / {calls}"


def _idle(idle: dict) -> list:
    return [f"{idle['mebibytes']:.1f}", f"{idle['wake_ups']:g}"] if idle else ["", ""]


def _is_cleared(outcome: dict) -> bool:
    return bool(outcome) and not outcome["shown"] and outcome["closed"] > 0


def _verdict(outcomes: dict) -> str:
    tried = [outcome for outcome in outcomes.values() if not outcome["not_tried"]]
    missed = [CASES[outcome["case"]].title for outcome in tried if not _is_cleared(outcome)]
    if not tried:
        return "not tried"
    if len(missed) == len(tried):
        return "no"
    if len(missed) > MANY:
        return "partly"
    return "yes, but not: " + ", ".join(missed) if missed else "yes"


def _replace(path: pathlib.Path, name: str, table: str):
    text = path.read_text()
    begin = BEGIN.format(name)
    before, rest = text.split(begin, 1)
    path.write_text(f"{before}{begin}\n{table}\n{END}{rest.split(END, 1)[1]}")


def write(root: pathlib.Path, results: pathlib.Path):
    known = {name: json.loads((results / f"{name}.json").read_text()) for name in SERVERS
             if (results / f"{name}.json").exists()}
    cleared, times, trials, short, reasons = [], [], [], [], []
    for name, server in SERVERS.items():
        stored = known.get(name, {"version": "", "outcomes": {}})
        outcomes = stored["outcomes"]
        title = f"{server.title} {stored['version']}".strip()
        cleared.append([title, *(_cell(outcomes.get(case), reasons) for case in CASES),
                        _kept(server, outcomes.get("five"))])
        times.append([title, *(_time(outcomes.get(case.name)) for case in CASES.values() if case.timed),
                      *_idle(stored.get("idle"))])
        trials.append([title, *(stored.get("trials", {}).get(trial, "") for trial in TRIALS)])
        short.append([title, _verdict(outcomes), server.remark])
    _replace(root / "docs/desktops.md", "cleared",
             _rows(["server", *(case.title for case in CASES.values()), "stays, of 5"], cleared) +
             "".join(f"\n{'' if index else chr(10)}({_letter(index)}) {reason}  "
                     for index, reason in enumerate(reasons)))
    _replace(root / "docs/desktops.md", "times",
             _rows(["server", *(case.title for case in CASES.values() if case.timed), "daemon, MiB", "wake-ups"], times))
    _replace(root / "docs/desktops.md", "trials", _rows(["server", *TRIALS.values()], trials))
    _replace(root / "README.md", "servers", _rows(["server", "cleared?", ""], short))
