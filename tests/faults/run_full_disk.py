#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""run_full_disk.py TESSALY: a disk that is full, and folders that may not be written.

Needs the right to mount a small file system, if only in a name space of its own; else it is skipped.
"""

import contextlib
import os
import shutil
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True

from home import Home, Problems

SKIPPED = 77
NOBODY = 65534
SIZE = "96k"
BALLAST = 24 << 10  # bytes; goes to make room again
LINE = "* [ ] " + "x" * 1000
NOTE = "Notes/Plan.txt"
MOST = 200  # lines; far more than the disk takes


@contextlib.contextmanager
def small_disk(folder):
    os.makedirs(folder)
    subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={SIZE},mode=0755", "tmpfs", folder], check=True)
    try:
        yield folder
    finally:
        subprocess.run(["umount", folder], check=True)


def may_mount():
    with tempfile.TemporaryDirectory() as folder:
        command = ["mount", "-t", "tmpfs", "tmpfs", folder]
        if subprocess.run(command, check=False, stderr=subprocess.DEVNULL).returncode != 0:
            return False
        subprocess.run(["umount", folder], check=True)
        return True


def use_own_name_space():
    """Starts this anew where it may mount; returns when that cannot be."""
    again = ["unshare", "-rm", sys.executable, *sys.argv, "--apart"]
    allowed = shutil.which("unshare") and subprocess.run(["unshare", "-rm", "true"], check=False,
                                                         stderr=subprocess.DEVNULL).returncode == 0
    if allowed and "--apart" not in sys.argv:
        sys.stdout.flush()
        os.execvp("unshare", again)


def fill(path):
    """A file that takes what room is left."""
    with open(path, "wb") as file, contextlib.suppress(OSError):
        while True:
            os.write(file.fileno(), b"x" * 1024)


class Writer:
    """Adds lines to a note until that fails, and on from there."""

    def __init__(self, home, problems, where):
        self.home, self.check, self.where = home, problems.check, where
        self.text = b"# Plan\n"
        home.write(NOTE, self.text)

    def add(self):
        """Adds a line; whether it went well. The note is checked in either case."""
        ended = self.home.run("add", LINE, "--to", "Plan")
        self.text += (LINE + "\n").encode() if ended.returncode == 0 else b""
        same = self.home.files().get(NOTE) == self.text
        self.check(same, f"{self.where}: the note is not what was said, status {ended.returncode}: {ended.stderr}")
        self.check(not self.home.leftovers(), f"{self.where}: left {self.home.leftovers()}")
        if ended.returncode != 0:
            self.check(ended.returncode == 1 and ended.stderr.strip(), f"{self.where}: {ended}")
        return ended

    def add_until_refused(self):
        for _ in range(MOST):
            ended = self.add()
            if ended.returncode != 0:
                return ended
        self.check(False, f"{self.where}: never full")
        return ended

    def check_refused(self, ended, reason):
        said = ended.stderr.decode(errors="replace")
        self.check(reason in said, f"{self.where}: does not say why: {said!r}")
        for _ in range(2):
            self.check(self.add().returncode != 0, f"{self.where}: goes on though nothing has changed")

    def check_goes_on(self):
        ended = self.add()
        self.check(ended.returncode == 0, f"{self.where}: does not go on afterwards: {ended.stderr}")
        ended = self.home.run("today")
        self.check(ended.returncode == 0, f"{self.where}: today fails: {ended.stderr}")


def check_full_data(program, folder, problems):
    with small_disk(os.path.join(folder, "disk")) as disk:
        home = Home(program, folder, data=os.path.join(disk, "planner"))
        ballast = os.path.join(disk, "ballast")
        with open(ballast, "wb") as file:
            file.write(b"x" * BALLAST)
        writer = Writer(home, problems, "the notes' disk is full")
        writer.check_refused(writer.add_until_refused(), "No space left on device")
        os.unlink(ballast)
        writer.check_goes_on()


def check_full_history(program, folder, problems):
    with small_disk(os.path.join(folder, "disk")) as disk:
        home = Home(program, folder, state=os.path.join(disk, "state"))
        writer = Writer(home, problems, "the history's disk is full")
        writer.add()
        ballast = os.path.join(disk, "ballast")
        fill(ballast)
        writer.check_refused(writer.add_until_refused(), "No space left on device")
        os.unlink(ballast)
        writer.check_goes_on()
        problems.check(not home.torn_texts(), f"torn in the history: {home.torn_texts()}")


def check_forbidden(program, folder, problems):
    """Root, who may do anything, tries it as nobody."""
    user = NOBODY if os.geteuid() == 0 else None
    copy = shutil.copy(program, os.path.join(folder, "tessaly"))
    os.chmod(folder, 0o755)
    home = Home(copy, os.path.join(folder, "home"), user=user)
    writer = Writer(home, problems, "the folder may not be written")
    if user is not None:
        subprocess.run(["chown", "-R", f"{user}:{user}", home.folder], check=True)
    writer.check(writer.add().returncode == 0, "adding as another user fails")
    notes = os.path.join(home.data, "Notes")
    os.chmod(notes, 0o555)
    writer.check_refused(writer.add(), "Permission denied")
    before = home.files()
    for words in (["new", "A title"], ["add", "x", "--to", "Plan", "--mode", "overwrite"], ["trash", "Plan"]):
        ended = home.run(*words)
        writer.check(ended.returncode == 1 and home.files() == before, f"{words} in a folder of mode 555: {ended}")
    os.chmod(notes, 0o755)
    writer.check_goes_on()


def main():
    problems = Problems()
    program = os.path.realpath(sys.argv[1])
    if "--apart" not in sys.argv:  # there, other users are not known
        with tempfile.TemporaryDirectory(prefix="tessaly-forbidden-") as folder:
            check_forbidden(program, os.path.realpath(folder), problems)
        if problems.found:
            return problems.finish()
    if not may_mount():
        use_own_name_space()
        print("skipped: nothing can be mounted here")
        return problems.finish() or SKIPPED
    for check in (check_full_data, check_full_history):
        with tempfile.TemporaryDirectory(prefix="tessaly-full-") as folder:
            check(program, os.path.realpath(folder), problems)
    return problems.finish()


if __name__ == "__main__":
    sys.exit(main())
