# SPDX-License-Identifier: MIT
"""What is to be done next, at random."""

import datetime
import json

import lines as rules
from model import day_of

UNITS = ("day", "week", "month", "quarter", "year")
LONGEST = 20000  # bytes of a line that an operation must be able to change
FAVOURITE = 0.25  # how often a task is one of the last that were changed


def address(at):
    return f"{at[0]}:{at[1] + 1}"


class Plans:
    """Of one life: its `random`, `problems`, `time`, and the tasks as the program lists them."""

    def pick(self, *states):
        """A random task in one of these states: (path, index), or None."""
        for _ in range(60):
            recent = [note for note in self.recent if note in self.tasks_by_note]
            note = self.random.choice(recent if recent and self.random.random() < FAVOURITE else self.notes)
            row = json.loads(self.random.choice(self.tasks_by_note[note]))
            found = self.found(row)
            if found and (not states or row["todo"]["type"] in states):
                return found
        return None

    def found(self, row):
        """Where the listed task stands; None when the list is older than the note."""
        path, index = f"{row['type']}/{row['filename']}", row["todo"]["lineIndex"]
        model = self.model()
        if "\ufffd" in path or model.read(path) is None or len(row["todo"]["base"].encode()) > LONGEST:
            return None
        note = model.note(path).lines
        if index >= len(note) or note[index][0] != row["todo"]["base"].removesuffix("\r"):
            self.problems.check(self.list_every > 1, f"tasks lists what is not there: {row}")
            return None
        state = model.state(note[index][0])
        self.problems.check(state == row["todo"]["type"], f"tasks says {row['todo']['type']}, not {state}: {row}")
        return path, index

    def pick_several(self, *states):
        most = 1 if self.random.random() < 0.7 else 4
        picked = {self.pick(*states) for _ in range(self.random.randint(1, most))}
        return sorted(picked - {None})

    def pick_day(self, path, index):
        """A day to schedule to: its own, the same again, one with a note, or any."""
        line = self.model().line(path, index)
        known = [day_of(path), rules.day_of_schedule(line)]
        days = [day_of(note.decode()) for note in self.random.choices(self.notes, k=8)]
        near = self.time.date() + datetime.timedelta(days=self.random.randint(-20, 60))
        choices = [near, near, *filter(None, known), *filter(None, days)]
        return self.random.choice(choices)

    # What is done: each returns the words, and what the model makes of it as (method, arguments) by line.

    def plan_done(self):
        picked = self.pick_several()
        return ["done", *map(address, picked)], [("done", (*at, self.time)) for at in picked]

    def plan_cancel(self):
        picked = self.pick_several()
        return ["cancel", *map(address, picked)], [("cancel", at) for at in picked]

    def plan_reopen(self):
        picked = self.pick_several("done", "cancelled", "open") if self.random.random() < 0.5 else [self.pick("scheduled")]
        picked = [at for at in picked if at]
        return ["reopen", *map(address, picked)], [("reopen", at) for at in picked]

    def plan_schedule(self):
        picked = self.pick_several("open", "open", "done") if self.random.random() < 0.6 else [self.pick("scheduled", "open")]
        picked = [at for at in picked if at]
        if not picked:
            return None
        day = self.pick_day(*self.random.choice(picked))
        return ["schedule", *map(address, picked), str(day)], [("schedule", (*at, day)) for at in picked]

    def plan_schedule_all(self):
        at = self.pick("open")
        if not at or not day_of(at[0]):
            return None
        model, day = self.model(), self.pick_day(*at)
        lines = model.note(at[0]).lines
        picked = [index for index, (line, _) in enumerate(lines) if model.state(line) == "open"]
        if any(len(line.encode()) > LONGEST for line, _ in lines):
            return None
        return ["schedule", at[0], str(day)], [("schedule", (at[0], index, day)) for index in picked]

    def plan_repeat(self):
        at = self.pick()
        if not at:
            return None
        unit, count = self.random.choice(UNITS), self.random.randint(1, 5)
        words = ["repeat", address(at), "--every", unit, "--times", str(count)]
        return words, [("repeat", (*at, unit, count))]

    def plan_delete(self):
        at = self.pick()
        if not at or (not day_of(at[0]) and rules.repeat_of(self.model().line(*at))):
            return None
        later = sorted(note.decode() for note in self.notes if day_of(note.decode()))
        return ["repeat", address(at), "--delete", "--yes"], [("delete", (*at, later))]

    def plan_archive(self):
        at = self.pick("done", "cancelled")
        ends = {end for _, end in self.model().note(at[0]).lines[:-1]} if at else set()
        if not at or len(ends) > 1:  # which of the two moves along is nobody's concern
            return None
        return ["archive", at[0]], [("archive", (at[0],))]

    PLANS = [plan_done, plan_done, plan_cancel, plan_reopen, plan_reopen, plan_schedule, plan_schedule, plan_schedule,
             plan_schedule_all, plan_repeat, plan_delete, plan_archive]
