# SPDX-License-Identifier: MIT
"""Runs the command in a home of its own, and gathers what is wrong."""

import json
import os
import subprocess

TIMEOUT = 60  # seconds; for a build with sanitizers on a busy machine
NOW = "2019-12-31T12:00:00"


class Checks:
    def __init__(self):
        self.count = 0
        self.problems = []

    def check(self, holds, text):
        self.count += 1
        if not holds:
            self.problems.append(text)

    def finish(self):
        for problem in self.problems:
            print(f"FAILED: {problem}")
        print(f"{self.count} checks, {len(self.problems)} failed")
        return 1 if self.problems else 0


class Command:
    """The program, with `home` in place of the user's own folders."""

    def __init__(self, program, home, checks, **env):
        folders = {f"XDG_{kind}_HOME": os.path.join(home, kind.lower()) for kind in ("CONFIG", "CACHE", "STATE", "DATA")}
        self._program = program
        self._checks = checks
        self._env = {**os.environ, "HOME": home, "XDG_RUNTIME_DIR": home, "LC_ALL": "C.UTF-8", "TZ": "UTC", **folders, **env}

    def with_env(self, **env):
        other = Command.__new__(Command)
        other._program, other._checks, other._env = self._program, self._checks, {**self._env, **env}
        return other

    def run(self, root, *arguments):
        """Standard output; None when the run itself went wrong, which is noted."""
        words = [self._program, "--root", root, "--now", NOW, *arguments]
        shown = f"tessaly {' '.join(map(repr, arguments))} on {root!r}"
        try:
            ended = subprocess.run(words, env=self._env, stdin=subprocess.DEVNULL, capture_output=True, timeout=TIMEOUT)
        except subprocess.TimeoutExpired:
            self._checks.check(False, f"{shown}: still running after {TIMEOUT} s")
            return None
        noise = ended.stderr.decode(errors="replace")
        self._checks.check(ended.returncode in (0, 1), f"{shown}: ended with {ended.returncode}: {noise[-2000:]}")
        self._checks.check(ended.returncode == 0 or noise.strip(), f"{shown}: no reason on standard error")
        faulty = "Sanitizer" in noise or "runtime error:" in noise or "assertion" in noise.lower()
        self._checks.check(not faulty, f"{shown}: {noise[-4000:]}")
        return ended.stdout

    def records(self, root, *arguments):
        """The objects that --json prints."""
        output = self.run(root, *arguments, "--json")
        if output is None:
            return []
        try:
            return [json.loads(line) for line in output.decode("utf-8").splitlines()]
        except ValueError as error:  # also what is no UTF-8
            self._checks.check(False, f"{arguments} --json on {root!r}: {error}")
            return []
