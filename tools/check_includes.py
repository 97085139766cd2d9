#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Holds the includes of src/ to the table of allowed arrows in ARCHITECTURE.md.

check_includes.py [ROOT]      complains as FILE:LINE: WHAT; exit 1 when there is anything
check_includes.py --self-test
"""

import pathlib
import re
import sys

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
ROW = re.compile(r"^\|\s*`(\w+)`\s*\|.*\|\s*([^|]*?)\s*\|\s*$")
NONE = {"–", "-", ""}

# Headers of libraries that reach outside the process, and the folders that may know them.
OUTSIDE = [
    (re.compile(r"Q[A-Z]|Qt"), "Qt", {"desktop"}),
    (re.compile(r"(curl|gio|glib-object|libsecret|libical|libecal|libedataserver)[/.]"),
     "libraries that reach outside", {"platform", "desktop"}),
    (re.compile(r"glib(\.h$|/)"), "GLib", {"base", "platform", "desktop"}),
    (re.compile(r"(fcntl|dirent|sys/stat|sys/file|sys/inotify|sys/socket)\.h$|(filesystem|fstream)$"),
     "files and sockets", {"platform", "host", "cli", "desktop"}),
]
# Heavy or private headers that would spread to whoever includes ours.
NOT_IN_HEADERS = re.compile(r"(nlohmann|unicode)/(?!json_fwd)")
MAY_IN_HEADERS = {"base", "platform"}


def allowed_arrows(text):
    """{folder: folders it may include}, from the table behind the line `<!-- arrows -->`."""
    table = {}
    inside = False
    for line in text.splitlines():
        if line.strip() == "<!-- arrows -->":
            inside = True
        elif inside and (row := ROW.match(line)):
            may = set() if row[2] in NONE else {name.strip() for name in row[2].split(",")}
            table[row[1]] = may
        elif table and not line.startswith("|"):
            break
    return table


def complaints_about_table(table, folders):
    """What is wrong with the table itself, beside the folders that exist."""
    if not table:
        yield "no table behind <!-- arrows -->"
    for folder in sorted(folders - set(table)):
        yield f"no row for src/{folder}"
    for folder in sorted(set(table) - folders):
        yield f"a row for src/{folder}, which is not there"
    for folder, may in table.items():
        for name in sorted(may - set(table)):
            yield f"{folder} may include {name}, which has no row"
    settled = set()
    while ready := [f for f in table if f not in settled and table[f] & set(table) <= settled]:
        settled.update(ready)
    if circle := sorted(set(table) - settled):
        yield f"a circle among {', '.join(circle)}"


def complaint(folder, is_header, sign, header, table):
    """What is wrong with one include of a file of `folder`; None when nothing is."""
    if sign == '"':
        target, slash, _ = header.partition("/")
        if not slash:
            return f'name the folder too: "{folder}/{header}"'
        if target not in table:
            return f"there is no folder {target}"
        if target != folder and target not in table.get(folder, set()):
            return f"{folder} may not include {target}"
        return None
    for pattern, what, may in OUTSIDE:
        if pattern.match(header) and folder not in may:
            return f"{folder} may not include <{header}>: {what} only in {', '.join(sorted(may))}"
    if is_header and folder not in MAY_IN_HEADERS and NOT_IN_HEADERS.match(header):
        return f"<{header}> does not belong into a header of {folder}"
    return None


def complaints(path, text, table):
    """FILE:LINE: WHAT for each wrong include of one file; `path` is relative to src/."""
    folder = path.split("/")[0]
    for number, line in enumerate(text.splitlines(), 1):
        if include := INCLUDE.match(line):
            what = complaint(folder, path.endswith(".h"), include[1], include[2], table)
            if what:
                yield f"src/{path}:{number}: {what}"


def check(root):
    table = allowed_arrows((root / "ARCHITECTURE.md").read_text())
    source = root / "src"
    folders = {entry.name for entry in source.iterdir() if entry.is_dir()}
    found = [f"ARCHITECTURE.md: {what}" for what in complaints_about_table(table, folders)]
    files = sorted(f for f in source.rglob("*") if f.suffix in {".h", ".cpp"})
    for file in files:
        found += complaints(file.relative_to(source).as_posix(), file.read_text(), table)
    if not files:
        found.append("src: no sources found")
    return found


TABLE = """
<!-- arrows -->
| folder | holds | may include |
|---|---|---|
| `base` | words | – |
| `ports` | boundary | base |
| `grammar` | a \\| b | base |
| `store` | notes | base, grammar, ports |
| `platform` | adapters | base, ports |

| `late` | a table of something else | base |
"""

# A file, an include in it, and what must be said of it ("" for nothing).
CASES = [
    ("grammar/g.cpp", '#include "store/note.h"', "src/grammar/g.cpp:2: grammar may not include store"),
    ("grammar/g.cpp", '#  include  "store/note.h"', "grammar may not include store"),
    ("grammar/g.cpp", '#include "base/day.h"', ""),
    ("grammar/g.cpp", '#include "grammar/tags.h"', ""),
    ("grammar/g.cpp", '#include "tags.h"', 'name the folder too: "grammar/tags.h"'),
    ("grammar/g.cpp", '#include "tools/x.h"', "there is no folder tools"),
    ("base/b.h", '#include "ports/clock.h"', "base may not include ports"),
    ("platform/p.cpp", '#include "store/note.h"', "platform may not include store"),
    ("store/sub/s.cpp", '#include "platform/p.h"', "store may not include platform"),
    ("store/s.cpp", "#include <QString>", "store may not include <QString>"),
    ("platform/p.cpp", "#include <QtCore/QString>", "platform may not include <QtCore/QString>"),
    ("store/s.cpp", "#include <curl/curl.h>", "store may not include <curl/curl.h>"),
    ("platform/p.cpp", "#include <curl/curl.h>", ""),
    ("store/s.cpp", "#include <filesystem>", "store may not include <filesystem>"),
    ("store/s.h", "#include <unicode/regex.h>", "does not belong into a header of store"),
    ("store/s.cpp", "#include <unicode/regex.h>", ""),
    ("base/b.h", "#include <unicode/regex.h>", ""),
    ("store/s.h", "#include <nlohmann/json.hpp>", "does not belong into a header of store"),
    ("store/s.cpp", '// #include "platform/p.h"', ""),
]

# Tables that are wrong in themselves.
TABLES = [
    ("", set(), "no table"),
    (TABLE, {"base", "ports", "grammar", "store", "platform", "new"}, "no row for src/new"),
    (TABLE, {"base", "ports", "grammar", "store"}, "a row for src/platform, which is not there"),
    (TABLE.replace("| base |", "| base, sync |"), {"base"}, "sync, which has no row"),
    (TABLE.replace("| – |", "| grammar |"), {"base"}, "a circle among base, grammar"),
]


def self_test():
    table = allowed_arrows(TABLE)
    failed = []
    if sorted(table) != ["base", "grammar", "platform", "ports", "store"]:
        failed.append(f"read the rows {sorted(table)}")
    for path, line, expected in CASES:
        said = "\n".join(complaints(path, "// first\n" + line, table))
        if (expected not in said) if expected else said:
            failed.append(f"{path}: {line}: expected {expected!r}, got {said!r}")
    for text, folders, expected in TABLES:
        said = "\n".join(complaints_about_table(allowed_arrows(text), folders))
        if expected not in said:
            failed.append(f"table: expected {expected!r}, got {said!r}")
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
