#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""run_saves.py TESSALY [CASE...]: what others do with the files is told once, and as what it was.

Each case has a data folder and a watcher of its own. One that tells nothing is told from one that is late
by a marker, another note that is changed afterwards.
"""

import concurrent.futures
import datetime
import os
import shutil
import signal
import sys
import tempfile
import urllib.parse

sys.dont_write_bytecode = True
HERE = os.path.dirname(os.path.realpath(__file__))
sys.path[1:1] = [os.path.join(HERE, "..", "faults"), os.path.join(HERE, "..", "life")]

import ways
from git_folder import Git
from home import Home, Problems
from watcher import Watcher, write

KINDS = {"Notes": "note", "Calendar": "calendar", ".Trash": "trash"}
LATE = 15  # seconds, after which a case that is not told has failed
AT_A_TIME = 8  # a watcher mostly waits
TEXT = "# Alpha\n* [ ] call #home @anna\n"
OTHER = "# Alpha\n* [x] call #home @bob\n* [ ] more\n"
COPY = "Notes/Alpha (conflicted copy 2019-03-05 101112).txt"
STRAY = "* [ ] from elsewhere\n"
FINISHED = "* [x] water @repeat(2/2) @done(2019-03-05 10:00)\n"
FOLDER = {"Notes/f/": None, "Notes/f/one.txt": "1", "Notes/f/g/": None, "Notes/f/g/two.md": "2"}
START = {"Notes/Alpha.txt": TEXT, "Notes/other/": None, "Calendar/20190305.txt": "* [ ] day\n", "outside/": None}


class Case:
    """A way to change files below `planner`, and the records that it must give."""

    def __init__(self, name, act, *told, start=None, after=None, batches=1):
        self.name, self._act, self._told, self._after, self._batches = name, act, set(told), after, batches
        self._start = {**START, **(start or {})}

    def run(self, program, folder):
        problems = Problems()
        home = Home(program, folder)
        place = Place(home)
        for name, text in self._start.items():
            place.make(name, text)
        prepared = self._act.prepare(place) if hasattr(self._act, "prepare") else None
        with Watcher(home) as watcher:
            watcher.wait_until_ready()
            (self._act.go(place, prepared) if prepared else self._act(place))
            if self._told:
                watcher.wait_for(self.is_told, LATE)
            self.check(problems, home, *watcher.finish())
            return [f"{self.name}: {text}\n{watcher.noise()[-2000:]}" for text in problems.found]

    def is_told(self, rows):
        return len(rows) >= len(self._told) and self._told <= {self.told(row) for row in rows}

    def check(self, problems, home, status, rows, marker_batch):
        problems.check(status == -signal.SIGINT, f"ended with {status}")
        told = [self.told(row) for row in rows]
        missing, surplus = self._told - set(told), set(told) - self._told
        problems.check(not missing and not surplus, f"missing {sorted(missing)[:9]}, surplus {sorted(surplus)[:9]}")
        if self._batches == 1:
            problems.check(len(told) == len(set(told)), f"told twice: {sorted(told)[:9]}")
            batches = {row["batch"] for row in rows}
            problems.check(len(batches) == (1 if self._told else 0), f"told in batches {sorted(batches)}")
            problems.check(marker_batch not in batches, "told together with what was changed later")
        for row in {row["path"]: row for row in rows}.values():  # the last of each
            self.check_fields(problems, home, row)
        if self._after:
            self._after(problems, home)

    @staticmethod
    def told(row):
        signs = ("/" if row["isFolder"] else "") + (" conflicts" if row["hasConflicts"] else "")
        return f"{row['update']} {row['path']}{signs}"

    @staticmethod
    def check_fields(problems, home, row):
        path = row["path"]
        problems.check(row["filename"] == os.path.basename(path), f"name of {row}")
        problems.check(row["base"] == KINDS[path.split("/")[0]], f"kind of {row}")
        file = os.path.join(home.data, path)
        problems.check(row["url"] == f"file://{urllib.parse.quote(file)}", f"address of {row}")
        if os.path.isfile(file) and row["update"] != "deleted":
            told = datetime.datetime.fromisoformat(row["contentChangedDate"].replace("Z", "+00:00")).timestamp()
            problems.check(int(told) == int(os.stat(file).st_mtime), f"{path}: date {row['contentChangedDate']}")


class Place:
    """The data folder and, called "outside", a folder beside it."""

    def __init__(self, home):
        self.home = home

    def path(self, name):
        return os.path.join(self.home.folder if name.startswith("outside") else self.home.data, name)

    def make(self, name, text):
        if text is None:
            os.makedirs(self.path(name), exist_ok=True)
        else:
            write(self.path(name), text)

    def move(self, source, target):
        os.rename(self.path(source), self.path(target))


def saved(way):
    return Case(way.__name__, lambda place: way(place.path("Notes/Alpha.txt"), OTHER), "changed Notes/Alpha.txt",
                after=lambda problems, home: holds(problems, home, "Notes/Alpha.txt", OTHER))


def holds(problems, home, name, *texts):
    found = home.notes().get(name)
    problems.check(found in [text.encode() for text in texts], f"{name} holds {found}")


def wrote(*names):
    return lambda place: [place.make(name, OTHER) for name in names]


def moved(source, target):
    return lambda place: place.move(source, target)


def nested(place):
    os.makedirs(place.path("Notes/a/b/c"))
    for number in range(5):
        shutil.copy(place.path("Notes/Alpha.txt"), place.path(f"Notes/a/b/c/{number}.txt"))


def through_link(place):
    os.symlink(place.path("Notes/Alpha.txt"), place.path("outside/link"))
    write(place.path("outside/link"), OTHER)


def linked_in(place):
    write(place.path("outside/hard.txt"), OTHER)
    os.link(place.path("outside/hard.txt"), place.path("Notes/hard.txt"))
    os.symlink("Alpha.txt", place.path("Notes/soft.txt"))


def same_bytes(place):
    """Only the inode's change time is another one."""
    path = place.path("Notes/Alpha.txt")
    before = os.stat(path)
    write(path, TEXT)
    os.utime(path, ns=(before.st_atime_ns, before.st_mtime_ns))


def same_size_and_date(place):
    path = place.path("Notes/Alpha.txt")
    before = os.stat(path)
    write(path, TEXT.replace("anna", "dora"))
    os.utime(path, ns=(before.st_atime_ns, before.st_mtime_ns))


def merged(problems, home):
    text = home.notes().get("Calendar/20190305.txt", b"")
    problems.check(text == (START["Calendar/20190305.txt"] + STRAY).encode(), f"the day holds {text}")
    problems.check("Calendar/2019-3-5.txt" not in home.files(), "the stray is still there")
    problems.check(home.is_kept(STRAY.encode()), "the history does not have the stray's text")


class Checkout:
    """Another branch is checked out, with a thousand other notes."""

    names = [f"Notes/n{number:04}.txt" for number in range(1000)]
    gone = [f"Notes/gone {number}.txt" for number in range(15)]
    come = [f"Notes/come/{number}.txt" for number in range(25)]
    told = [*(f"changed {name}" for name in names), *(f"deleted {name}" for name in gone),
            *(f"added {name}" for name in come), "added Notes/come/"]

    def prepare(self, place):
        for name in self.names + self.gone:
            place.make(name, TEXT)
        git = Git(place.home.data)
        git.run("checkout", "--quiet", "-b", "theirs")
        for name in self.names + self.come:
            place.make(name, OTHER)
        for name in self.gone:
            os.unlink(place.path(name))
        git.run("add", "--all", "--force")
        git.run("commit", "--quiet", "--message", "theirs")
        git.run("checkout", "--quiet", "-")
        return git

    def go(self, _place, git):
        git.run("checkout", "--quiet", "theirs")


def below(sign, folder):
    """A record for the folder F at another place, and for each thing in it."""
    return [f"{sign} {name.replace('Notes/f', folder, 1)}" for name in FOLDER]


HIDDEN = ["Notes/.hidden.txt", "Notes/.git/config.txt", "Notes/_attachments/a.txt", "Notes/Alpha.txt~", "Notes/photo.png",
          "Notes/.~Alpha.txt.abc~", "Notes/.Alpha.txt.swp", "Notes/~syncthing~Alpha.txt.tmp", "Images/a.txt", "loose.txt"]
CASES = [
    *(saved(way) for way in ways.ALL),
    Case("same size and date", same_size_and_date, "changed Notes/Alpha.txt"),
    Case("same bytes and date", same_bytes),
    Case("touched", lambda place: os.utime(place.path("Notes/Alpha.txt")), "changed Notes/Alpha.txt"),
    Case("rights changed", lambda place: os.chmod(place.path("Notes/Alpha.txt"), 0o640)),
    Case("hidden and temporary names", wrote(*HIDDEN)),
    Case("came and went", lambda place: (place.make("Notes/x.txt", "x"), os.unlink(place.path("Notes/x.txt")))),
    Case("note and day created", wrote("Notes/New.md", "Notes/_Ideas.txt", "Calendar/20190306.txt"),
         "added Notes/New.md", "added Notes/_Ideas.txt", "added Calendar/20190306.txt"),
    Case("deleted", lambda place: os.unlink(place.path("Notes/Alpha.txt")), "deleted Notes/Alpha.txt"),
    Case("case changed", moved("Notes/Alpha.txt", "Notes/alpha.txt"), "deleted Notes/Alpha.txt", "added Notes/alpha.txt"),
    Case("trashed", lambda place: (place.make(".Trash/", None), place.move("Notes/Alpha.txt", ".Trash/Alpha.txt")),
         "deleted Notes/Alpha.txt", "added .Trash/Alpha.txt"),
    Case("branch checked out", Checkout(), *Checkout.told),
    Case("folder moved within", moved("Notes/f", "Notes/other/f"), *below("deleted", "Notes/f"), *below("added", "Notes/other/f"),
         start=FOLDER),
    Case("folder moved out", moved("Notes/f", "outside/f"), *below("deleted", "Notes/f"), start=FOLDER),
    Case("folder moved in", moved("outside/f", "Notes/f"), *below("added", "Notes/f"),
         start={name.replace("Notes", "outside"): text for name, text in FOLDER.items()}),
    Case("folders made and filled", nested, "added Notes/a/", "added Notes/a/b/", "added Notes/a/b/c/",
         *(f"added Notes/a/b/c/{number}.txt" for number in range(5))),
    Case("written through a link", through_link, "changed Notes/Alpha.txt"),
    Case("linked in", linked_in, "added Notes/hard.txt"),
    Case("copy comes", wrote(COPY), "changed Notes/Alpha.txt conflicts"),
    Case("copy goes", lambda place: os.unlink(place.path(COPY)), "changed Notes/Alpha.txt", start={COPY: OTHER}),
    Case("stray comes", lambda place: place.make("Calendar/2019-3-5.txt", STRAY), "added Calendar/2019-3-5.txt",
         "deleted Calendar/2019-3-5.txt", "changed Calendar/20190305.txt", after=merged, batches=2),
    Case("last repeat comes", lambda place: place.make("Calendar/20190306.txt", FINISHED), "added Calendar/20190306.txt",
         "changed Calendar/20190306.txt", batches=2, after=lambda problems, home: holds(
             problems, home, "Calendar/20190306.txt", FINISHED.replace("\n", " @final-repeat\n"))),
]


def main():
    program = os.path.realpath(sys.argv[1])
    cases = [case for case in CASES if case.name in sys.argv[2:] or len(sys.argv) == 2]
    problems = Problems()
    with tempfile.TemporaryDirectory(prefix="tessaly-saves-") as folder, \
            concurrent.futures.ThreadPoolExecutor(AT_A_TIME) as executor:
        homes = [os.path.join(os.path.realpath(folder), str(number)) for number in range(len(cases))]
        for found in executor.map(lambda case, home: case.run(program, home), cases, homes):
            problems.checks += 1
            problems.found += found
    return problems.finish()


if __name__ == "__main__":
    sys.exit(main())
