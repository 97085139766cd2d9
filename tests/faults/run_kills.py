#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""run_kills.py TESSALY [SEED [COUNT]]: writes that are killed at random moments.

After each one the note is what it was or what it was to become; what was there before is in the note
or the history; one more start leaves nothing behind. A seed's moments are the same again, though
what the machine does in them is not.
"""

import random
import statistics
import sys
import time

sys.dont_write_bytecode = True

from home import Problems
from killing import kill_often

COUNT = 300
NOTES = ("Plan", "Work", "Other")
MODES = ("append", "prepend", "overwrite")
EXPECTED = {
    "append": lambda old, line: old + line,
    "prepend": lambda old, line: line + old,
    "overwrite": lambda old, line: line,
}


def path_of(note):
    return f"Notes/{note}.txt"


class Killer:
    def __init__(self, home, seed):
        self.home = home
        self.random = random.Random(seed)
        self.problems = Problems()
        self.seen = {"done": 0, "changed": 0, "unchanged": 0, "with something left over": 0}
        for note in NOTES:
            home.write(path_of(note), f"# {note}\n".encode())
        self.life = self.measure()

    def measure(self):
        """How many seconds a write takes from start to end."""
        taken = []
        for index in range(9):
            began = time.monotonic()
            process = self.home.start("add", f"warm {index}", "--to", "Plan")
            self.problems.check(process.wait() == 0, "add fails without being killed")
            taken.append(time.monotonic() - began)
        return statistics.median(taken)

    def kill_one(self, index):
        note, mode = self.random.choice(NOTES), self.random.choice(MODES)
        line = f"* [ ] {mode} {index}\n"
        before = self.home.notes()
        process = self.home.start("add", line, "--to", note, "--mode", mode)
        time.sleep(self.random.uniform(0, 1.1 * self.life))
        process.kill()
        status = process.wait()
        self.check_one(f"write {index}, {mode} to {note}", status, before, note, EXPECTED[mode](before[path_of(note)], line.encode()))

    def check_one(self, where, status, before, note, wanted):
        check, old = self.problems.check, before[path_of(note)]
        after = self.home.notes()
        self.seen["with something left over"] += bool(self.home.leftovers())
        check(after in (before, {**before, path_of(note): wanted}), f"{where}: neither old nor new: {after}")
        check(status in (0, -9), f"{where}: ended with {status}")
        changed = after.get(path_of(note)) == wanted
        check(changed or status != 0, f"{where}: said to be done, but is not")
        check(not changed or self.home.is_kept(old), f"{where}: the old text is not in the history")
        self.seen["done" if status == 0 else "changed" if changed else "unchanged"] += 1

    def finish(self):
        check, before = self.problems.check, self.home.notes()
        ended = self.home.run("today")
        check(ended.returncode == 0, f"a start afterwards: {ended.stderr.decode()}")
        check(self.home.notes() == before, "a start afterwards changes a note")
        check(not self.home.leftovers(), f"a start afterwards leaves {self.home.leftovers()}")
        check(not self.home.torn_texts(), f"torn in the history: {self.home.torn_texts()}")
        ended = self.home.run("history", "Plan")
        check(ended.returncode == 0, f"the history cannot be read: {ended.stderr.decode()}")
        check(self.seen["with something left over"] > 0, "no kill fell into a write; the test says nothing")


if __name__ == "__main__":
    sys.exit(kill_often(Killer, COUNT, "a write"))
