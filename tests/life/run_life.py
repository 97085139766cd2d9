#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""run_life.py TESSALY [ROOT] [--seed S] [--tasks N] [--list-every K]: tasks live, and are brought back to life.

In a copy of ROOT, or in a data folder of its own, N random operations are carried out. After each one
every note must read as the rules of model.py say, and git must see no other file changed. Then all is
undone, and after each step the folder must be what it was before, byte for byte.
"""

import argparse
import dataclasses
import datetime
import json
import os
import random
import shutil
import sys
import tempfile
import time

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.realpath(__file__)), "..", "faults"))

import lines as rules
from git_folder import Git
from home import Home, Problems
from model import Failed, Model, Refused
from planner import make_planner
from plans import Plans

START = datetime.datetime(2019, 12, 31, 8, 0)


class Life(Plans):
    def __init__(self, home, seed, list_every):
        self.home = home
        self.random = random.Random(seed)
        self.problems = Problems()
        self.list_every = list_every
        self.settings = self.choose_settings(seed)
        home.locale = self.random.choice(("en_US.UTF-8", "de_DE.UTF-8"))
        self.settings.hasTwelveHours = home.locale.startswith("en_US")
        print(self.settings, flush=True)
        self.git = Git(home.data)
        self.start = {}  # path: bytes at the start, None for none, of all files that were ever changed
        self.now = {}  # the same as they must be now
        self.snapshots = []  # of `now`, before each operation that can be undone
        self.recent = []  # paths of notes that were changed
        self.time = START
        self.seen = {}
        self.tasks_by_note = {}

    def choose_settings(self, seed):
        """The defaults for the first seed, others for others."""
        settings = rules.Settings()
        for field in dataclasses.fields(settings) if seed > 1 else ():
            if field.name.startswith("is") and self.random.random() < 0.3:
                setattr(settings, field.name, not field.default)
                ended = self.home.run("settings", "set", field.name, "off" if field.default else "on")
                self.problems.check(ended.returncode == 0, f"settings: {ended.stderr.decode()}")
        return settings

    def list_tasks(self):
        """All tasks, as the program names them, by note."""
        ended = self.home.run("tasks", "--json")
        self.problems.check(ended.returncode == 0, f"tasks: {ended.stderr.decode()}")
        self.tasks_by_note = {}
        for row in ended.stdout.splitlines():
            note = row[12:row.index(b'","type"')].rpartition(b":")[0]
            self.tasks_by_note.setdefault(note, []).append(row)
        self.notes = sorted(self.tasks_by_note)

    def model(self):
        return Model(self.home.data, self.settings)

    def expected(self, steps):
        """What becomes of the notes, and whether something is refused."""
        model, refused = self.model(), False
        for method, arguments in steps:
            try:
                getattr(model, method)(*arguments)
            except Refused:
                refused = True
            except Failed:
                return self.model(), True
        return model, refused

    def step(self, number):
        self.time += datetime.timedelta(minutes=7)
        self.home.now = self.time.isoformat()
        if not self.tasks_by_note or number % self.list_every == 0:
            self.list_tasks()
        if self.snapshots and self.random.random() < 0.1:
            self.undo(1)
            return
        plan = None
        while plan is None:
            plan = self.random.choice(self.PLANS)(self)
            plan = plan if plan and plan[1] else None
        self.operate(f"operation {number}", *plan)

    def operate(self, where, words, steps):
        model, refused = self.expected(steps)
        changed = model.changed
        old = {path: self.model().read(path) for path in changed}
        self.start.update({path: text for path, text in old.items() if path not in self.start})
        where = f"{where}, {' '.join(words)}"
        if self.random.random() < 0.2:
            ended = self.home.run(*words, "--dry-run")
            self.problems.check(self.is_as({**self.now, **old}, f"{where}, dry"), f"{where}: --dry-run says {ended}")
        ended = self.home.run(*words, "--json")
        said = ended.stdout.decode() + ended.stderr.decode()
        if not self.is_as({**self.now, **changed}, where):
            self.problems.check(False, f"{where}: said {said}")
        self.problems.check(ended.returncode == (1 if refused else 0), f"{where}: ended with {ended.returncode}: {said}")
        self.problems.check(not refused or ended.stderr.strip(), f"{where}: refused without a word")
        self.check_rows(where, ended.stdout)
        self.count(words[0] if "--delete" not in words else "delete", changed != old)
        if changed != old:
            self.snapshots.append({**self.now, **old})
            self.recent = (self.recent + [path.encode() for path in changed if changed[path] != old[path]])[-8:]
        self.now.update(changed)
        if model.unlinked:
            self.undo_unlinked(where, model, old)

    def undo_unlinked(self, where, model, old):
        """Copies without a link stay when their scheduling is undone; then they are taken away by hand."""
        del self.snapshots[-1:]
        self.run_undo(1, in_part=True)
        left = self.model()
        left.changed = dict(old)
        for copy in model.unlinked:
            left.append(*copy)
        self.is_as({**self.now, **left.changed}, f"{where}, undone but for its copies")
        for path, text in old.items():
            file = os.path.join(self.home.data, path)
            if text is not None:
                self.home.write(path, text)
            elif os.path.exists(file):
                os.unlink(file)
        self.now.update(old)

    def count(self, verb, has_changed):
        key = verb if has_changed else f"{verb} without a change"
        self.seen[key] = self.seen.get(key, 0) + 1

    def check_rows(self, where, output):
        """Where a line is said to stand now, it stands."""
        for row in map(json.loads, output.splitlines()):
            if row["did"] in ("removedCopy", "leftCopy", "deleted", "nothingToArchive"):
                continue
            note = self.model().note(f"{row['type']}/{row['filename']}").lines
            stands = row["line"] <= len(note) and note[row["line"] - 1][0] == row["text"]
            self.problems.check(stands, f"{where}: does not stand there: {row}")

    def is_as(self, wanted, where):
        """Whether the folder is at its start but for `wanted`; tells what is not."""
        differing = {path for path, text in wanted.items() if text != self.start[path]}
        changed = self.git.changed()
        is_same = self.problems.check(changed == differing, f"{where}: changed otherwise: {sorted(changed ^ differing)}")
        for path, text in wanted.items():
            file = os.path.join(self.home.data, path)
            there = open(file, "rb").read() if os.path.exists(file) else None
            is_same &= self.problems.check(there == text, f"{where}: {path} {difference(there, text)}")
        return is_same

    def undo(self, count):
        wanted = self.snapshots[-count]
        wanted = {**{path: self.start[path] for path in self.now}, **wanted}
        self.run_undo(count)
        self.is_as(wanted, f"undo, {len(self.snapshots)} to go")
        self.now = wanted
        del self.snapshots[-count:]

    def run_undo(self, count, in_part=False):
        ended = self.home.run("undo", *([str(count)] if count > 1 else []))
        self.problems.check(ended.returncode == int(in_part), f"undo: {ended.stdout.decode()}{ended.stderr.decode()}")
        self.seen["undo"] = self.seen.get("undo", 0) + 1

    def live(self, count):
        for number in range(count):
            self.step(number)
            if self.problems.found:
                return  # what follows from a fault tells nothing
        while self.snapshots and not self.problems.found:
            self.undo(min(len(self.snapshots), self.random.choice((1, 1, 1, 2, 3))))
        self.finish()

    def finish(self):
        check = self.problems.check
        check(self.git.run("status", "--porcelain") == b"", "git status is not empty at the end")
        check(self.git.run("diff") == b"", "git diff is not empty at the end")
        check(self.home.run("undo").returncode == 1, "undo has still something to undo")
        check(self.seen.get("undo", 0) > 0 and len(self.seen) > 4, f"too little was tried: {self.seen}")


def difference(there, wanted):
    """The first line in which two texts differ."""
    if there is None or wanted is None:
        return f"is {there!r:.300}, not {wanted!r:.300}"
    pairs = zip(there.split(b"\n") + [None], wanted.split(b"\n") + [None])
    for number, (is_there, is_wanted) in enumerate(pairs, 1):
        if is_there != is_wanted:
            return f"line {number} is {is_there!r:.400}, not {is_wanted!r:.400}"
    return "is the same"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("root", nargs="?")
    parser.add_argument("--seed", type=int, default=random.SystemRandom().randrange(1 << 32))
    parser.add_argument("--tasks", type=int, default=50)
    parser.add_argument("--list-every", type=int, default=1, help="for large folders: lists the tasks only now and then")
    arguments = parser.parse_args()
    print(f"seed {arguments.seed}", flush=True)
    with tempfile.TemporaryDirectory(prefix="tessaly-life-") as folder:
        folder = os.path.realpath(folder)
        data = os.path.join(folder, "planner")
        if arguments.root:
            shutil.copytree(arguments.root, data, symlinks=True)
        else:
            make_planner(data, random.Random(arguments.seed))
        began = time.monotonic()
        life = Life(Home(os.path.realpath(arguments.program), folder), arguments.seed, arguments.list_every)
        life.live(arguments.tasks)
        print(", ".join(f"{number} {what}" for what, number in sorted(life.seen.items())))
        print(f"{time.monotonic() - began:.1f} s")
    return life.problems.finish()


if __name__ == "__main__":
    sys.exit(main())
