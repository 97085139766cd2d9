#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""A second start with the start-up index shows what a first one does, whatever has become of notes and index.

    run_index.py PROGRAM
"""
import os
import pathlib
import subprocess
import sys
import tempfile
import time

NOTES = 1200
PATIENCE = 120  # seconds; the writer has the lowest priority


class Home:
    def __init__(self, program, folder):
        self.program = program
        self.folder = pathlib.Path(folder)
        self.notes = self.folder / "data/org.tessaly.tessaly/Notes"
        self.notes.mkdir(parents=True)
        for number in range(NOTES):
            day = 1 + number % 28
            (self.notes / f"Note {number}.txt").write_text(f"# Note {number}\n* Call {number:04} >2019-03-{day:02}\n")

    def run(self, *words):
        environment = {"HOME": str(self.folder), "LC_ALL": "C.UTF-8", "TZ": "UTC", "PATH": "/usr/bin:/bin"}
        for name in ("config", "data", "state", "cache"):
            environment[f"XDG_{name.upper()}_HOME"] = str(self.folder / name)
        return subprocess.run([self.program, "--now", "2019-03-05T12:00", *words], env=environment, text=True,
                              capture_output=True, timeout=PATIENCE)

    def today(self):
        result = self.run("today")
        assert result.returncode == 0, result.stderr
        return result

    def index(self):
        """None: it is not there yet. A file that is still being written has another name."""
        folder = self.folder / "cache/tessaly/index"
        names = [name for name in os.listdir(folder) if name.isalnum()] if folder.is_dir() else []
        assert len(names) <= 1, names
        return folder / names[0] if names else None

    def awaited_index(self):
        end = time.monotonic() + PATIENCE
        while self.index() is None:
            assert time.monotonic() < end, "nobody has written the index"
            time.sleep(0.05)
        return self.index()


def change_secretly(path, before, after):
    """In place, with the same size and date."""
    state = path.stat()
    data = path.read_bytes()
    assert before in data and len(before) == len(after)
    with open(path, "r+b") as file:
        file.write(data.replace(before, after))
    os.utime(path, ns=(state.st_atime_ns, state.st_mtime_ns))
    assert path.stat().st_mtime_ns == state.st_mtime_ns and path.stat().st_size == state.st_size


def main(program):
    with tempfile.TemporaryDirectory() as folder:
        home = Home(program, folder)
        time.sleep(2.5)  # so that the states of the files have lain still
        first = home.today()
        assert first.stdout.count("Call") > 10, first.stdout
        index = home.awaited_index()
        held = home.run("doctor").stdout
        assert f"start-up index: {NOTES}" in held and str(index) in held, held
        second = home.today()
        assert (second.stdout, second.stderr) == (first.stdout, first.stderr)

        change_secretly(home.notes / "Note 4.txt", b"Call 0004", b"Ring 0004")
        expected = first.stdout.replace("Call 0004", "Ring 0004")
        assert expected != first.stdout
        assert home.today().stdout == expected

        whole = index.read_bytes()
        for damaged in (whole[:-1], whole[: len(whole) // 2], b"garbage", whole[:-40] + b"x" * 40):
            index.write_bytes(damaged)
            told = home.today()
            assert told.stdout == expected, told.stdout
            assert told.stderr.count("start-up index thrown away: ") == 1, told.stderr
            index = home.awaited_index()

        assert home.run("settings", "set", "isStartUpIndex", "off").returncode == 0
        assert home.today().stdout == expected
        assert home.index() is None
        refused = home.run("index")
        assert refused.returncode == 1 and "isStartUpIndex" in refused.stderr, refused.stderr
        time.sleep(0.5)
        assert home.index() is None


if __name__ == "__main__":
    main(sys.argv[1])
