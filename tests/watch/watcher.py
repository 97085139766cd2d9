# SPDX-License-Identifier: MIT
"""`tessaly watch --json` under way, and what it has told."""

import json
import os
import signal
import subprocess
import threading

PATIENCE = 60  # seconds; for a build with sanitizers on a busy machine
MARKER = "Notes/The marker.txt"


class Watcher:
    """Records are kept in the order in which they came."""

    def __init__(self, home):
        self._root = os.path.realpath(home.data)
        self._process = subprocess.Popen(home.words(["watch", "--json"]), env=home.environment(), stdin=subprocess.DEVNULL,
                                         stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.pid = self._process.pid
        self._changed = threading.Condition()  # guards what follows
        self._records = []
        self._noise = []
        self._readers = [threading.Thread(target=self._read, args=rest, daemon=True) for rest in
                         ((self._process.stdout, lambda line: self._records.append(json.loads(line))),
                          (self._process.stderr, self._noise.append))]
        for reader in self._readers:
            reader.start()

    def _read(self, stream, take):
        for line in stream:
            with self._changed:
                take(line)
                self._changed.notify_all()

    def wait_for(self, holds, patience=PATIENCE):
        """Whether `holds(records)` comes true in time."""
        with self._changed:
            return self._changed.wait_for(lambda: holds(self._records), patience)

    def wait_until_ready(self):
        is_ready = self.wait_for(lambda _: any(line.startswith("Watching ") for line in self._noise))
        if not is_ready:
            raise RuntimeError(f"tessaly watch does not become ready: {self.noise()}")

    def finish(self, marker=MARKER):
        """Changes one more note, interrupts the watcher when that is told, and returns its exit status, the records
        of other notes, and the marker's batch."""
        count = len(self.records())
        write(os.path.join(self._root, marker), f"marker {count}")
        is_told = self.wait_for(lambda records: any(row["path"] == marker for row in records[count:]))
        self._process.send_signal(signal.SIGINT)
        status = self._process.wait(PATIENCE)
        for reader in self._readers:
            reader.join(PATIENCE)
        if not is_told:
            raise RuntimeError(f"the marker is not told: {self.noise()}")
        batch = next(row["batch"] for row in self._records[count:] if row["path"] == marker)
        return status, [row for row in self._records if row["path"] != marker], batch

    def records(self):
        with self._changed:
            return list(self._records)

    def noise(self):
        with self._changed:
            return "".join(self._noise)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._process.kill()
        self._process.wait()


def write(path, text):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as file:
        file.write(text if isinstance(text, bytes) else text.encode())
