#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""run_faults.py TESSALY LIBRARY [SCENARIO…]: every change of the disk goes wrong once.

Each scenario is run as often as it makes calls that change the disk, times the faults that there are;
LIBRARY (fail_call.cpp) lets call n fail. After each run every note must be its old or its new text
as a whole, and so it must say; nothing may be lost; the next run must make good what was left.
"""

import concurrent.futures
import errno
import os
import sys
import tempfile
from dataclasses import dataclass, field

sys.dont_write_bytecode = True

from home import Home, Problems, copy_folder, failure_lines

PLAN = "Notes/Plan.txt"
OLD = "# Plan\n* [ ] first\n"
SIGKILL = -9
WRITES = {"write", "pwrite", "pwrite64", "copy_file_range"}
INTERRUPTED = WRITES | {"open", "open64", "openat", "openat64", "creat", "fsync", "fdatasync", "ftruncate",
                        "ftruncate64", "flock"}


@dataclass
class Fault:
    how: str
    calls: set = None  # those that it can befall; None: all
    harmless: bool = False  # the program must succeed all the same
    lasting: bool = False  # nothing can be tidied up either


FAULTS = {
    "ENOSPC": Fault(str(errno.ENOSPC)),
    "EIO": Fault(str(errno.EIO)),
    "EACCES": Fault(str(errno.EACCES)),
    "EINTR": Fault(str(errno.EINTR), calls=INTERRUPTED, harmless=True),
    "short write": Fault("short", calls=WRITES, harmless=True),
    "EROFS from then on": Fault(f"{errno.EROFS}+", lasting=True),
    "killed": Fault("kill-after"),  # before the next one is the same, and before the first is nothing
}


@dataclass
class Scenario:
    words: list
    new: dict  # the notes afterwards
    old: dict = field(default_factory=lambda: {PLAN: OLD})
    before: list = field(default_factory=list)  # commands that lead there
    stray: dict = field(default_factory=dict)  # temporary files of a process that died long ago
    environment: dict = field(default_factory=dict)
    trash: bool = True  # the desktop has one
    failures: int = 1  # lines of the log that one fault may lead to


SCENARIOS = {
    "append": Scenario(["add", "* [ ] second", "--to", "Plan"], {PLAN: OLD + "* [ ] second\n"},
                       stray={"Notes/.~Plan.txt.k3k3k3k3~": "# Plan\n* [ ] lost and found\n"}),
    "append, second time": Scenario(["add", "* [ ] third", "--to", "Plan"],
                                    {PLAN: OLD + "* [ ] second\n* [ ] third\n"},
                                    before=[["add", "* [ ] second", "--to", "Plan"]]),
    "append without exchange": Scenario(["add", "* [ ] second", "--to", "Plan"], {PLAN: OLD + "* [ ] second\n"},
                                        environment={"FAIL_PLAIN": "1"}),
    "new day": Scenario(["add", "* [ ] call"], {PLAN: OLD, "Calendar/20191231.txt": "* [ ] call"}),
    "overwrite": Scenario(["add", "# Other\n", "--to", "Plan", "--mode", "overwrite"], {PLAN: "# Other\n"}),
    "new": Scenario(["new", "A title"], {PLAN: OLD, "Notes/A title.txt": "# A title\n"}),
    "restore": Scenario(["history", "restore", "OLD"], {PLAN: OLD},
                        before=[["add", "# Other\n", "--to", "Plan", "--mode", "overwrite"]]),
    "trash": Scenario(["trash", "Plan"], {}, failures=2),
    "trash without a trash": Scenario(["trash", "Plan"], {}, trash=False, failures=2),
}


def as_bytes(files):
    return {name: text.encode() for name, text in files.items()}


class Trial:
    """A scenario's start, and one run after another from there."""

    def __init__(self, program, library, scenario, folder):
        self.problems = Problems()
        # By a link: the loader takes a blank in a path for the end of the path.
        self.library = os.path.join(folder, "fail_call.so")
        os.symlink(library, self.library)
        self.scenario = scenario
        self.told = os.path.join(folder, "told")
        self.live, self.kept = os.path.join(folder, "live"), os.path.join(folder, "kept")
        self.home = Home(program, self.live)
        self.new = as_bytes(scenario.new)
        self.words = scenario.words
        self.prepare()
        copy_folder(self.live, self.kept)

    def prepare(self):
        for name, text in as_bytes({**self.scenario.old, **self.scenario.stray}).items():
            self.home.write(name, text)
        if not self.scenario.trash:
            os.makedirs(os.path.join(self.live, "share"))
            with open(os.path.join(self.live, "share", "Trash"), "w", encoding="utf-8"):
                pass  # a file, where the folder should be
        for words in self.scenario.before:
            ended = self.home.run(*words)
            self.problems.check(ended.returncode == 0, f"{words}: {ended.stderr}")
        self.old = self.home.notes()
        if "OLD" in self.words:
            wanted = as_bytes(self.scenario.old)[PLAN]
            names = [name for name, text in self.home.kept_texts().items() if text == wanted]
            self.problems.check(len(names) == 1, f"the history has the old text {len(names)} times")
            self.words = [names[0] if word == "OLD" and names else word for word in self.words]

    def run(self, call=0, how=""):
        """Runs the command from the start; returns how it ended, and the calls that it made."""
        copy_folder(self.kept, self.live)
        if os.path.exists(self.told):
            os.unlink(self.told)
        ended = self.home.run(*self.words, LD_PRELOAD=self.library, FAIL_CALL=str(call), FAIL_HOW=how,
                              FAIL_TOLD=self.told, **self.scenario.environment)
        with open(self.told, encoding="utf-8") as file:
            return ended, file.read().splitlines()

    def check_lost_nothing(self, where, notes):
        check, home = self.problems.check, self.home
        for name, text in self.old.items():
            safe = notes.get(name) == text or home.is_kept(text) or home.is_trashed(text)
            check(safe, f"{where}: the old text of {name} is nowhere")
        check(not home.torn_texts(), f"{where}: torn in the history: {home.torn_texts()}")
        strays = set(as_bytes(self.scenario.stray).values())
        for text in strays - set(home.files().values()):
            check(home.is_kept(text), f"{where}: what lay in a temporary file is lost")

    def check_outcome(self, where, fault, ended, notes):
        check = self.problems.check
        said = ended.stderr.decode(errors="replace")
        changed, killed = notes == self.new, ended.returncode == SIGKILL
        check(notes in (self.old, self.new), f"{where}: neither old nor new: {notes}")
        check(len(failure_lines(ended)) <= self.scenario.failures, f"{where}: logs more than once: {said}")
        if killed:
            check(fault.how.startswith("kill"), f"{where}: was killed")
            return
        check(ended.returncode in (0, 1), f"{where}: ended with {ended.returncode}: {said}")
        check(ended.returncode == 0 or said.strip(), f"{where}: failed without a word")
        check(ended.returncode == 0 or not fault.harmless, f"{where}: failed: {said}")
        if not fault.lasting:
            check((ended.returncode == 0) == changed, f"{where}: ended with {ended.returncode}, changed: {changed}: {said}")
            check(not set(self.home.leftovers()) - set(self.scenario.stray), f"{where}: left {self.home.leftovers()}")

    def check_retry(self, where, notes):
        """The same again, or another change when it was made: it succeeds and tidies up."""
        check = self.problems.check
        words = ["new", "Elsewhere"] if notes == self.new else self.words
        ended = self.home.run(*words, LD_PRELOAD=self.library)
        check(ended.returncode == 0, f"{where}: {words[0]} fails afterwards: {ended.stderr.decode()}")
        now = {name: text for name, text in self.home.notes().items() if name != "Notes/Elsewhere.txt"}
        check(now == self.new, f"{where}: after a retry there is {now}")
        check(not self.home.leftovers(), f"{where}: after a retry there still is {self.home.leftovers()}")
        self.check_lost_nothing(f"{where}, retried", now)

    def check_fault(self, name, fault, call, told):
        where = f"{name} at call {call}, {told}"
        ended, calls = self.run(call, fault.how)
        same = len(calls) >= call and calls[call - 1].split(" ")[0] == told.split(" ")[0]
        self.problems.check(same, f"{where}: this run did not come to it: {calls}")
        notes = self.home.notes()
        self.check_outcome(where, fault, ended, notes)
        self.check_lost_nothing(where, notes)
        self.check_retry(where, notes)

    def check_faults(self, name, fault):
        ended, calls = self.run()
        if not self.problems.check(ended.returncode == 0 and self.home.notes() == self.new,
                                   f"without a fault: {ended.returncode}, {ended.stderr}, {self.home.notes()}"):
            return len(calls)
        for call, told in enumerate(calls, 1):
            if fault.calls is None or told.split(" ")[0] in fault.calls:
                self.check_fault(name, fault, call, told.replace(self.live + "/", ""))
        return len(calls)


def check(make_trial, program, library, scenario, name, fault):
    """One scenario under one fault, in a process of its own."""
    with tempfile.TemporaryDirectory(prefix="tessaly-faults-") as folder:
        trial = make_trial(program, library, scenario, os.path.realpath(folder))
        calls = trial.check_faults(name, fault)
        return calls, trial.problems


def run_scenarios(make_trial, scenarios, faults):
    """Those that the command line names, or all, under each of the faults; the exit status."""
    program, library = map(os.path.realpath, sys.argv[1:3])
    problems, calls = Problems(), {}
    with concurrent.futures.ProcessPoolExecutor(2) as pool:
        waiting = {pool.submit(check, make_trial, program, library, scenarios[scenario], name, fault): scenario
                   for scenario in sys.argv[3:] or scenarios for name, fault in faults.items()}
        for done in concurrent.futures.as_completed(waiting):
            count, found = done.result()
            calls[waiting[done]] = count
            problems.checks += found.checks
            problems.found += [f"{waiting[done]}: {text}" for text in found.found]
    print("calls that change the disk:", ", ".join(f"{name} {count}" for name, count in sorted(calls.items())))
    return problems.finish()


if __name__ == "__main__":
    sys.exit(run_scenarios(Trial, SCENARIOS, FAULTS))
