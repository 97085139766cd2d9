# SPDX-License-Identifier: MIT
"""How fast a data folder is read from start to exit, against peers that run in turn with us."""

import json
import os
import statistics
import subprocess
import tempfile
import time

from goals import Row, answer
from naive_notes import read_folder

NEEDLE = "zanzibarite"
NOW = "2019-12-31T12:00:00"
SETTLED = 3  # seconds; notes that were changed just before are not in an index


class Programs:
    """The programs that are timed, with no settings but their own defaults, and without an index.

    Settings, history and cache are below `folder`.
    """

    def __init__(self, build, folder):
        self._load = os.path.join(build, "bin", "load_notes")
        self._tessaly = os.path.join(build, "bin", "tessaly")
        self._out = os.path.join(folder, "out")
        kinds = ("CONFIG", "CACHE", "STATE", "DATA")
        self._env = {**os.environ, **{f"XDG_{k}_HOME": os.path.join(folder, k) for k in kinds}}
        # Else each reading would have an index written in the background.
        self.output([self._tessaly, "settings", "set", "isStartUpIndex", "off"])

    def load_notes(self, root, mode, *more):
        return [self._load, root, mode, *more]

    def today(self, root):
        return [self._tessaly, "--root", root, "--now", NOW, "today"]

    def write_index(self, root):
        """From now on the notes are read through an index."""
        self.output([self._tessaly, "settings", "set", "isStartUpIndex", "on"])
        time.sleep(SETTLED)
        self.output([self._tessaly, "--root", root, "index"])

    def tasks(self, root):
        return [self._tessaly, "--root", root, "--now", NOW, "tasks", "--json"]

    def watch(self, root):
        """The process, whose standard error is a pipe of text."""
        command = [self._tessaly, "--root", root, "watch", "--json"]
        return subprocess.Popen(command, env={**self._env, "LC_ALL": "C.UTF-8"}, stdin=subprocess.DEVNULL,
                                stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)

    @staticmethod
    def search(root):
        return ["rg", "-il", NEEDLE, root]

    def output(self, command):
        return subprocess.run(command, env=self._env, check=True, stdout=subprocess.PIPE).stdout.decode()

    def times(self, command):
        """Seconds from start to exit, and of CPU; output goes to a file."""
        actions = [(os.POSIX_SPAWN_OPEN, 1, self._out, os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o600)]
        start = time.perf_counter()
        child = os.posix_spawnp(command[0], command, self._env, file_actions=actions)
        _, status, usage = os.wait4(child, 0)
        taken = time.perf_counter() - start
        if status != 0:
            raise RuntimeError(f"{' '.join(command)} ended with status {status}")
        return taken, usage.ru_utime + usage.ru_stime

    def pairs(self, a, b, count):
        """Times of two commands run in turn, after a warm-up; each goes first every other time."""
        return pairs(lambda: self.times(a), lambda: self.times(b), count)


def pairs(a, b, count):
    """What two functions return, called in turn, after a warm-up; each goes first every other time."""
    a(), b()
    found = []
    for index in range(count):
        if index % 2 == 0:
            found.append((a(), b()))
        else:
            found.append(tuple(reversed((b(), a()))))
    return found


def ratio_row(name, limit, pairs, scale=1.0):
    """The median of the pairwise ratios; `scale` takes the sizes of the two jobs into account.

    The CPU's share is for information: on a busy machine it says more than the time that passed.
    """
    a, b = ([statistics.median(column) * 1e3 for column in zip(*side)] for side in zip(*pairs))
    passed, cpu = (statistics.median(x[kind] / y[kind] for x, y in pairs) * scale for kind in (0, 1))
    return Row(name, passed, limit, detail=f"{a[0]:.0f} ms against {b[0]:.0f} ms; of CPU {a[1]:.0f} against {b[1]:.0f}: {cpu:.2f} ×")


def answer_rows(programs, corpus):
    expected = read_folder(corpus, NEEDLE)
    tasks = expected.pop("tasks")
    loaded = json.loads(programs.output(programs.load_notes(corpus, "load", "--needle", NEEDLE)))
    read = json.loads(programs.output(programs.load_notes(corpus, "read")))
    sizes = {key: expected[key] for key in ("files", "bytes")}
    return [
        answer("load", expected, {key: loaded.get(key) for key in expected}),
        answer("read", sizes, {key: read.get(key) for key in sizes}),
        answer("files with the needle", expected["needle"], len(programs.output(programs.search(corpus)).splitlines())),
        answer("tasks printed", tasks, len(programs.output(programs.tasks(corpus)).splitlines())),
    ]


def timed_rows(programs, corpus, size, pairs):
    load, search = programs.load_notes(corpus, "load"), programs.search(corpus)
    against_read = programs.pairs(load, programs.load_notes(corpus, "read"), pairs)
    against_search = programs.pairs(load, search, pairs)
    today = programs.pairs(programs.today(corpus), search, pairs)
    return [
        ratio_row(f"{size}: load / read the same bytes", 1.8, against_read),
        ratio_row(f"{size}: load / rg -il {NEEDLE}", 1.3, against_search),
        ratio_row(f"{size}: tessaly today / rg -il {NEEDLE}", 1.4, today),
    ]


def indexed_rows(build, corpus, size, pairs):
    with tempfile.TemporaryDirectory(dir=build) as folder:
        programs = Programs(build, folder)
        without = programs.output(programs.today(corpus))
        programs.write_index(corpus)
        same = programs.output(programs.today(corpus)) == without
        rows = [answer(f"{size}: today prints the same with an index", True, same)]
        today = programs.pairs(programs.today(corpus), programs.search(corpus), pairs)
        return rows + [ratio_row(f"{size}: today with a fresh index / rg -il {NEEDLE}", 0.7, today)]


def growth_row(programs, medium, large, pairs):
    files = [json.loads(programs.output(programs.load_notes(root, "read")))["files"] for root in (large, medium)]
    times = programs.pairs(programs.load_notes(large, "load"), programs.load_notes(medium, "load"), pairs)
    return ratio_row("load, cost of a note: large / medium", 1.10, times, scale=files[1] / files[0])


def process_rows(build, medium, large, pairs):
    with tempfile.TemporaryDirectory() as folder:
        programs = Programs(build, folder)
        rows = answer_rows(programs, medium) + timed_rows(programs, medium, "medium", pairs)
        rows += indexed_rows(build, medium, "medium", pairs)
        if large is None:
            return rows + [Row("load, cost of a note: large / medium", None, 1.10, detail="no large corpus")]
        rows += timed_rows(programs, large, "large", pairs) + indexed_rows(build, large, "large", pairs)
        return rows + [growth_row(programs, medium, large, pairs)]
