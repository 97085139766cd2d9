# SPDX-License-Identifier: MIT
"""A desktop of its own for one test: a display, a session bus, a home, and the program on it."""

import glob
import os
import shutil
import signal
import subprocess
import tempfile
import time

SKIPPED = 77
LONGEST = 20  # seconds, on a busy machine
NEEDED = ("Xvfb", "xdotool", "dbus-daemon")


def missing(commands=NEEDED):
    """The commands that are not installed; where CI is set, that is a failure for whoever asks."""
    return [command for command in commands if not shutil.which(command)]


def skip(what):
    """The exit status of a test that cannot run here."""
    print(f"not installed: {', '.join(what)}")
    return 1 if os.environ.get("CI") else SKIPPED


def wait_for(what, is_true, longest=LONGEST):
    """What `is_true` told last, which is true."""
    end = time.monotonic() + longest
    while True:
        value = is_true()
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError(f"waited {longest} s in vain for {what}")
        time.sleep(0.02)


class DesktopSession:
    def __init__(self, program):
        self.program = os.path.abspath(program)
        self._temporary = tempfile.TemporaryDirectory(prefix="tessaly-desktop-")
        self.home = self._temporary.name
        self._children = []
        self.environment = {name: value for name, value in os.environ.items()
                            if not name.startswith(("XDG_", "QT_", "TESSALY_", "DBUS_", "AT_SPI", "WAYLAND_", "LC_"))}
        self.environment.update(HOME=self.home, LANG="C.UTF-8", NO_AT_BRIDGE="1")
        for name in ("data", "config", "state", "cache", "run"):
            os.mkdir(self.path(name), 0o700)
            variable = "XDG_RUNTIME_DIR" if name == "run" else f"XDG_{name.upper()}_HOME"
            self.environment[variable] = self.path(name)

    def __enter__(self):
        try:
            # By default a display starts anew when its last client has gone, and sends off who comes just then.
            display = self._start_telling(["Xvfb", "-noreset", "-screen", "0", "1400x900x24", "-nolisten", "tcp",
                                           "-displayfd"])
            self.environment["DISPLAY"] = f":{display}"
            self.environment["DBUS_SESSION_BUS_ADDRESS"] = self._start_telling(
                ["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address"], "=")
        except BaseException as failure:
            self.__exit__(failure)
            raise
        return self

    def __exit__(self, failure=None, *_):
        if failure:
            with open(self.path("said"), encoding="utf-8", errors="replace") as said:
                print(f"What the programs said:\n{said.read()}", flush=True)
        for child in reversed(self._children):
            if child.poll() is None:
                child.terminate()
                try:
                    child.wait(LONGEST)
                except subprocess.TimeoutExpired:
                    child.kill()
                    child.wait()
        self._temporary.cleanup()

    def _start_telling(self, words, join=None):
        """Starts a server that writes where it is to be found into a descriptor; returns that."""
        readable, writable = os.pipe()
        last = [str(writable)] if join is None else []
        first = words if join is None else [*words[:-1], f"{words[-1]}{join}{writable}"]
        self.start([*first, *last], pass_fds=(writable,))
        os.close(writable)
        with os.fdopen(readable) as pipe:
            told = pipe.readline().strip()
        assert told, f"{words[0]} does not start"
        return told

    def start(self, words, **more):
        with open(self.path("said"), "ab") as said:
            child = subprocess.Popen(words, env=self.environment, stdin=subprocess.DEVNULL, stdout=said, stderr=said,
                                     **more)
        self._children.append(child)
        return child

    def path(self, name):
        return os.path.join(self.home, name)

    # The program.

    def open_window(self, *words):
        """Starts the program and gives its window the keys."""
        child = self.start([self.program, *words])
        window = wait_for("a window", lambda: self._window_of(child).split())[0]
        self.xdotool("windowfocus", "--sync", window)
        return child, window

    def _window_of(self, child):
        assert child.poll() is None, f"the program has ended: {child.returncode}"
        return self.xdotool("search", "--all", "--onlyvisible", "--pid", str(child.pid), "--name", " – Tessaly$")

    def end(self, child, how=signal.SIGTERM):
        child.send_signal(how)
        return child.wait(LONGEST)

    def xdotool(self, *words):
        ended = subprocess.run(["xdotool", *words], env=self.environment, capture_output=True, text=True,
                               timeout=LONGEST)
        return ended.stdout.strip()

    def type(self, text):
        self.xdotool("type", "--delay", "2", text)

    def press(self, *keys):
        self.xdotool("key", "--delay", "20", *keys)

    # The notes.

    def notes(self):
        """Text by path of all notes, wherever the data folder is."""
        found = {}
        for path in glob.glob(f"{self.home}/**/*.*", recursive=True):
            if os.path.isfile(path) and os.path.basename(os.path.dirname(path)) in ("Calendar", "Notes"):
                with open(path, encoding="utf-8") as file:
                    found[path] = file.read()
        return found

    def holding(self, text):
        """The path of a note that holds a text."""
        return next((path for path, found in self.notes().items() if text in found), None)

    def stray_files(self):
        """Hidden and temporary files beside notes."""
        return [os.path.join(folder, name) for folder, _, names in os.walk(self.path("data")) for name in names
                if os.path.basename(folder) in ("Calendar", "Notes") and not name.endswith((".txt", ".md"))]
