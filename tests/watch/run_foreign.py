#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""run_foreign.py TESSALY MAKER [FOLDER...]: who opens a folder and watches it, changes nothing in it.

The folders are the one that MAKER makes to do harm, a planner, and copies of those that are named. In each
one note is changed while it is watched; everything else stays as it was, to the inode's change time.
"""

import os
import random
import shutil
import signal
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True
HERE = os.path.dirname(os.path.realpath(__file__))
sys.path[1:1] = [os.path.join(HERE, "..", folder) for folder in ("faults", "life", "hostile")]

from home import Home, Problems
from planner import make_planner
from run_hostile import snapshot, unlock
from watcher import Watcher, write

VISITED = "Notes/visited.txt"


def watch(problems, home, above):
    """`above` is what must stay as it is, but for one note of the data folder in it."""
    visited = os.path.join(home.data, VISITED)
    write(visited, "before")
    before = snapshot(above)
    with Watcher(home) as watcher:
        watcher.wait_until_ready()
        status, told, _ = watcher.finish(VISITED)
        problems.check(status == -signal.SIGINT, f"{home.data}: ended with {status}: {watcher.noise()[-2000:]}")
    problems.check(not told, f"{home.data}: told {told[:9]}")
    after = snapshot(above)
    changed = {path for path in before.keys() | after.keys() if before.get(path) != after.get(path)}
    changed.discard(os.fsencode(visited))
    problems.check(not changed, f"{home.data}: changed {sorted(map(str, changed))[:9]}")


def main():
    program, maker, *named = map(os.path.realpath, sys.argv[1:])
    problems = Problems()
    with tempfile.TemporaryDirectory(prefix="tessaly-foreign-") as folder:
        folder = os.path.realpath(folder)
        above = os.path.join(folder, "hostile")
        subprocess.run([sys.executable, maker, above], check=True, stdout=subprocess.DEVNULL)
        make_planner(os.path.join(folder, "planner", "data"), random.Random(1))
        for number, source in enumerate(named):
            shutil.copytree(source, os.path.join(folder, f"named {number}", "data"), symlinks=True)
        try:
            for name in sorted(os.listdir(folder)):
                place = os.path.join(folder, name)
                watch(problems, Home(program, os.path.join(folder, "home"), data=os.path.join(place, "data")), place)
        finally:
            unlock(folder)
    return problems.finish()


if __name__ == "__main__":
    sys.exit(main())
