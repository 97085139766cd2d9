#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""run_soak.py TESSALY [--seconds N] [--seed S]: twenty changes a second for a while, with rests.

At the end, what was told is what lies there; the watcher has not grown: in the last quarter of the time its
memory is at most a twentieth and 2 MB above the highest of the second quarter, and it has no more files open.
"""

import argparse
import collections
import os
import random
import shutil
import signal
import sys
import tempfile
import time

sys.dont_write_bytecode = True
HERE = os.path.dirname(os.path.realpath(__file__))
sys.path[1:1] = [os.path.join(HERE, "..", folder) for folder in ("faults", "life")]

import ways
from home import Home, Problems
from planner import random_line
from watcher import MARKER, Watcher, write

BURST, PAUSE = 60, 1 / 40  # changes, and seconds between them
REST = 1.5  # seconds between two bursts: long enough to end a batch, and to make it twenty changes a second
NAMES = [*(f"Notes/{folder}{number}.txt" for folder in ("", "a/", "a/b/", "c/") for number in range(25)),
         *(f"Calendar/201903{day:02}.txt" for day in range(1, 31))]
FOLDERS = ["Notes/a", "Notes/a/b", "Notes/c", "Notes/d/e", "outside"]


class Peer:
    """Somebody else, who keeps things in "outside", which lies where nobody looks."""

    def __init__(self, home, seed):
        self._home = home
        self._random = random.Random(seed)
        os.makedirs(self._path("Notes"), exist_ok=True)

    def _path(self, name):
        return os.path.join(self._home.data, name)

    def _text(self):
        # What is completed and repeats, the watcher itself would change.
        lines = [random_line(self._random) for _ in range(self._random.randint(1, 20))]
        return "\n".join(line for line in lines if "@repeat" not in line) + f"\n{self._random.random()}\n"

    def edit(self):
        self._random.choices((self._save, self._create, self._delete, self._move_folder, self._touch, self._hide),
                             (10, 5, 2, 1, 1, 1))[0]()

    def _save(self):
        path = self._path(self._random.choice(NAMES))
        if os.path.isfile(path):
            self._random.choices([*ways.QUICK, ways.by_sed, ways.by_vim], [4] * len(ways.QUICK) + [2, 1])[0](path, self._text())

    def _create(self):
        write(self._path(self._random.choice(NAMES)), self._text())

    def _delete(self):
        path = self._path(self._random.choice(NAMES))
        if os.path.exists(path):
            self._random.choice((os.unlink, lambda old: os.renames(old, self._path(f".Trash/{os.path.basename(old)}"))))(path)

    def _move_folder(self):
        source, target = map(self._path, self._random.sample(FOLDERS, 2))
        if os.path.isdir(source) and os.path.commonpath((source, target)) not in (source, target):
            shutil.rmtree(target, ignore_errors=True)
            os.makedirs(os.path.dirname(target), exist_ok=True)
            os.rename(source, target)

    def _touch(self):
        path = self._path(self._random.choice(NAMES))
        if os.path.exists(path):
            self._random.choice((os.utime, lambda file: os.chmod(file, self._random.choice((0o600, 0o644)))))(path)

    def _hide(self):
        write(self._path(self._random.choice(("Notes/.state.txt", "Notes/x.txt~", "Notes/_attachments/y.txt"))), self._text())


def measured(pid):
    """(resident memory in KB, open files)."""
    with open(f"/proc/{pid}/status", encoding="ascii") as file:
        memory = next(int(line.split()[1]) for line in file if line.startswith("VmRSS:"))
    return memory, len(os.listdir(f"/proc/{pid}/fd"))


def children(pid):
    found = []
    for task in os.listdir(f"/proc/{pid}/task"):
        with open(f"/proc/{pid}/task/{task}/children", encoding="ascii") as file:
            found += file.read().split()
    return found


def check_growth(problems, samples):
    quarter = len(samples) // 4
    for what, early, late, room in zip(("memory, KB", "open files"), zip(*samples[quarter:2 * quarter]),
                                       zip(*samples[3 * quarter:]), (max(samples)[0] // 20 + 2048, 0)):
        problems.check(max(late) <= max(early) + room, f"{what} grew from {max(early)} to {max(late)}")
        print(f"{what}: {max(early)} in the second quarter, {max(late)} in the last")


def replayed(problems, rows):
    """The paths of all that must be there, after what was told of it."""
    there = set()
    for row in rows:
        name = row["path"] + ("/" if row["isFolder"] else "")
        is_consistent = (name in there) == (row["update"] != "added")
        problems.check(is_consistent, f"{row['update']} {name} in batch {row['batch']}, {name in there} before")
        (there.discard if row["update"] == "deleted" else there.add)(name)
    return there


def lying_there(root):
    found = set()
    for kind in ("Notes", "Calendar", ".Trash"):
        for folder, folders, names in os.walk(os.path.join(root, kind)):
            folders[:] = [name for name in folders if name != "_attachments"]
            below = os.path.relpath(folder, root)
            found |= {f"{below}/{name}/" for name in folders}
            found |= {f"{below}/{name}" for name in names if name.endswith(".txt") and not name.startswith(".")}
    return found


def soak(problems, home, seconds, seed):
    peer = Peer(home, seed)
    samples, edits = [], 0
    with Watcher(home) as watcher:
        watcher.wait_until_ready()
        began = time.monotonic()
        while time.monotonic() < began + seconds:
            peer.edit()
            edits += 1
            if edits % 10 == 0:
                samples.append(measured(watcher.pid))
            due = edits * PAUSE + edits // BURST * REST
            time.sleep(max(0, began + due - time.monotonic()))
        problems.check(not children(watcher.pid), "it has children")
        status, rows, _ = watcher.finish()
        problems.check(status == -signal.SIGINT, f"ended with {status}: {watcher.noise()[-2000:]}")
    told, there = replayed(problems, rows), lying_there(home.data) - {MARKER}
    problems.check(told == there, f"missing {sorted(there - told)[:9]}, surplus {sorted(told - there)[:9]}")
    check_growth(problems, samples)
    counts = collections.Counter(row["update"] for row in rows)
    problems.check(len(counts) == 3, f"too little was told: {counts}")
    print(f"{edits} changes, told {dict(counts)} in {rows[-1]['batch']} batches")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("--seconds", type=int, default=20)
    parser.add_argument("--seed", type=int, default=random.SystemRandom().randrange(1 << 32))
    arguments = parser.parse_args()
    print(f"seed {arguments.seed}", flush=True)
    problems = Problems()
    with tempfile.TemporaryDirectory(prefix="tessaly-soak-") as folder:
        soak(problems, Home(os.path.realpath(arguments.program), os.path.realpath(folder)), arguments.seconds, arguments.seed)
    return problems.finish()


if __name__ == "__main__":
    sys.exit(main())
