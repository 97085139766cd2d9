#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""walk_accessible.py TESSALY-DESKTOP: goes over the window as a screen reader does. Whatever takes the keys or can
be pressed has a name and a role, rows are found by what they say, and the caret's line is told of."""

import os
import subprocess
import sys
import time

sys.dont_write_bytecode = True

from desktop_session import LONGEST, DesktopSession, missing, skip, wait_for

LAUNCHERS = ("/usr/libexec/at-spi-bus-launcher", "/usr/lib/at-spi2-core/at-spi-bus-launcher")
NOW = "2019-03-05T09:00:00"
NOTES = {
    "Calendar/20190305.txt": "# Today\n* Call Bob #work\n* [x] Send slides @done(2019-03-05 08:12 AM)\n",
    "Calendar/20190301.txt": "* Pay the rent\n",
    "Calendar/20190308.txt": "* Ask @ann\n",
    "Notes/Plans.txt": "# Plans\n* Check the budget >2019-03-05\n* Without a day\n",
    "Notes/Work/Budget.txt": "# Budget\n* Sum up\n",
    "Notes/Lines.txt": "# Lines\n* Buy **flour** >2019-03-06\n\t* Weigh it\n* Bake\nand eat\n",
    "Notes/Torn.txt": "# Torn\none\n",
    "Notes/Torn.sync-conflict-20190304-101112-ABCDEFG.txt": "# Torn\n2\n",
}
# What is opened, the steps there, what is seen there by its name, and the keys that close it.
VIEWS = [
    ("the day", [], ["Today", "Plans", "Call Bob", "Check the budget"], []),
    ("the inbox", ["alt+4"], ["Without a day"], []),
    ("a search", ["ctrl+shift+f", "text:budget", "Return"], ["Check the budget"], []),
    ("the name of a view", ["ctrl+shift+s"], ["Name of the view"], ["Escape"]),
    ("the week", ["alt+2"], ["Tasks of the week", "Ask @ann"], ["alt+1"]),
    ("find and replace", ["ctrl+h"], ["Replace with"], ["Escape"]),
    ("the choice of a day", ["ctrl+Home", "Down", "ctrl+d"], ["Schedule 1 task", "Calendar"], ["Escape"]),
    ("the commands", ["ctrl+shift+p"], ["Go to This Week"], ["Escape"]),
    ("quick open", ["ctrl+o"], ["Budget"], ["Escape"]),
    ("a conflict", ["ctrl+o", "text:Torn", "Return"], ["Show the other version"], []),
    ("another version", ["press:Show the other version"], ["Another version of this note"], []),
    ("the keys", ["ctrl+question"], ["Find a command or key"], ["Escape"]),
]
# In the note of lines: a key that moves the caret, and what is said of its line then.
LINES = [
    ("Down", "Task, open, Buy flour, due tomorrow, 1 sub-task"),
    ("ctrl+Home", "Heading 1, Lines"),
    ("ctrl+End", ""),
    ("Up", ""),
    ("Up", "Task, open, Bake"),
    ("ctrl+Return", "Task, done, Bake"),
]
# Names of their own make no sense for these: they hold what has one.
NAMELESS_ROLES = {"filler", "panel", "separator", "scroll bar", "viewport", "layered pane", "split pane"}
UNKNOWN_ROLES = {"invalid", "unknown", "extended", ""}


class Walk:
    def __init__(self, process):
        import pyatspi
        from gi.repository import GLib
        self.atspi = pyatspi
        self.gone = (LookupError, GLib.Error)  # what is told of something that has gone meanwhile
        self.application = wait_for("the program on the bus of assistive programs", lambda: self._find(process.pid))
        self.problems = {}
        self.controls = set()

    def _find(self, process):
        for application in self.atspi.Registry.getDesktop(0):
            if application is not None and application.get_process_id() == process:
                return application
        return None

    def nodes(self, node=None, path=""):
        """All that is in sight, with its role, its name and the way to it."""
        for child in node or self.application:
            try:
                if child is None or not child.getState().contains(self.atspi.STATE_SHOWING):
                    continue
                role, name = child.getRoleName(), child.name.strip()
                below = f'{path} > {role} "{name}"'
                yield child, role, name, below
                yield from self.nodes(child, below)
            except self.gone:
                continue

    def is_for_use(self, node):
        """Whether the user can give it the keys, or press it."""
        if node.getState().contains(self.atspi.STATE_FOCUSABLE):
            return True
        try:
            action = node.queryAction()
        except NotImplementedError:
            return False
        return any(action.getName(index).lower() in ("press", "toggle", "showmenu") for index in range(action.nActions))

    def look(self, view):
        """Notes what has no name or no role, and returns the names of all that is in sight."""
        names = []
        for node, role, name, path in self.nodes():
            names.append(name)
            if role in NAMELESS_ROLES or not self.is_for_use(node):
                continue
            self.controls.add(path)
            if role in UNKNOWN_ROLES or not name:
                self.problems.setdefault(path, view)
        return names

    def listen(self, event):
        """A list to which the names are added of whatever tells of such an event."""
        heard = []
        self.atspi.Registry.registerEventListener(lambda told: heard.append(told.source.name), event)
        return heard

    def take_events(self):
        from gi.repository import GLib
        while GLib.MainContext.default().iteration(False):
            pass

    def description_of(self, wanted):
        for node, _, name, _ in self.nodes():
            if name == wanted:
                node.clear_cache()
                return node.description
        return None

    def press(self, wanted):
        for node, role, name, _ in self.nodes():
            if name == wanted and "button" in role:
                node.queryAction().doAction(0)
                return
        raise AssertionError(f"nothing is called {wanted}")


def go(session, walk, steps):
    for step in steps:
        kind, _, value = step.partition(":")
        if kind == "text":
            session.type(value)
        elif kind == "press":
            walk.press(value)
        else:
            session.press(step)


def look_at(session, walk, view, steps, wanted, back):
    go(session, walk, steps)
    end = time.monotonic() + LONGEST
    while True:
        names = walk.look(view)
        lacking = [words for words in wanted if not any(words in name for name in names)]
        if not lacking or time.monotonic() > end:
            break
        time.sleep(0.1)
    for words in lacking:
        walk.problems[f'nothing tells of "{words}"'] = view
    go(session, walk, back)


def hear_lines(session, walk):
    """Moves the caret, and listens to what is told of its line."""
    heard = walk.listen("object:property-change:accessible-description")
    go(session, walk, ["ctrl+o", "text:Lines", "Return"])
    wait_for("the note", lambda: "and eat" in text_of(walk, "Note"))
    for key, words in LINES:
        heard.clear()
        session.press(key)

        def is_told():
            walk.take_events()
            return ("Note" in heard or not words) and walk.description_of("Note") == words
        try:
            wait_for(words, is_told)
        except AssertionError:
            told = f'{walk.description_of("Note")!r} and {heard}'
            walk.problems[f"{key} tells {told} instead of {words!r}"] = "the lines of a note"
    session.press("alt+1")


def text_of(walk, wanted):
    for node, _, name, _ in walk.nodes():
        if name == wanted:
            return node.queryText().getText(0, -1)
    return ""


def start_launcher(session, launcher):
    """The bus of assistive programs, on which the program tells of its window from its start on."""
    session.environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
    session.start([launcher, "--launch-immediately"])
    # A program that asks for the bus while it starts would wait for it without a window.
    ask = ["dbus-send", "--session", "--print-reply", "--dest=org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus.GetAddress"]
    wait_for("the bus of assistive programs", lambda: subprocess.run(ask, env=session.environment, capture_output=True,
                                                                     timeout=LONGEST).returncode == 0)


def write_notes(session):
    for name, text in NOTES.items():
        path = session.path(f"planner/{name}")
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)


def lacking_here(launcher):
    lacking = missing() + ([] if launcher else ["at-spi2-core"])
    try:
        import pyatspi  # noqa: F401
    except (ImportError, ValueError):
        lacking.append("python3-pyatspi")
    return lacking


def main():
    launcher = next((path for path in LAUNCHERS if os.path.exists(path)), None)
    if lacking_here(launcher):
        return skip(lacking_here(launcher))
    with DesktopSession(sys.argv[1]) as session:
        os.environ.update(session.environment)  # for the look around, too
        start_launcher(session, launcher)
        write_notes(session)
        program, _ = session.open_window("--root", session.path("planner"), "--now", NOW)
        walk = Walk(program)
        roles = [node.getRoleName() for node in walk.application]
        assert roles == ["frame"], f"the window is no window but: {roles}"
        hear_lines(session, walk)
        for row in VIEWS:
            look_at(session, walk, *row)
        assert session.end(program) == 0
    for path, view in walk.problems.items():
        print(f"{view}: {path}")
    print(f"{len(walk.controls)} controls, {len(walk.problems)} problems")
    return 1 if walk.problems else 0


if __name__ == "__main__":
    sys.exit(main())
