# SPDX-License-Identifier: MIT
"""Reads a data folder the plain way, to check the answers of programs that read it the fast way."""

import datetime
import os
import re
import string
from collections import Counter

WHITE = "\t\n\v\f\r \u0085\u00a0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009\u200a" \
        "\u2028\u2029\u202f\u205f\u3000"
BOXES = {"x": "done", "-": "cancelled", ">": "scheduled", **{blank: "open" for blank in WHITE}}
MOST = 255  # where a note's own counters stop
DAY_FILE = re.compile(r"[0-9]{8}\.txt", re.ASCII)


def day_of(name):
    """The day of a calendar note's file name; None for another name."""
    if not DAY_FILE.fullmatch(name):
        return None
    try:
        return datetime.date(int(name[:4]), int(name[4:6]), int(name[6:8]))
    except ValueError:
        return None


def behind_marker(line):
    """Marker and text of a task or list line; (None, line) for another."""
    bare = line.lstrip(WHITE)
    if bare.startswith(("* ", "- ")):
        return bare[0], bare[2:]
    digits = len(bare) - len(bare.lstrip(string.digits))
    if digits and bare[digits:digits + 2] in (". ", ") "):
        return "1", bare[digits + 2:]
    return None, line


def state_of(line):
    """The state of a task line, by the settings of a new user; None for a line that is no task."""
    marker, rest = behind_marker(line)
    if marker is None:
        return None
    if len(rest) >= 4 and rest[0] == "[" and rest[2:4] == "] " and rest[1] in BOXES:
        return BOXES[rest[1]]
    return "open" if marker == "*" else None


def note_files(root, folder):
    for where, folders, names in os.walk(os.path.join(root, folder)):
        folders[:] = [f for f in folders if not f.startswith(".") and f != "_attachments"]
        for name in names:
            if name.endswith((".txt", ".md")) and not name.startswith("."):
                yield os.path.join(where, name), name


def read_folder(root, needle):
    """What the programs' own counts are compared with."""
    found = Counter()
    for folder in ("Calendar", "Notes"):
        for path, name in note_files(root, folder):
            with open(path, "rb") as file:
                data = file.read()
            found["files"] += 1
            found["bytes"] += len(data)
            try:
                text = data.decode("utf-8").removeprefix("\ufeff")
            except UnicodeDecodeError:
                continue
            found["needle"] += needle in text.lower()
            states = Counter(state_of(line) for line in text.split("\n"))
            del states[None]
            found["tasks"] += states.total()
            if folder == "Calendar" and day_of(name):
                found.update({f"{state}InCalendar": min(count, MOST) for state, count in states.items()})
    return dict(found)
