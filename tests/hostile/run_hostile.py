#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""run_hostile.py TESSALY MAKER: every reading verb on a data folder made to do harm.

No verb may crash, hang, read what lies outside, or change anything; what is sound must still be
read. Where rights are tested, root (who has them all) is expected to read more.
"""

import hashlib
import json
import os
import stat
import subprocess
import sys
import tempfile
from urllib.parse import unquote_to_bytes

sys.dont_write_bytecode = True

from command import Checks, Command

FORBIDDEN = b"must-not-be-read"
VERBS = [
    ("today",), ("day",), ("day", "2019-12-30"), ("day", "20190305"), ("day", "20191226"), ("week",),
    ("overdue",), ("list",), ("list", "--all"), ("list", "--calendar"), ("list", "--folder", "names"),
    ("list", "--folder", "../../outside"), ("tasks",), ("tasks", "--state", "open"), ("tags",), ("mentions",),
    ("settings", "list"), ("doctor",), ("show", "today"), ("show", "20191228"), ("show", "20191227"),
    ("show", "../../outside/secret.txt"), ("show", "links/outside.txt"), ("show", "links/outside/secret.txt"),
    ("show", "no such note"), ("show", ""), ("show", "names/caf\udce9.txt"),
]
ROOT_VERBS = [("today",), ("tasks",), ("list",), ("show", "secret"), ("doctor",)]
SETTINGS_VERBS = [("settings", "list"), ("settings", "get", "fontSize"), ("today",), ("doctor",)]


def fingerprint(path):
    """All that tells whether an entry was touched; reading it is no touch."""
    info = os.lstat(path)
    row = [info.st_ino, info.st_mode, info.st_nlink, info.st_uid, info.st_size, info.st_mtime_ns, info.st_ctime_ns]
    if stat.S_ISREG(info.st_mode) and os.access(path, os.R_OK):
        with open(path, "rb") as file:
            row.append(hashlib.file_digest(file, "sha256").hexdigest())
    return row


def snapshot(root):
    found = {root: fingerprint(root)}
    for folder, folders, files in os.walk(os.fsencode(root)):
        for name in folders + files:
            path = os.path.join(folder, name)
            found[path] = fingerprint(path)
    return found


def unlock(root):
    """So that the temporary folder can go away."""
    for folder, folders, _ in os.walk(os.fsencode(root)):
        for name in folders:
            path = os.path.join(folder, name)
            if not os.path.islink(path):
                os.chmod(path, 0o700)


class Hostile:
    def __init__(self, program, folder, manifest):
        self.checks = Checks()
        self.folder = folder
        self.data = os.path.join(folder, "data")
        self.entries = manifest["entries"]
        home = os.path.join(os.path.dirname(folder), "home")
        self.command = Command(program, home, self.checks, ASAN_OPTIONS="exitcode=99", TSAN_OPTIONS="exitcode=99")

    def reader_of(self, entry):
        return entry["asRoot"] if "asRoot" in entry and os.geteuid() == 0 else entry["reader"]

    def check_output(self, root, *arguments):
        output = self.command.run(root, *arguments) or b""
        self.checks.check(FORBIDDEN not in output, f"{arguments} on {root}: reads outside the data folder")
        self.checks.check(b"\x1b" not in output, f"{arguments} on {root}: prints an escape character")
        text = json.dumps(self.command.records(root, *arguments))
        self.checks.check(FORBIDDEN.decode() not in text, f"{arguments} --json on {root}: reads outside")

    def check_verbs(self):
        for verb in VERBS:
            self.check_output(self.data, *verb)

    def check_tasks(self):
        """The sound notes' tasks are all there, and no task of what must not be read."""
        listed = {record["todo"]["content"] for record in self.command.records(self.data, "tasks")}
        for entry in self.entries:
            reader = self.reader_of(entry)
            if "task" in entry and reader != "stray":
                there, wanted = entry["task"] in listed, reader == "read"
                self.checks.check(there == wanted, f"{entry['path']}: task listed: {there}, expected: {wanted}")

    def check_doctor(self):
        """Whoever passes a note over says so."""
        told = json.dumps(self.command.records(self.data, "doctor"), ensure_ascii=False)
        for entry in self.entries:
            if self.reader_of(entry) in ("absent", "report", "stray") and "%" not in entry["path"]:
                named = entry["path"].split("/inside.txt")[0]
                self.checks.check(named in told, f"doctor says nothing of {named}")

    def check_files(self):
        """Every file on its own: shown under its name, and taken apart without losing a byte."""
        for entry in self.entries:
            path = os.path.join(os.fsencode(self.data), unquote_to_bytes(entry["path"]))
            records = self.command.records(self.data, "parse", os.fsdecode(path))
            if self.reader_of(entry) in ("read", "stray") and entry["kind"] == "-":
                with open(path, "rb") as file:
                    text = file.read().decode("utf-8").removeprefix("\ufeff")
                same = "\n".join(record["base"] for record in records) == text
                self.checks.check(same, f"{entry['path']}: its records' lines are not its text")
                shown = self.command.run(self.data, "show", os.fsdecode(unquote_to_bytes(entry["path"]))) or b""
                self.checks.check(entry.get("task", "").encode() in shown, f"show {entry['path']}: shows something else")

    def check_broken_roots(self):
        roots = os.path.join(self.folder, "roots")
        for name in [*sorted(os.listdir(roots)), "missing"]:
            for verb in ROOT_VERBS:
                self.check_output(os.path.join(roots, name), *verb)

    def check_settings(self):
        config = os.path.join(self.folder, "config")
        for name in sorted(os.listdir(config)):
            command = self.command.with_env(XDG_CONFIG_HOME=os.path.join(config, name))
            for verb in SETTINGS_VERBS:
                command.run(self.data, *verb)
                command.records(self.data, *verb)

    def run(self):
        before = snapshot(self.folder)
        for part in (self.check_verbs, self.check_tasks, self.check_doctor, self.check_files,
                     self.check_broken_roots, self.check_settings):
            part()
            after = snapshot(self.folder)
            changed = sorted(str(path) for path in before.keys() | after.keys() if before.get(path) != after.get(path))
            self.checks.check(not changed, f"{part.__name__}: changed {changed}")
            before = after
        return self.checks.finish()


def main():
    program, maker = map(os.path.abspath, sys.argv[1:3])
    with tempfile.TemporaryDirectory(prefix="tessaly-hostile-") as folder:
        out = os.path.join(folder, "out")
        made = subprocess.run([sys.executable, maker, out], check=True, stdout=subprocess.PIPE)
        try:
            return Hostile(program, out, json.loads(made.stdout)).run()
        finally:
            unlock(out)


if __name__ == "__main__":
    sys.exit(main())
