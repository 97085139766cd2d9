# SPDX-License-Identifier: MIT
"""Two devices with a data folder each, which Syncthing keeps in step while they are connected."""

import json
import os
import re
import sys

from home import Home
from syncthing import Syncthing, wait_for
from watcher import Watcher, write

COPY = re.compile(r"(.*)\.sync-conflict-\d{8}-\d{6}-[A-Z2-7]{7}(\.[^./]*)")
KINDS = ("Notes/", "Calendar/")


def note_of(path):
    """The note that the conflict copy is a version of; None: it is no copy."""
    found = COPY.fullmatch(path)
    return found and found[1] + found[2]


class Device(Home):
    """With the time of the day, unlike tests that need no peer."""

    def __init__(self, name, program, folder):
        os.makedirs(folder)
        super().__init__(program, folder)
        self.name = name
        self.sync = Syncthing(name, folder, self.data)
        self.watcher = None
        os.makedirs(os.path.join(self.data, ".stfolder"))

    def words(self, arguments):
        return [self.program, "--root", self.data, *arguments]

    def path(self, name):
        return os.path.join(self.data, name)

    def texts(self):
        """Of notes and conflict copies, by path."""
        return {path: text.decode() for path, text in self.files().items()
                if path.startswith(KINDS) and not os.path.basename(path).startswith((".", "~"))}

    def text(self, name):
        return self.texts().get(name)

    def put(self, name, text):
        """As another program than ours would."""
        write(self.path(name), text)

    def copies(self, note):
        return sorted(path for path in self.texts() if note_of(path) == note)

    def conflicted(self):
        return {note_of(path) for path in self.texts()} - {None}

    def records(self, *arguments):
        ended = self.run(*arguments, "--json")
        if ended.returncode not in (0, 1):
            raise RuntimeError(f"{self.name}: tessaly {' '.join(arguments)}: {ended.stderr.decode()}")
        return [json.loads(line) for line in ended.stdout.splitlines()]

    def do(self, *arguments):
        """A change that must succeed."""
        ended = self.run(*arguments)
        if ended.returncode != 0:
            raise RuntimeError(f"{self.name}: tessaly {' '.join(arguments)}: {ended.stdout.decode()}{ended.stderr.decode()}")

    def kept_lines(self):
        return {line for text in self.kept_texts().values() for line in text.decode().splitlines()}


class Pair:
    """Starts both and their watchers; what fails inside tells what was there."""

    def __init__(self, program, folder, **options):
        self._options = options
        self.devices = [Device(name, program, os.path.join(folder, f"device {name}")) for name in ("A", "B")]
        self._written = set()  # (line, name of the device)

    def __enter__(self):
        a, b = self.devices
        try:
            a.sync.start(b.sync, **self._options)
            b.sync.start(a.sync, **self._options)
            for device in self.devices:
                device.watcher = Watcher(device)
            for device in self.devices:
                wait_for(device.sync.is_up, f"Syncthing {device.name} answers")
            self._await_connection(True)
            for device in self.devices:
                device.watcher.wait_until_ready()
        except BaseException:
            self.__exit__(*sys.exc_info())
            raise
        return self

    def __exit__(self, kind, failure, _):
        if kind is not None:
            print(f"FAILED: {kind.__name__}: {failure}\n{self.picture()}", flush=True)
        for device in self.devices:
            if device.watcher:
                device.watcher.__exit__()
            device.sync.terminate()
        for device in self.devices:
            device.sync.wait()

    def _await_connection(self, wanted):
        a, b = (device.sync for device in self.devices)
        wait_for(lambda: a.is_connected(b) == b.is_connected(a) == wanted, f"being connected is {wanted}")

    def disconnect(self):
        a, b = (device.sync for device in self.devices)
        a.pause(b)
        self._await_connection(False)

    def connect(self):
        """Each knows what has changed on its side by then."""
        self.note_lines()
        a, b = (device.sync for device in self.devices)
        for sync in (a, b):
            sync.scan()
        a.resume(b)
        self._await_connection(True)

    def send(self):
        """What has changed while connected."""
        self.note_lines()
        for device in self.devices:
            device.sync.scan()

    def settle(self, holds, what):
        """Waits until both have the same notes, for which `holds(texts)`, and nothing is under way."""
        a, b = self.devices

        def is_settled():
            texts = a.texts()
            return texts == b.texts() and holds(texts) and a.sync.is_idle() and b.sync.is_idle() and texts == b.texts()
        wait_for(is_settled, what)

    def note_lines(self):
        """All that stands anywhere now was written by somebody, and must never be lost."""
        for device in self.devices:
            self._written |= {(line, device.name) for text in device.texts().values() for line in text.splitlines()}

    def lost_lines(self):
        """Those that are in no note and in nobody's history."""
        found = set()
        for device in self.devices:
            found |= device.kept_lines()
            found |= {line for text in device.texts().values() for line in text.splitlines()}
        return sorted((line, name) for line, name in self._written if line not in found)

    def picture(self):
        """What lies in the folders, and what was said last."""
        parts = []
        for device in self.devices:
            parts.append(f"=== device {device.name}")
            parts += [f"--- {path}\n{text}" for path, text in sorted(device.texts().items())]
            if device.watcher:
                parts.append(f"--- watcher\n{device.watcher.noise()[-2000:]}")
                parts += [json.dumps(row) for row in device.watcher.records()[-20:]]
            parts.append(f"--- Syncthing\n{device.sync.log_tail()}")
        return "\n".join(parts)
