# SPDX-License-Identifier: MIT
"""A data folder under the eyes of git."""

import os
import subprocess


class Git:
    """Tells which files of a folder are not what they were at the start."""

    def __init__(self, root):
        self.root = root
        self.run("init", "--quiet")
        for key, value in {"core.autocrlf": "false", "core.quotePath": "false", "user.name": "life", "gc.auto": "0",
                           "user.email": "life@example.org"}.items():
            self.run("config", key, value)
        self.run("add", "--all", "--force")
        self.run("commit", "--quiet", "--message", "start")

    def run(self, *words):
        # Neither the user's settings nor an outer repository.
        environment = {"PATH": "/usr/bin:/bin", "HOME": "/nonexistent", "GIT_CONFIG_NOSYSTEM": "1", "LC_ALL": "C.UTF-8"}
        return subprocess.run(["git", "-C", self.root, *words], env=environment, check=True, capture_output=True).stdout

    def changed(self):
        rows = self.run("status", "--porcelain", "-z", "--no-renames", "--untracked-files=all").split(b"\0")
        return {os.fsdecode(row[3:]) for row in rows if row}
