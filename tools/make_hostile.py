#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Write a data folder that holds everything a careless reader of notes trips over.

    make_hostile.py OUT [--settings-name NAME]

Layout:
    OUT/data                  the data folder, with Calendar and Notes
    OUT/outside               what links in it point to, and what nobody may read through them
    OUT/roots/DAMAGE          data folders that are broken as a whole
    OUT/config/DAMAGE/tessaly settings folders, each with one damaged settings file

Prints a manifest in JSON: for each entry of OUT/data its path (percent-encoded bytes, relative to
it), kind, size, mode, mtime in nanoseconds and sha256; and what a reader should do with it:

    read    its text counts; "task" is the content of a task in it that no other file has
    absent  not UTF-8: the note is there, its text is not
    stray   in Calendar, but of no day; whether its tasks show is the reader's choice
    report  not read, and the user is told why ("read" instead for a reader that is root, if so said)
    skip    passed over
"""

import argparse
import hashlib
import json
import os
import stat
import sys
from urllib.parse import quote_from_bytes

FIRST_MTIME = 1577793600 * 10**9 + 123456789  # 2019-12-31 12:00 UTC; nanoseconds that must survive
BOM = b"\xef\xbb\xbf"
KB, MB = 1 << 10, 1 << 20

# Bytes that stand behind a task line in a note that reads well.
TEXTS = {
    "nul": b"before\0after\n* [x] after NUL\n",
    "no-final-newline": b"the end",
    "one-megabyte-line": b"x" * MB,
    "one-megabyte-of-words": b"word " * (MB // 5),
    "hundred-thousand-hashes": b"#" * 100_000,
    "hundred-thousand-lines": b"x\n" * 100_000,
    "tabs": b"\t" * (64 * KB) + b"x - y\n",
    "tabs-then-item": b"\t" * (64 * KB) + b"+ y\n",
    "spaces": b" " * (64 * KB) + b"\n",
    "no-break-spaces": "\u00a0".encode() * (32 * KB) + b"x\n",
    "unclosed-tag-arguments": b"#t( " * (16 * KB) + b"\n",
    "unclosed-mention-arguments": b"@m(" * (16 * KB) + b"\n",
    "unclosed-completions": b" @done(2019-01-01 10:00" * 3000 + b"\n",
    "dates-cut-short": b">2019-01-" * 7000 + b"\n",
    "brackets": b"[" * (64 * KB) + b"(" * (64 * KB) + b"\n",
    "quoted-signs": b"\"#'@" * (16 * KB) + b"\n",
    "one-huge-tag": b"#" + b"t" * (256 * KB) + b"\n",
    "deep-tag": b"#" + b"a/" * 2000 + b"a\n",
    "unicode-line-ends": "one\u2028two\u2029three\u0085four\vfive\fsix\n".encode(),
    "combining-marks": b"e" + "\u0301".encode() * 50_000 + b"\n",
    "direction-marks": "\u202egnp.exe\u202c \u2066#tag\u2069 \u200f@name\u200e\n".encode(),
    "controls": bytes(range(1, 10)) + bytes(range(11, 32)) + b"\x7f \x1b[31mred\x1b[0m\x07\n",
    "impossible-dates": b">2019-02-31 <2019-13-01 @2019-00-00 @done(2019-02-31 25:99) >9999-12-31\n",
    "impossible-repeats": b"text @repeat(1/99999999999999999999) @repeat(-1/0) @repeat(/)\n",
    "not-characters": "\ufffe\uffff\U0010ffff\ufeff\n".encode(),
}

# Bytes that are no UTF-8, in a note that has a task in front of them.
NOT_UTF8 = {
    "latin-1": b"caf\xe9\n",
    "lone-continuation": b"a\x80b\n",
    "overlong": b"\xc0\xaf \xe0\x80\xaf\n",
    "surrogate": b"\xed\xa0\x80\n",
    "past-the-last": b"\xf4\x90\x80\x80\n",
    "cut-at-the-end": b"\xe4\xbc",
    "forbidden-bytes": b"\xfe\xff\n",
}

# Names of notes that are UTF-8 and must come out as they stand.
NAMES = [
    b"n" * 251 + b".txt",
    "é".encode() * 125 + b"x.txt",
    b"new\nline.txt",
    b"tab\tand \x1b[31mescape.txt",
    b" blanks .txt",
    b"-rf.txt",
    b"$(id) `id` ; & | *.txt",
    b"%s%n %20.txt",
    b"quote ' \" back\\slash.txt",
    b"Case.txt",
    b"case.txt",
    b"caf\xc3\xa9.txt",
    b"cafe\xcc\x81.txt",
    "\u202etxt.exe.txt".encode(),
    b"markdown.md",
    b"_underscore.txt",
    b"two.dots.txt",
    b"Plans (Anna's conflicted copy 2019-12-30).txt",
    b"Plans (conflicted copy 2019-12-30 101500).txt",
    b"Plans.sync-conflict-20191230-101500-ABCDEF7.txt",
]

# Names in Notes that a reader passes over.
PASSED_OVER = [
    b".hidden.txt", b"._Plans.txt", b".~Plans.txt.x7Gh2k~", b".DS_Store", b"Plans.txt~", b"Plans.TXT.bak",
    b"picture.png", b"no extension", b"_attachments/inside.txt", b".folder/inside.txt",
    b"sub/_attachments/inside.txt",
]

# Names in Calendar that look like a day and are none.
STRAYS = [
    b"2019-3-5.txt", b"20190231.txt", b"2019-03-05.txt", b"20191301.txt", b"20191229.txt.txt",
    "\u0662\u0660\u0661\u0669\u0660\u0663\u0660\u0668.txt".encode(), b"notes.txt", b"2019/20191221.txt",
    b"20191231 (conflicted copy 2019-12-31 101500).txt", b"20191231.sync-conflict-20191231-101500-ABCDEF7.txt",
]

# What a settings file may hold.
SETTINGS = {
    "empty": b"",
    "blank": b" \n\t\n",
    "cut-short": b'{"fontSize": 15, "sortBy": "mod',
    "array": b"[]",
    "null": b"null",
    "text": b'"fontSize"',
    "trailing-comma": b'{"fontSize": 15,}',
    "comment": b'{// size\n"fontSize": 15}',
    "byte-order-mark": BOM + b'{"fontSize": 15}',
    "not-utf8": b'{"fontFamily": "caf\xe9"}',
    "lone-surrogate": b'{"fontFamily": "\\ud800"}',
    "nul": b'{"fontSize": 15}\0\0\0',
    "nested": b'{"fontSize": ' + b"[" * 100_000,
    "repeated-key": b'{"isDashTodo": true, "isDashTodo": false}',
    "wrong-types": b'{"fontSize": {}, "isAsteriskTodo": "yes", "sortBy": 7, "sync_blacklist": "x", "firstDayOfWeek": []}',
    "huge-numbers": b'{"fontSize": 1e999, "fontDelta": 99999999999999999999, "maxTextWidth": -1e308}',
    "long-text": b'{"fontFamily": "' + b"x" * (4 * MB) + b'"}',
    "unknown-keys": b'{"": 1, "zebra": null, "fontSize": 15, "nested": {"a": [1, 2.50, true]}}',
}


class Maker:
    def __init__(self, out):
        self.data = os.path.join(out, b"data")
        self.rows = []
        self.shut = []  # to lose all rights at the end

    def place(self, path):
        full = os.path.join(self.data, path)
        os.makedirs(os.path.dirname(full), exist_ok=True)
        return full

    def add(self, path, reader, **more):
        self.rows.append((path, {"reader": reader, **more}))

    def file(self, path, reader, content, **more):
        with open(self.place(path), "wb") as file:
            file.write(content)
        self.add(path, reader, **more)

    def note(self, path, rest=b"", reader="read", before=b"", end=b"\n", **more):
        """A note whose first line is a task of its own."""
        task = f"survivor-{len(self.rows):03d}"
        self.file(path, reader, before + b"* [ ] " + task.encode() + end + rest, task=task, **more)

    def link(self, path, target, reader, **more):
        os.symlink(target, self.place(path))
        self.add(path, reader, **more)

    def special(self, path, kind, reader="report"):
        os.mknod(self.place(path), kind | 0o600)
        self.add(path, reader)

    def unreadable(self, path):
        self.note(path, reader="report", asRoot="read", mode="0000")
        self.shut.append(path)


def make_texts(maker):
    maker.note(b"Notes/plain.txt", "Ordinary #tag and @name, größer 会議\n".encode())
    for name, rest in TEXTS.items():
        maker.note(b"Notes/texts/" + name.encode() + b".txt", rest)
    maker.note(b"Notes/texts/bom.txt", b"# not a title\n", before=BOM)
    maker.note(b"Notes/texts/two-boms.txt", b"* [ ] after two marks\n", before=BOM + b"\n" + BOM + b"\n")
    maker.note(b"Notes/texts/crlf.txt", b"- [x] done\r\n\r\ntext\r\n", end=b"\r\n")
    maker.note(b"Notes/texts/cr-only.txt", b"* [ ] second\rthird", end=b"\r")
    for name, rest in NOT_UTF8.items():
        maker.note(b"Notes/not-utf8/" + name.encode() + b".txt", rest, reader="absent")
    maker.file(b"Notes/not-utf8/utf-16.txt", "absent", "* [ ] wide\n".encode("utf-16"))
    maker.file(b"Notes/empty.txt", "read", b"")
    maker.file(b"Notes/only-bom.txt", "read", BOM)
    maker.file(b"Notes/only-newlines.txt", "read", b"\n" * 100)
    maker.file(b"Notes/half-a-bom.txt", "absent", BOM[:2])
    maker.file(b"Notes/too-large.txt", "report", b"")
    os.truncate(os.path.join(maker.data, b"Notes/too-large.txt"), 64 * MB + 1)  # a hole, not a block


def make_names(maker):
    for name in NAMES:
        maker.note(b"Notes/names/" + name)
    for name in PASSED_OVER:
        maker.note(b"Notes/names/" + name, reader="skip")
    maker.note(b"Notes/names/caf\xe9.txt", reader="report")
    maker.note(b"Notes/fold\xff/inside.txt", reader="report")
    deep = b"Notes/"
    for level in range(100):
        deep += b"%02d/" % level
        if level in (0, 49, 99):
            maker.note(deep + b"deep.txt")


def make_links(maker, outside):
    maker.link(b"Notes/links/inside.txt", b"../plain.txt", "read")
    maker.link(b"Notes/links/to-itself.txt", b"to-itself.txt", "report")
    maker.link(b"Notes/links/there.txt", b"back.txt", "report")
    maker.link(b"Notes/links/back.txt", b"there.txt", "report")
    maker.link(b"Notes/links/dangling.txt", b"nowhere.txt", "report")
    maker.link(b"Notes/links/outside.txt", b"../../../outside/secret.txt", "report")
    maker.link(b"Notes/links/outside-absolute.txt", os.path.join(outside, b"secret.txt"), "report")
    maker.link(b"Notes/links/endless.txt", b"/dev/zero", "report")
    maker.link(b"Notes/links/folder.txt", b"..", "report")
    maker.link(b"Notes/links/above", b"../..", "skip")
    maker.link(b"Notes/links/here", b".", "skip")
    maker.link(b"Notes/links/outside", outside, "skip")


def make_no_files(maker):
    maker.special(b"Notes/special/pipe.txt", stat.S_IFIFO)
    maker.special(b"Notes/special/socket.txt", stat.S_IFSOCK)
    maker.special(b"Notes/special/pipe", stat.S_IFIFO, "skip")
    maker.note(b"Notes/special/Plans.txt/inside.txt")
    maker.unreadable(b"Notes/special/unreadable.txt")
    maker.note(b"Notes/shut folder/inside.txt", reader="report", asRoot="read")
    maker.shut.append(b"Notes/shut folder")


def make_calendar(maker):
    maker.note(b"Calendar/20191231.txt", b"* [x] done today @done(2019-12-31 09:00)\n* [>] moved >2020-01-01\n")
    maker.note(b"Calendar/20191230.txt", b"\t* [ ] indented\n- [-] cancelled\n")
    maker.note(b"Calendar/20191222.txt", b"y" * MB)
    maker.note(b"Calendar/20191221.txt", before=BOM, end=b"\r\n")
    maker.note(b"Calendar/00010101.txt")
    maker.note(b"Calendar/99991231.txt")
    maker.file(b"Calendar/20191223.txt", "read", BOM)
    maker.file(b"Calendar/20191220.txt", "read", b"")
    maker.note(b"Calendar/20191228.txt", NOT_UTF8["latin-1"], reader="absent")
    maker.note(b"Calendar/20190305.txt/inside.txt", reader="stray")
    maker.special(b"Calendar/20191227.txt", stat.S_IFIFO)
    maker.link(b"Calendar/20191226.txt", b"20191226.txt", "report")
    maker.link(b"Calendar/20191224.txt", b"nowhere.txt", "report")
    maker.unreadable(b"Calendar/20191225.txt")
    for name in STRAYS:
        maker.note(b"Calendar/" + name, reader="stray")
    maker.note(b"Calendar/2019\xff.txt", reader="report")


def make_outside(out):
    outside = os.path.abspath(os.path.join(out, b"outside"))
    os.makedirs(outside)
    with open(os.path.join(outside, b"secret.txt"), "wb") as file:
        file.write(b"* [ ] must-not-be-read #must-not-be-read\n")
    return outside


def make_roots(out, outside):
    roots = os.path.join(out, b"roots")
    for name in (b"empty", b"notes-is-a-file", b"folders-lead-out", b"folders-are-loops"):
        os.makedirs(os.path.join(roots, name))
    with open(os.path.join(roots, b"is-a-file"), "wb") as file:
        file.write(b"* [ ] no folder\n")
    os.symlink(b"is-a-loop", os.path.join(roots, b"is-a-loop"))
    with open(os.path.join(roots, b"notes-is-a-file", b"Notes"), "wb") as file:
        file.write(b"* [ ] no folder\n")
    for folder in (b"Notes", b"Calendar"):
        os.symlink(outside, os.path.join(roots, b"folders-lead-out", folder))
        os.symlink(folder, os.path.join(roots, b"folders-are-loops", folder))


def make_settings(out, name):
    def place(damage):
        folder = os.path.join(out, b"config", damage.encode(), b"tessaly")
        os.makedirs(folder)
        return os.path.join(folder, name)

    for damage, content in SETTINGS.items():
        with open(place(damage), "wb") as file:
            file.write(content)
    os.mkdir(place("folder"))
    os.mkfifo(place("pipe"))
    os.symlink(b"nowhere", place("dangling"))
    with open(place("unreadable"), "wb") as file:
        file.write(b"{}")
    os.chmod(os.path.join(out, b"config/unreadable/tessaly", name), 0)


def set_times(maker):
    """Files first, then folders from the innermost out, since making an entry dates its folder."""
    for index, (path, _) in enumerate(maker.rows):
        mtime = FIRST_MTIME + index * 10**9
        os.utime(os.path.join(maker.data, path), ns=(mtime, mtime), follow_symlinks=False)
    for folder, _, _ in os.walk(maker.data, topdown=False):
        os.utime(folder, ns=(FIRST_MTIME, FIRST_MTIME))


def described(maker, path, more):
    full = os.path.join(maker.data, path)
    info = os.lstat(full)
    row = {"path": quote_from_bytes(path, safe="/ "), "kind": stat.filemode(info.st_mode)[0],
           "size": info.st_size, "mode": f"{stat.S_IMODE(info.st_mode):04o}", "mtime": info.st_mtime_ns, **more}
    if stat.S_ISREG(info.st_mode):
        with open(full, "rb") as file:
            row["sha256"] = hashlib.file_digest(file, "sha256").hexdigest()
    return row


def manifest_of(maker):
    """Taken before anything is shut, so that whoever runs this can read it all."""
    set_times(maker)
    return [described(maker, path, more) for path, more in maker.rows]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("out", help="a folder that does not exist yet")
    parser.add_argument("--settings-name", default="settings.json", help="the settings file's name")
    arguments = parser.parse_args()
    out = os.fsencode(arguments.out)
    os.makedirs(out)
    outside = make_outside(out)
    maker = Maker(out)
    make_texts(maker)
    make_names(maker)
    make_links(maker, outside)
    make_no_files(maker)
    make_calendar(maker)
    make_roots(out, outside)
    make_settings(out, os.fsencode(arguments.settings_name))
    json.dump({"entries": manifest_of(maker)}, sys.stdout, indent=1)
    print()
    for path in maker.shut:
        os.chmod(os.path.join(maker.data, path), 0)


if __name__ == "__main__":
    main()
