#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Reads every text file of the project for what does not belong into it.

check_words.py [ROOT]      complains as FILE:LINE: WHAT; exit 1 when there is anything
check_words.py --self-test
"""

import os
import pathlib
import re
import sys

# Folders of data: samples may hold anything.
PASSED_OVER = {".git", "build", "corpus", "cases", "roots", "__pycache__"}
SOURCES = {".h", ".cpp", ".py", ".sh", ".cmake"}
DATA = "/demo/"  # folders of notes, where a tab indents an item
TABS_MATTER = SOURCES | {".md", ".json", ".txt"}

# Pieces are joined so that this file does not hold what it looks for.
SPEC = "[Ss]p" + "ec"
WORDS = [
    (re.compile(rf"\b{SPEC}(ification|\.md)|\bthe {SPEC}\b|\bPart [0-9]\.[0-9]"
                rf"|\b[Dd]esign\.md|\bDEVELOPERS\." + r"md|\b[Ii]ssue #?[0-9]"),
     "points at a document that the reader does not have; say it here"),
    (re.compile(r"(?<![\w.~$})])/(root|work|Users)/\w"), "a path of one machine"),
    (re.compile(r"\b(TODO|FIXME|XXX)\b:"), "unfinished"),
]
# Tests may make a home up.
HOME = re.compile(r"(?<![\w.~$})])/home/\w")


def wants_licence(name):
    return pathlib.PurePath(name).suffix in SOURCES or name.endswith("CMakeLists.txt")


def complaints(name, text):
    """FILE:LINE: WHAT for one file; `name` is relative to the root."""
    lines = text.splitlines()
    first = 1 if lines and lines[0].startswith("#!") else 0
    is_script = first == 1
    if wants_licence(name) or is_script:
        if "SPDX-License-Identifier: MIT" not in (lines[first] if len(lines) > first else ""):
            yield f"{name}:{first + 1}: the licence line is missing"
    if text and not text.endswith("\n"):
        yield f"{name}:{len(lines)}: no line break at the end"
    tabs = is_script or (pathlib.PurePath(name).suffix in TABS_MATTER and DATA not in name)
    for number, line in enumerate(lines, 1):
        if tabs and "\t" in line:
            yield f"{name}:{number}: a tab"
        for pattern, what in WORDS:
            if found := pattern.search(line):
                yield f"{name}:{number}: {found[0]}: {what}"
        if HOME.search(line) and not name.startswith("tests/"):
            yield f"{name}:{number}: a home folder of one machine"


def files_below(root):
    for folder, folders, names in os.walk(root):
        folders[:] = sorted(set(folders) - PASSED_OVER)
        yield from (pathlib.Path(folder, name) for name in sorted(names))


def check(root):
    found = []
    count = 0
    for file in files_below(root):
        name = file.relative_to(root).as_posix()
        try:
            text = file.read_text(encoding="utf-8", errors="strict")
        except UnicodeDecodeError:
            if file.suffix in TABS_MATTER:
                found.append(f"{name}:1: not UTF-8")
            continue
        if "\0" in text:
            continue
        count += 1
        found += complaints(name, text)
    if not count:
        found.append("no files found")
    return found


LICENCE = "// SPDX-License-Identifier: MIT\n"

# A file's name, its text, and what must be said of it ("" for nothing).
CASES = [
    ("src/a.cpp", LICENCE + "int a;\n", ""),
    ("src/a.cpp", "int a;\n", "src/a.cpp:1: the licence line is missing"),
    ("tool", "#!/bin/sh\n# SPDX-License-Identifier: MIT\n", ""),
    ("tool", "#!/bin/sh\necho\n", "tool:2: the licence line is missing"),
    ("src/a.cpp", LICENCE + "\tint a;\n", "src/a.cpp:2: a tab"),
    ("src/a.cpp", LICENCE + "int a;", "src/a.cpp:2: no line break"),
    ("a.md", "as the speci" + "fication says\n", "a.md:1"),
    ("a.md", "see Par" + "t 2.1\n", "a.md:1"),
    ("a.md", "a special part of two\n", ""),
    ("a.md", "in /ho" + "me/ada/notes\n", "a.md:1: a home"),
    ("tests/a.cpp", LICENCE + "x = \"/ho" + "me/ada\";\n", ""),
    ("a.md", "in /wo" + "rk/main\n", "a path of one machine"),
    ("a.md", "src/wo" + "rk/x ~/wo" + "rk/y\n", ""),
    ("src/a.cpp", LICENCE + "// TO" + "DO: later\n", "unfinished"),
]


def self_test():
    failed = []
    for name, text, expected in CASES:
        said = "\n".join(complaints(name, text))
        if (expected not in said) if expected else said:
            failed.append(f"{name}: {text!r}: expected {expected!r}, got {said!r}")
    return failed


def main(arguments):
    if arguments == ["--self-test"]:
        found = self_test()
    else:
        root = arguments[0] if arguments else pathlib.Path(__file__).resolve().parent.parent
        found = check(pathlib.Path(root))
    print("\n".join(found) if found else "nothing to complain about")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
