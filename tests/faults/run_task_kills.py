#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""run_task_kills.py TESSALY [SEED [COUNT]]: schedulings and their undoing, killed at random moments.

After each one no task is marked whose copy is not there; after the next start the operation is made or
not, as a whole, and can be undone. A seed's moments are the same again, though what the machine does in
them is not.
"""

import os
import random
import statistics
import sys
import tempfile
import time

sys.dont_write_bytecode = True

from home import Home, Problems

COUNT = 200
TASKS = 12
SOURCES = {"Calendar/20191230.txt": " <2019-12-30", "Notes/Plan.txt": ""}  # and how their copies end
DAYS = ("2020-01-02", "2020-01-03", "2020-01-04")


def path_of(day):
    return f"Calendar/{day.replace('-', '')}.txt"


class Killer:
    def __init__(self, home, seed):
        self.home = home
        self.random = random.Random(seed)
        self.problems = Problems()
        self.undoable = []  # the notes before each operation
        self.seen = {"done": 0, "made": 0, "not made": 0, "half made": 0}
        for source in SOURCES:
            lines = [f"* [ ] {source[:5]} task {index:02}\n" for index in range(TASKS)]
            home.write(source, "".join(lines).encode())
        self.life = self.measure()

    def measure(self):
        """How many seconds a scheduling takes."""
        taken = []
        for _ in range(5):
            began = time.monotonic()
            ended = self.home.run("schedule", f"{next(iter(SOURCES))}:1", DAYS[0])
            taken.append(time.monotonic() - began)
            self.problems.check(ended.returncode == 0, f"schedule fails: {ended.stderr.decode()}")
            self.problems.check(self.home.run("undo").returncode == 0, "undo fails")
        return statistics.median(taken)

    def choose(self, notes):
        """The words of an operation, and the notes afterwards."""
        open_lines = [(source, index) for source in SOURCES
                      for index, line in enumerate(notes[source].split(b"\n")) if line.startswith(b"* [ ]")]
        if self.undoable and (not open_lines or self.random.random() < 0.4):
            return ["undo"], self.undoable[-1]
        (source, index), day = self.random.choice(open_lines), self.random.choice(DAYS)
        lines = notes[source].decode().split("\n")
        copy = lines[index].replace("* [ ] ", "* ") + SOURCES[source]
        lines[index] = lines[index].replace("[ ]", "[>]") + f" >{day}"
        there = notes.get(path_of(day), b"").decode()
        ended = there.endswith("\n") or not there
        there += copy + ("\n" if ended and there else "") if ended else "\n" + copy
        return ["schedule", f"{source}:{index + 1}", day], {
            **notes, source: "\n".join(lines).encode(), path_of(day): there.encode()}

    def kill_one(self, number):
        before = self.home.notes()
        words, wanted = self.choose(before)
        process = self.home.start(*words)
        time.sleep(self.random.uniform(0, 1.1 * self.life))
        process.kill()
        status = process.wait()
        where = f"kill {number}, {' '.join(words)}"
        self.problems.check(status in (0, -9), f"{where}: ended with {status}")
        half = self.home.notes()
        self.check_copies(where, half)
        ended = self.home.run("today")
        self.problems.check(ended.returncode == 0, f"{where}: a start afterwards: {ended.stderr.decode()}")
        after = self.home.notes()
        self.problems.check(after in (before, wanted), f"{where}: neither made nor not: {after}, not {wanted}")
        self.problems.check(after == wanted or status != 0, f"{where}: said to be done, but is not")
        self.problems.check(not self.home.leftovers(), f"{where}: left {self.home.leftovers()}")
        if after == wanted:
            self.undoable = self.undoable[:-1] if words == ["undo"] else [*self.undoable, before]
        self.seen["half made"] += half not in (before, wanted)
        self.seen["done" if status == 0 else "made" if after == wanted else "not made"] += 1

    def check_copies(self, where, notes):
        days = [line for day in DAYS for line in notes.get(path_of(day), b"").decode().splitlines()]
        for source, link in SOURCES.items():
            for line in notes[source].decode().splitlines():
                if line.startswith("* [>] "):
                    copies = days.count("* " + line[6:line.index(" >")] + link)
                    self.problems.check(copies == 1, f"{where}: {line} has {copies} copies: {days}")

    def finish(self):
        self.problems.check(self.seen["made"] > 0 and self.seen["not made"] > 0, "the kills came too late or early")
        self.problems.check(not self.home.torn_texts(), f"torn in the history: {self.home.torn_texts()}")
        for wanted in reversed(self.undoable):
            ended = self.home.run("undo")
            self.problems.check(ended.returncode == 0 and self.home.notes() == wanted,
                                f"undone at the end: {ended.stderr.decode()} {self.home.notes()}, not {wanted}")


def main():
    seed = int(sys.argv[2]) if len(sys.argv) > 2 else random.SystemRandom().randrange(1 << 32)
    count = int(sys.argv[3]) if len(sys.argv) > 3 else COUNT
    print(f"seed {seed}", flush=True)
    with tempfile.TemporaryDirectory(prefix="tessaly-kills-") as folder:
        killer = Killer(Home(os.path.realpath(sys.argv[1]), os.path.realpath(folder)), seed)
        for number in range(count):
            killer.kill_one(number)
        killer.finish()
    told = ", ".join(f"{number} {outcome}" for outcome, number in killer.seen.items())
    print(f"a scheduling takes {killer.life * 1e3:.0f} ms; of {count}: {told}")
    return killer.problems.finish()


if __name__ == "__main__":
    sys.exit(main())
