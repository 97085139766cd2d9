# SPDX-License-Identifier: MIT
"""How fast a line is added to a note, from start to exit, against a program that only rewrites a file."""

import os
import shutil
import tempfile

from goals import Row, answer
from process_goals import NOW, Programs, ratio_row

SYNCS = 6  # times that `tessaly add` puts something on the disk; counted with strace


def note_of_usual_size(root):
    """The general note whose size is the median of its folder, and its path."""
    folder = next(path for path, _, names in sorted(os.walk(os.path.join(root, "Notes"))) if names)
    notes = [entry for entry in os.scandir(folder) if entry.name.endswith(".txt")]
    return sorted(notes, key=lambda entry: (entry.stat().st_size, entry.name))[len(notes) // 2].path


class Writers:
    """Commands that each add a line to a file of their own; `put_back` undoes all of it."""

    def __init__(self, build, root, folder):
        self._rewrite = os.path.join(build, "bin", "rewrite_file")
        self._tessaly = os.path.join(build, "bin", "tessaly")
        self._root, self._folder = root, folder
        self._note = note_of_usual_size(root)
        self._kept = shutil.copy2(self._note, os.path.join(folder, "note"))
        self._peers = []

    def add(self, line):
        name = os.path.relpath(self._note, self._root)
        return [self._tessaly, "--root", self._root, "--now", NOW, "add", line, "--to", name]

    def rewrite(self, line, how):
        keep = os.path.join(self._folder, how)
        os.makedirs(os.path.join(keep, "texts"))
        for name in ("texts/text", "index"):
            with open(os.path.join(keep, name), "w", encoding="utf-8"):
                pass
        self._peers.append(shutil.copy2(self._kept, f"{self._note}.{how}"))
        return [self._rewrite, self._peers[-1], line, keep, str(SYNCS), how]

    def lines_added(self):
        """How many lines each file has grown by."""
        grown = []
        for path in (self._note, *self._peers):
            with open(path, "rb") as now, open(self._kept, "rb") as before:
                grown.append(now.read().count(b"\n") - before.read().count(b"\n"))
        return grown

    def put_back(self):
        shutil.copy2(self._kept, self._note)
        for path in self._peers:
            os.unlink(path)


def make_history(state):
    """One that has been in use for long, with all of its folders."""
    for number in range(256):
        os.makedirs(os.path.join(state, "tessaly", "history", "texts", f"{number:02x}"), mode=0o700)


def write_rows(build, size, root, pairs):
    if root is None:
        return [Row("add a line / rewrite the file", None, 1.5, detail="no corpus")]
    line = "* [ ] a line that is added >2020-01-01"
    with tempfile.TemporaryDirectory() as folder:
        make_history(os.path.join(folder, "STATE"))
        programs, writers = Programs(build, folder), Writers(build, root, folder)
        try:
            ours = writers.add(line)
            renamed = programs.pairs(ours, writers.rewrite(line, "rename"), pairs)
            exchanged = programs.pairs(ours, writers.rewrite(line, "exchange"), pairs)
            return [
                ratio_row(f"{size}: tessaly add / rewrite the file, rename", 1.5, renamed),
                ratio_row(f"{size}: tessaly add / rewrite the file, exchange", None, exchanged),
                answer("lines added", [2 * (pairs + 1), pairs + 1, pairs + 1], writers.lines_added()),
            ]
        finally:
            writers.put_back()
