#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""run_task_faults.py TESSALY LIBRARY [SCENARIO…]: operations over several notes, whose every step goes wrong once.

As run_faults.py, but what must be old or new as a whole are all notes together. A process that was
killed, or that could not tidy up, may leave the operation half made, its steps in their order: then the
next start makes it whole.
"""

import os
import sys
from dataclasses import dataclass, field

sys.dont_write_bytecode = True

from home import failure_lines
from run_faults import FAULTS, SIGKILL, Scenario, Trial, run_scenarios

TUESDAY, THURSDAY, FRIDAY = (f"Calendar/{name}.txt" for name in ("20191231", "20200102", "20200103"))
PLAN = "Notes/Plan.txt"
DONE = "@done(2019-12-31 12:00 PM)"
START = {TUESDAY: "# Tuesday\n* [ ] call Bob\nend\n"}
MARKED = {TUESDAY: "# Tuesday\n* [>] call Bob >2020-01-03\nend\n"}
COPY = "* call Bob <2019-12-31"
CALL = f"{TUESDAY}:2"
TO_FRIDAY = ["schedule", CALL, "2020-01-03"]
TO_THURSDAY = ["schedule", CALL, "2020-01-02"]


@dataclass
class Operation(Scenario):
    old: dict = field(default_factory=lambda: START)
    order: list = field(default_factory=list)  # in which the notes are written

    @property
    def is_undo(self):
        return self.words[0] == "undo"


SCENARIOS = {
    "done": Operation(["done", CALL], {TUESDAY: f"# Tuesday\n* [x] call Bob {DONE}\nend\n"}, order=[TUESDAY]),
    "schedule to a new day": Operation(TO_FRIDAY, {**MARKED, FRIDAY: COPY}, order=[FRIDAY, TUESDAY]),
    "schedule to a day": Operation(
        TO_FRIDAY, {TUESDAY: "\r\n* [>] call Bob >2020-01-03\r\n", FRIDAY: f"# Friday\n{COPY}"},
        old={TUESDAY: "\r\n* [ ] call Bob\r\n", FRIDAY: "# Friday"}, order=[FRIDAY, TUESDAY]),
    "schedule without exchange": Operation(
        TO_FRIDAY, {**MARKED, FRIDAY: f"# Friday\n{COPY}\n"}, old={**START, FRIDAY: "# Friday\n"},
        order=[FRIDAY, TUESDAY], environment={"FAIL_PLAIN": "1"}),
    "schedule again": Operation(TO_FRIDAY, {**MARKED, THURSDAY: "# Thursday\n", FRIDAY: COPY},
                                old={**START, THURSDAY: "# Thursday\n"}, before=[TO_THURSDAY],
                                order=[FRIDAY, TUESDAY, THURSDAY]),
    "repeat": Operation(
        ["repeat", CALL, "--every", "day", "--times", "3"],
        {**START, "Calendar/20200101.txt": "* [ ] call Bob @repeat(1/3)",
         THURSDAY: "# Thursday\n* [ ] call Bob @repeat(2/3)\n", FRIDAY: "* [ ] call Bob @repeat(3/3)"},
        old={**START, THURSDAY: "# Thursday\n"}, order=["Calendar/20200101.txt", THURSDAY, FRIDAY]),
    "undo schedule": Operation(["undo"], START, before=[TO_FRIDAY], order=[TUESDAY, FRIDAY]),
}
# Each has calls in an order that no other has: notes that are made, replaced and removed, from an empty
# state folder and a used one, exchanged or not. What other operations call is among them.
# The other faults befall a single note in run_faults.py; what an operation makes of them is the same.
USED_FAULTS = ("EIO", "EINTR", "EROFS from then on", "killed")


class OperationTrial(Trial):
    half_made = 0  # times

    def check_faults(self, name, fault):
        calls = super().check_faults(name, fault)
        was_possible = name == "killed" and len(self.scenario.order) > 1
        self.problems.check(self.half_made > 0 or not was_possible, f"{name}: never half made; it says nothing")
        return calls

    def is_whole(self, notes):
        return notes in (self.old, self.new)

    def is_in_order(self, notes):
        """Whether the first so many notes are new, and the others old."""
        states = [{**self.old, **{name: self.new.get(name) for name in self.scenario.order[:count]}}
                  for count in range(len(self.scenario.order) + 1)]
        return notes in [{name: text for name, text in state.items() if text is not None} for state in states]

    def pending(self):
        return [os.path.join(folder, "pending") for folder, _, names in os.walk(self.home.state) if "pending" in names]

    def check_outcome(self, where, fault, ended, notes):
        check, killed = self.problems.check, ended.returncode == SIGKILL
        said = ended.stderr.decode(errors="replace")
        self.half_made += not self.is_whole(notes)
        check(self.is_in_order(notes), f"{where}: neither old nor new, nor made in order: {notes}")
        check(killed == (fault.how.startswith("kill")), f"{where}: ended with {ended.returncode}: {said}")
        if killed:
            return
        check(ended.returncode in (0, 1), f"{where}: ended with {ended.returncode}: {said}")
        check(ended.returncode == 0 or said.strip(), f"{where}: failed without a word")
        check(len(failure_lines(ended)) <= self.scenario.failures, f"{where}: logs more than once: {said}")
        check(ended.returncode == 0 or not fault.harmless, f"{where}: failed: {said}")
        check(ended.returncode != 0 or notes == self.new, f"{where}: said to be done: {notes}")
        if not fault.lasting:
            check(self.is_whole(notes), f"{where}: half made: {notes}: {said}")
            check((ended.returncode == 0) == (notes == self.new), f"{where}: changed, but failed: {said}")
            check(not self.home.leftovers(), f"{where}: left {self.home.leftovers()}")

    def run_on(self, where, *words, status=0):
        """Another command, after which the notes are whole and nothing is left over."""
        check = self.problems.check
        ended = self.home.run(*words)
        where = f"{where}, then {words[0]}"
        check(ended.returncode == status, f"{where}: ended with {ended.returncode}: {ended.stderr.decode()}")
        notes = self.home.notes()
        check(self.is_whole(notes), f"{where}: {notes}")
        check(not self.home.leftovers() and not self.pending(), f"{where}: left {self.home.leftovers()}, {self.pending()}")
        self.check_lost_nothing(where, notes)
        return notes

    def check_retry(self, where, notes):
        check = self.problems.check
        if self.run_on(where, "today") == self.old:
            where += ", nothing done"
            check(self.run_on(where, *self.words) == self.new, f"{where}, then again: not made")
        if self.scenario.is_undo:
            check(self.run_on(where, "undo", status=1) == self.new, f"{where}: undone twice")
        else:
            check(self.run_on(where, "undo") == self.old, f"{where}: not as before: {self.home.notes()}")


if __name__ == "__main__":
    sys.exit(run_scenarios(OperationTrial, SCENARIOS, {name: FAULTS[name] for name in USED_FAULTS}))
