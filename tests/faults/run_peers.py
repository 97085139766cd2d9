#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""run_peers.py TESSALY [PEER…]: two of us and a peer write one note at once.

No line that anybody wrote may be lost: it is in the note at the end, or in one of the texts that the
history keeps (where the peer put its own version, made of an older one, over ours). PEER is a name
from the table below; without one, all are tried.
"""

import collections
import os
import subprocess
import sys
import tempfile
import threading

sys.dont_write_bytecode = True

from home import Home, Problems

LINES = 200  # that each of us adds, and the peer at most
PAUSE = 0.02  # seconds between two lines of the peer
TRIES = 10  # when the peer leaves us no time, which add then says
NOTE = "Notes/Plan.txt"

RENAME = """
import os, sys
path, line = sys.argv[1:]
with open(path) as file:
    text = file.read()
new = f"{path}.peer"
with open(new, "w") as file:
    file.write(text + line + "\\n")
os.rename(new, path)
"""
# How each adds LINE to NOTE.
PEERS = {
    "nobody": None,
    "editor": [sys.executable, "-S", "-c", RENAME, "NOTE", "LINE"],
    "sed": ["sed", "-i", "1a LINE", "NOTE"],
    "shell": ["sh", "-c", "printf '%s\\n' \"$2\" >>\"$1\"", "sh", "NOTE", "LINE"],
}


class Peers:
    note, text = NOTE, b"# Plan\n"  # that all write, and how it begins

    def __init__(self, home, problems):
        self.home, self.problems = home, problems
        self.written = [[], [], []]  # lines, of the two of us and of the peer
        self.refused = 0
        self.done = threading.Event()
        home.write(self.note, self.text)

    def add_lines(self, who):
        for index in range(LINES):
            line = f"* [ ] ours {who} {index:03}"
            if self.problems.check(self.is_added(line), f"add fails {TRIES} times"):
                self.written[who].append(line)

    def is_added(self, line):
        for _ in range(TRIES):
            ended = self.home.run("add", line, "--to", "Plan")
            if ended.returncode == 0:
                return True
            self.refused += 1
            self.problems.check(b"other programs change it" in ended.stderr, f"add fails: {ended.stderr.decode()}")
        return False

    def be_peer(self, words):
        path = os.path.join(self.home.data, self.note)
        while not self.done.is_set() and len(self.written[2]) < LINES:
            line = f"* [ ] peer {len(self.written[2]):04}"
            command = [word.replace("LINE", line).replace("NOTE", path) for word in words]
            subprocess.run(command, check=True)
            self.written[2].append(line)
            self.done.wait(PAUSE)

    def run(self, words):
        ours = [threading.Thread(target=self.add_lines, args=(who,)) for who in (0, 1)]
        peer = threading.Thread(target=self.be_peer, args=(words,)) if words else None
        for thread in (*ours, peer) if peer else ours:
            thread.start()
        for thread in ours:
            thread.join()
        self.done.set()
        if peer:
            peer.join()

    def check(self, name):
        lines = collections.Counter(self.home.files()[NOTE].decode().splitlines())
        kept = {line for text in self.home.kept_texts().values() for line in text.decode().splitlines()}
        written = [line for who in self.written for line in who]
        lost = [line for line in written if lines[line] == 0 and line not in kept]
        self.problems.check(not lost, f"beside {name}: {len(lost)} lines are lost, the first: {lost[:3]}")
        doubled = [line for line in written if lines[line] > 1]
        self.problems.check(not doubled, f"beside {name}: {len(doubled)} lines are doubled, the first: {doubled[:3]}")
        away = sum(lines[line] == 0 for line in written)
        if name == "nobody":
            self.problems.check(away == 0, f"without a peer {away} lines are gone from the note")
        self.problems.check(not self.home.leftovers(), f"beside {name}: left {self.home.leftovers()}")
        self.problems.check(not self.home.torn_texts(), f"beside {name}: torn: {self.home.torn_texts()}")
        print(f"beside {name}: {len(self.written[2])} lines of the peer; of all, {away} in the history only; "
              f"{self.refused} times no time was left", flush=True)


def main():
    problems = Problems()
    for name in sys.argv[2:] or PEERS:
        with tempfile.TemporaryDirectory(prefix="tessaly-peers-") as folder:
            peers = Peers(Home(os.path.realpath(sys.argv[1]), os.path.realpath(folder)), problems)
            peers.run(PEERS[name])
            peers.check(name)
    return problems.finish()


if __name__ == "__main__":
    sys.exit(main())
