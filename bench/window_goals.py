# SPDX-License-Identifier: MIT
"""The window: how soon it shows today, whether it answers while notes are read, scrolling, memory."""

import contextlib
import json
import os
import statistics
import subprocess
import tempfile
import time

from goals import Row, answer
from live_goals import percentile
from naive_notes import note_files
from process_goals import NOW, pairs

FRAME = 1000 / 60
WORD = "meeting"
ROWS = 100_000
OVER_EMPTY = 2.5  # the first paint of today, beside that of a window with nothing in it
BYTES_OF_NOTES = 2.5  # of memory, for each byte of the notes
BLOCK = {"medium": 50, "large": 100}  # ms that the window may not answer while notes are read
TODAY = "Calendar/20191231.txt"


class Windows:
    """Programs with windows, on a display of their own, with no settings and nothing kept."""

    def __init__(self, build, folder, display):
        self._build = build
        kinds = ("CONFIG", "CACHE", "STATE", "DATA")
        own = {f"XDG_{kind}_HOME": os.path.join(folder, kind) for kind in kinds}
        runtime = os.path.join(folder, "runtime")
        os.mkdir(runtime, 0o700)
        self._env = {**os.environ, **own, "DISPLAY": display, "XDG_RUNTIME_DIR": runtime, "QT_QPA_PLATFORM": "xcb",
                     "LC_ALL": "C.UTF-8", "NO_AT_BRIDGE": "1"}
        # A bus that is not there answers nobody, and is not started.
        self._env["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + os.path.join(runtime, "bus")
        # Else an index would be written beside what is measured.
        subprocess.run([self.path("tessaly"), "settings", "set", "isStartUpIndex", "off"], env=self._env, check=True,
                       stdout=subprocess.DEVNULL)

    def path(self, program):
        return os.path.join(self._build, "bin", program)

    def measure(self, program, *words):
        """The JSON that it prints."""
        done = subprocess.run([self.path(program), *words], env=self._env, check=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        return json.loads(done.stdout)

    def first_paint(self, *command):
        env = {**self._env, "LD_PRELOAD": self.path("watch_paint.so")}
        start = time.clock_gettime_ns(time.CLOCK_MONOTONIC)
        done = subprocess.run(command, env=env, check=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        found = json.loads(done.stdout)
        return {**found, "passed": (found["moment"] - start) / 1e6}


@contextlib.contextmanager
def own_display():
    """An X server that is there as long as the context; gives its name."""
    reading, writing = os.pipe()
    server = subprocess.Popen(["Xvfb", "-noreset", "-displayfd", str(writing), "-screen", "0", "1600x1200x24",
                               "-nolisten", "tcp"],
                              pass_fds=[writing], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(writing)
    try:
        with os.fdopen(reading) as told:
            yield ":" + told.readline().strip()
    finally:
        server.terminate()
        server.wait()


def letters_of(path):
    with open(path, encoding="utf-8") as file:
        return len(file.read().encode("utf-16-le")) // 2


def notes_bytes(root):
    return sum(os.path.getsize(path) for folder in ("Calendar", "Notes") for path, _ in note_files(root, folder))


def paint_rows(windows, size, root, count):
    ours = [windows.path("tessaly-desktop"), "--root", root, "--now", NOW]
    found = pairs(lambda: windows.first_paint(*ours), lambda: windows.first_paint(windows.path("empty_window")), count)
    median = {key: [statistics.median(side[key] for side in column) for column in zip(*found)] for key in ("passed", "cpu")}
    ratio = {key: statistics.median(a[key] / b[key] for a, b in found) for key in median}
    detail = (f"{median['passed'][0]:.0f} ms against {median['passed'][1]:.0f} ms; "
              f"of CPU {median['cpu'][0]:.0f} against {median['cpu'][1]:.0f}: {ratio['cpu']:.2f} ×")
    shown = {side[0]["text"] for side in found}
    return [
        answer(f"{size}: letters of today in the first paint", {letters_of(os.path.join(root, TODAY))}, shown),
        Row(f"{size}: first paint of today / of an empty window", ratio["passed"], OVER_EMPTY, detail=detail),
    ]


def load_rows(windows, size, root, empty, count):
    runs = [windows.measure("window_load", root, NOW, WORD) for _ in range(count)]
    longest = [max((block for block, _ in run["blocks"]), default=0) for run in runs]
    block, ready = statistics.median(longest), statistics.median(run["ready"] for run in runs)
    searched = statistics.median(max((block for block, _ in run["searchBlocks"]), default=0) for run in runs)
    size_of = notes_bytes(root)
    rows = [
        Row(f"{size}: longest time without an answer while notes are read / {BLOCK[size]} ms", block / BLOCK[size], 1,
            detail=f"{block:.0f} ms, once {max(longest):.0f}; all notes were in after {ready:.0f} ms"),
        Row(f"{size}: longest time without an answer at the first search", searched, unit="ms"),
    ]
    for key, name in (("loaded", "all notes are in"), ("searched", "a search has made them ready")):
        held = statistics.median(run[key] for run in runs)
        base = empty[key]
        rows.append(Row(f"{size}: memory for a byte of the notes once {name}", (held - base) / size_of, BYTES_OF_NOTES,
                        detail=f"{held / 1e6:.0f} MB, {base / 1e6:.0f} MB of which without notes, notes {size_of / 1e6:.0f} MB"))
    return rows


def scroll_rows(windows):
    found = windows.measure("scroll_rows", str(ROWS))
    rows = []
    for key, name in (("list", "the list"), ("sideBar", "a folder of the sidebar")):
        passed, cpu = found[key]["passed"], found[key]["cpu"]
        detail = (f"p99 {percentile(passed, 0.99):.1f} ms, median {percentile(passed, 0.5):.1f} ms, slowest {max(passed):.1f} ms; "
                  f"of CPU, p99 {percentile(cpu, 0.99):.1f} ms; shown in {found[key]['shown']:.0f} ms")
        rows.append(Row(f"{ROWS} rows of {name} scrolled, paint, p99 / a frame", percentile(passed, 0.99) / FRAME, 1, detail=detail))
    return rows


def window_rows(build, medium, large, count):
    rows = []
    with tempfile.TemporaryDirectory() as folder, own_display() as display:
        windows = Windows(build, folder, display)
        nothing = os.path.join(folder, "nothing")
        for kind in ("Calendar", "Notes"):
            os.makedirs(os.path.join(nothing, kind))
        empty = windows.measure("window_load", nothing, NOW, WORD)
        for size, root in {"medium": medium, **({"large": large} if large else {})}.items():
            rows += paint_rows(windows, size, root, count) + load_rows(windows, size, root, empty, 3)
        return rows + scroll_rows(windows)
