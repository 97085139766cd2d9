#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""run_syncthing.py TESSALY: notes are edited on two devices that Syncthing keeps in step, with us on both.

Whoever resolves a conflict, and where: both devices end with the same notes and no conflict, and every line
that was ever written is in a note or in a history.
"""

import os
import shutil
import sys
import tempfile

sys.dont_write_bytecode = True
HERE = os.path.dirname(os.path.realpath(__file__))
sys.path[1:1] = [os.path.join(HERE, "..", folder) for folder in ("faults", "watch")]

from home import Problems
from pair import Pair, note_of

KEPT_HERE, KEPT_OTHER = "Calendar/20190305.txt", "Notes/Garden/Plan.txt"
MERGED, NEW_DAY = "Notes/To do.txt", "Calendar/20190306.txt"
DELETED, RENAMED, NEW_NAME = "Notes/Deleted.txt", "Notes/Renamed.txt", "Notes/New name.txt"
TWICE, BOTH_KEEP, BOTH_MERGE = "Notes/Twice.txt", "Notes/Both keep.txt", "Notes/Both merge.txt"
BASE = "# Head\n* [ ] call Anna\n* [ ] water the plants\nend\n"
START = (KEPT_HERE, KEPT_OTHER, MERGED, DELETED, RENAMED, TWICE, BOTH_KEEP, BOTH_MERGE)
IN_CONFLICT = {KEPT_HERE, KEPT_OTHER, MERGED, NEW_DAY, TWICE, BOTH_KEEP, BOTH_MERGE}


class Story:
    """What happens on the devices A and B, in this order."""

    def __init__(self, pair, problems):
        self.pair, self.check = pair, problems.check
        self.a, self.b = pair.devices

    def tell(self):
        self.begin()
        self.part()
        self.check_conflicts()
        self.resolve_one_by_one()
        self.part_again()
        self.resolve_rest()
        self.check_end()

    def begin(self):
        for name in START:
            self.a.put(name, f"{BASE}this is {name}\n")
        self.pair.send()
        self.pair.settle(lambda texts: texts.keys() == set(START), "the notes are on both devices")
        for device in self.pair.devices:
            self.await_told(device, set(START), lambda row: not row["hasConflicts"])

    def await_told(self, device, names, holds):
        """Waits for a record of each of the notes."""
        told = lambda rows: names <= {row["path"] for row in rows if holds(row)}
        self.check(device.watcher.wait_for(told), f"{device.name} is not told of all of {sorted(names)}")

    @staticmethod
    def insert(device, name, line, before="end"):
        device.put(name, device.text(name).replace(before, f"{line}\n{before}", 1))

    def part(self):
        """Both go on alone; what they wrote meets when they are connected again."""
        self.pair.disconnect()
        for name in (KEPT_HERE, TWICE, BOTH_KEEP):
            self.insert(self.a, name, f"from A: {name}")
            self.insert(self.b, name, f"from B: {name}", before="* [ ] water")
        for device in (self.b, self.a):  # the earlier one is set aside
            for name in (KEPT_OTHER, MERGED, BOTH_MERGE):
                self.insert(device, name, f"* [ ] only {device.name}: {name}", before="end" if device is self.a else "* [ ] water")
            device.put(NEW_DAY, f"* [ ] on both\nonly {device.name}\n")
        self.b.put(MERGED, self.b.text(MERGED).replace("call Anna", "call Anna #phone"))
        self.a.do("done", f"{MERGED}:2")
        os.unlink(self.a.path(DELETED))
        os.rename(self.a.path(RENAMED), self.a.path(NEW_NAME))
        for name in (DELETED, RENAMED):
            self.insert(self.b, name, "edited on B")
        self.pair.connect()
        self.pair.settle(self.have_copies({name: 1 for name in IN_CONFLICT}), "there is a copy of each version")

    @staticmethod
    def have_copies(counts):
        """Whether the copies are those wanted: their number by note."""
        def holds(texts):
            copies = [note_of(path) for path in texts if note_of(path)]
            return {name: copies.count(name) for name in copies} == counts
        return holds

    def check_conflicts(self):
        for device in self.pair.devices:
            self.await_told(device, IN_CONFLICT, lambda row: row["hasConflicts"])
            found = self.listed(device)
            self.check(found == {name: 2 for name in IN_CONFLICT}, f"{device.name} lists conflicts {found}")
            self.check("edited on B" in (device.text(DELETED) or ""), f"{device.name}: deleted, although edited")
            self.check("edited on B" in (device.text(RENAMED) or ""), f"{device.name}: renamed, although edited")
            self.check(f"this is {RENAMED}" in (device.text(NEW_NAME) or ""), f"{device.name}: {NEW_NAME} is not there")
            self.check_copies_are_no_notes(device)

    def check_copies_are_no_notes(self, device):
        rows = device.records("list", "--all") + device.watcher.records()
        wrong = [row for row in rows if "sync-conflict" in str(row)]
        wrong += [row for row in device.records("doctor") if row["what"] == "stray"]
        self.check(not wrong, f"{device.name}: copies are taken for notes: {wrong}")
        noise = device.watcher.noise()
        self.check("invalid calendar" not in noise, f"{device.name}: {noise}")

    @staticmethod
    def listed(device):
        """The number of versions by note, as `tessaly conflicts` tells."""
        found = {}
        for row in device.records("conflicts"):
            name = os.path.relpath(row["path"], device.data)
            found[name] = found.get(name, 0) + 1
        return found

    def resolve_one_by_one(self):
        """Each on one device; the result comes to the other one."""
        kept = self.a.text(KEPT_HERE)
        chosen = self.b.text(self.b.copies(KEPT_OTHER)[0])
        self.a.do("resolve", KEPT_HERE, "--keep", "1")
        self.b.do("resolve", KEPT_OTHER, "--keep", "2")
        self.b.do("resolve", MERGED, "--merge")
        self.a.do("resolve", NEW_DAY, "--merge")
        self.pair.send()
        self.pair.settle(self.have_copies({name: 1 for name in (TWICE, BOTH_KEEP, BOTH_MERGE)}), "four are resolved on both")
        self.check(self.b.text(KEPT_HERE) == kept, f"{KEPT_HERE} holds {self.b.text(KEPT_HERE)!r}")
        self.check(self.a.text(KEPT_OTHER) == chosen, f"{KEPT_OTHER} holds {self.a.text(KEPT_OTHER)!r}")
        lines = sorted(self.b.text(NEW_DAY).splitlines())
        self.check(lines == ["* [ ] on both", "only A", "only B"], f"{NEW_DAY} is merged to {lines}")
        self.check_merged(self.a.text(MERGED).splitlines())

    def check_merged(self, lines):
        """What either has added is there once; the tick and the tag have come to one task."""
        tasks = [line for line in lines if "call Anna" in line]
        parts = ("* [x] call Anna ", " #phone", " @done(")
        self.check(len(tasks) == 1 and all(part in tasks[0] for part in parts), f"{MERGED}: the task is {tasks}")
        wanted = ["# Head", tasks[0], f"* [ ] only B: {MERGED}", "* [ ] water the plants", f"* [ ] only A: {MERGED}", "end",
                  f"this is {MERGED}"]
        self.check(lines == wanted, f"{MERGED} is merged to {lines}")

    def part_again(self):
        """A note that is in conflict comes into another one; two conflicts are resolved on both devices, otherwise."""
        self.pair.disconnect()
        for device in self.pair.devices:
            self.insert(device, TWICE, f"{device.name} once more", before="* [ ] water")
        self.a.do("resolve", BOTH_KEEP, "--keep", "1")
        self.b.do("resolve", BOTH_KEEP, "--keep", "2")
        self.a.do("resolve", BOTH_MERGE, "--merge")
        self.b.do("resolve", BOTH_MERGE, "--keep", "2")
        self.pair.connect()
        self.pair.settle(self.have_copies({TWICE: 2, BOTH_MERGE: 1}), "there are three versions of one note, two of another")
        for device in self.pair.devices:
            found = self.listed(device)
            self.check(found == {TWICE: 3, BOTH_MERGE: 2}, f"{device.name} lists conflicts {found}")

    def resolve_rest(self):
        self.b.do("resolve", TWICE, "--merge")
        self.a.do("resolve", BOTH_MERGE, "--merge")
        self.pair.send()
        self.pair.settle(self.have_copies({}), "all is resolved on both")
        for note in (TWICE, BOTH_MERGE):
            lines = self.a.text(note).splitlines()
            self.check(len(lines) == len(set(lines)), f"{note}: merged to {lines}")
        added = {f"from A: {TWICE}", f"from B: {TWICE}", "A once more", "B once more"}
        self.check(added <= set(self.a.text(TWICE).splitlines()), f"{TWICE}: merged to {self.a.text(TWICE)!r}")

    def check_end(self):
        lost = self.pair.lost_lines()
        self.check(not lost, f"lines are lost: {lost}")
        for device in self.pair.devices:
            self.check(not self.listed(device), f"{device.name} still has conflicts: {self.listed(device)}")
            self.check(not device.leftovers(), f"{device.name}: left {device.leftovers()}")
            self.check(not device.torn_texts(), f"{device.name}: torn {device.torn_texts()}")
            self.check_copies_are_no_notes(device)


def main():
    if not shutil.which("syncthing"):
        return 77
    problems = Problems()
    with tempfile.TemporaryDirectory(prefix="tessaly syncthing ") as folder:
        with Pair(os.path.realpath(sys.argv[1]), os.path.realpath(folder)) as pair:
            Story(pair, problems).tell()
            if problems.found:
                print(pair.picture())
    return problems.finish()


if __name__ == "__main__":
    sys.exit(main())
