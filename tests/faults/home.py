# SPDX-License-Identifier: MIT
"""The command in a home and with a data folder of its own, and what lies there afterwards."""

import hashlib
import os
import re
import shutil
import subprocess

NOW = "2019-12-31T12:00:00"
TIMEOUT = 60  # seconds, on a busy machine
TEMPORARY = re.compile(r"\.~.*\.[0-9a-z]+~", re.DOTALL)
# How the log's lines about failed changes begin.
FAILURE_LINES = (
    "could not create a local folder for saving the notes",
    "Could not make a filename or write a note",
    "Failed to trash note in first trial",
    "Failed to trash note in second trial",
    "error in uniqueFilename(): ",
    "error in localFolderExists(): ",
    "Error createFolderIfNonExisting: ",
    "Couldn't find a good filename",
    "couldn't create the url",
    "file does not exist",
    "Could not read and write into the note: ",
    "Could not write the journal: ",
)


class Problems:
    """What is wrong."""

    def __init__(self):
        self.checks = 0
        self.found = []

    def check(self, holds, text):
        self.checks += 1
        if not holds:
            self.found.append(text)
        return holds

    def finish(self):
        for text in self.found[:40]:
            print(f"FAILED: {text}")
        print(f"{self.checks} checks, {len(self.found)} failed")
        return 1 if self.found else 0


class Home:
    """A data folder, and beside it whatever the program keeps elsewhere."""

    def __init__(self, program, folder, data=None, state=None, user=None):
        self.program = program
        self.now = NOW  # what the program takes for the present
        self.locale = "C.UTF-8"
        self.folder = folder
        self.data = data or os.path.join(folder, "planner")
        self.state = state or os.path.join(folder, "state")
        self.user = user  # whose rights the program has; None: ours
        for needed in (self.data, self.state):
            os.makedirs(needed, mode=0o700, exist_ok=True)

    def environment(self, **more):
        return {
            "PATH": "/usr/bin:/bin", "HOME": self.folder, "LC_ALL": self.locale, "TZ": "UTC",
            "XDG_CONFIG_HOME": os.path.join(self.folder, "config"), "XDG_DATA_HOME": os.path.join(self.folder, "share"),
            "XDG_CACHE_HOME": os.path.join(self.folder, "cache"), "XDG_STATE_HOME": self.state,
            "GIO_USE_VFS": "local", **more,
        }

    def words(self, arguments):
        return [self.program, "--root", self.data, "--now", self.now, *arguments]

    def run(self, *arguments, **environment):
        return subprocess.run(self.words(arguments), env=self.environment(**environment), stdin=subprocess.DEVNULL,
                              capture_output=True, timeout=TIMEOUT, user=self.user, group=self.user,
                              extra_groups=None if self.user is None else [])

    def start(self, *arguments):
        """The process, under way; nobody reads what it says."""
        return subprocess.Popen(self.words(arguments), env=self.environment(), stdin=subprocess.DEVNULL,
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def files(self):
        """The bytes of all files in the data folder by path."""
        return {path: text for path, text in read_files(self.data)}

    def notes(self):
        return {path: text for path, text in self.files().items() if not is_temporary(path)}

    def leftovers(self):
        """Temporary files beside the notes."""
        return [path for path in self.files() if is_temporary(path)]

    def kept_texts(self):
        """What the history holds: bytes by hash, as the names of its files tell."""
        texts = os.path.join(self.state, "tessaly", "history", "texts")
        return {os.path.basename(path): text for path, text in read_files(texts) if not is_temporary(path)}

    def torn_texts(self):
        """Files of the history that are not what their names say."""
        return [name for name, text in self.kept_texts().items() if hashlib.sha256(text).hexdigest() != name]

    def listed_hashes(self):
        """The hashes in the history's index."""
        path = os.path.join(self.state, "tessaly", "history", "index")
        if not os.path.exists(path):
            return set()
        with open(path, "rb") as file:
            rows = [line.split(b"\t") for line in file.read().split(b"\n")]
        return {row[2].decode() for row in rows if len(row) == 5}

    def is_kept(self, text):
        """Whether the history has the text and an entry that leads to it."""
        name = hashlib.sha256(text).hexdigest()
        return self.kept_texts().get(name) == text and name in self.listed_hashes()

    def is_trashed(self, text):
        return text in (found for _, found in read_files(os.path.join(self.folder, "share", "Trash", "files")))

    def write(self, name, text):
        path = os.path.join(self.data, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(text)


def is_temporary(path):
    return TEMPORARY.fullmatch(os.path.basename(path)) is not None


def read_files(folder):
    """(path below `folder`, bytes) of every file; one that goes meanwhile is passed over."""
    for parent, _, names in os.walk(folder):
        for name in names:
            path = os.path.join(parent, name)
            try:
                with open(path, "rb") as file:
                    yield os.path.relpath(path, folder), file.read()
            except FileNotFoundError:
                pass


def copy_folder(source, target):
    shutil.rmtree(target, ignore_errors=True)
    shutil.copytree(source, target, symlinks=True)


def failure_lines(ended):
    """The lines of the log that tell of a failed change."""
    lines = ended.stderr.decode(errors="replace").splitlines()
    return [line for line in lines if line.startswith(FAILURE_LINES)]
