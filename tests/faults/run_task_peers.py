#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""run_task_peers.py TESSALY [PEER…]: two of us schedule tasks into one day, which a peer writes, too.

Each task is marked once and has one copy; what the peer put its own version over is in the history. Then
all is undone, by two at once, and the day holds the peer's lines alone. PEER is one of run_peers.py.
"""

import collections
import os
import sys
import tempfile
import threading

sys.dont_write_bytecode = True

from home import Home, Problems
import run_peers

TASKS = 200  # of each of us
TRIES = run_peers.TRIES
DAY = "2020-01-03"
NOTE = "Calendar/20200103.txt"
SOURCES = {"Notes/Plan.txt": "", "Calendar/20191230.txt": " <2019-12-30"}  # and how their copies end


class TaskPeers(run_peers.Peers):
    note, text = NOTE, b"# Friday\n"

    def __init__(self, home, problems, has_peer):
        super().__init__(home, problems)
        if not has_peer:
            os.unlink(os.path.join(home.data, NOTE))
        for source in SOURCES:
            home.write(source, self.text_of(source, "* [ ] {}\n"))
        self.before = home.files()

    @staticmethod
    def names(source):
        return [f"{source[:5]} {index:03}" for index in range(TASKS)]

    def text_of(self, source, form):
        return "".join(form.format(name) for name in self.names(source)).encode()

    def at_once(self, works):
        threads = [threading.Thread(target=work) for work in works]
        for thread in threads:
            thread.start()
        return threads

    def do(self, *words):
        for _ in range(TRIES):
            ended = self.home.run(*words)
            if ended.returncode == 0:
                return
            self.refused += 1
            if not self.problems.check(b"other programs change it" in ended.stderr, f"{words}: {ended.stderr.decode()}"):
                return
        self.problems.check(False, f"{words} fails {TRIES} times")

    def schedule(self, source):
        for index in range(1, TASKS + 1):
            self.do("schedule", f"{source}:{index}", DAY)

    def schedule_beside(self, words):
        peer = self.at_once([lambda: self.be_peer(words)]) if words else []
        for thread in self.at_once([lambda source=source: self.schedule(source) for source in SOURCES]):
            thread.join()
        self.done.set()
        for thread in peer:
            thread.join()

    def undo_all(self, status):
        def undo():
            for _ in range(4 * TASKS):
                ended = self.home.run("undo")
                if b"nothing to undo" in ended.stderr:
                    return
                well = ended.returncode in status or b"undone already" in ended.stderr  # by the other one
                self.problems.check(well, f"undo: {ended.returncode} {ended.stderr.decode()}")
        for thread in self.at_once([undo, undo]):
            thread.join()

    def kept(self):
        return {line for text in self.home.kept_texts().values() for line in text.decode().splitlines()}

    def check_lines(self, where, wanted, may_be_away):
        """Each of these lines stands once in the day; how many are in the history only."""
        check, kept = self.problems.check, self.kept()
        lines = collections.Counter(self.home.files().get(NOTE, b"").decode().splitlines())
        away = [line for line in wanted if lines[line] == 0]
        check(not [line for line in away if line not in kept], f"{where}: lost: {away[:3]}")
        check(not away or may_be_away, f"{where}: {len(away)} lines are gone from the day: {away[:3]}")
        doubled = [line for line, count in lines.items() if count > 1]
        check(not doubled, f"{where}: doubled: {doubled[:3]}")
        strange = set(lines) - set(wanted) - {"# Friday"}
        check(not strange, f"{where}: nobody's: {sorted(strange)[:3]}")
        return len(away)

    def check_scheduled(self, name):
        for source in SOURCES:
            is_marked = self.home.files()[source] == self.text_of(source, f"* [>] {{}} >{DAY}\n")
            self.problems.check(is_marked, f"beside {name}: not every task of {source} is marked")
        copies = [f"* {task}{link}" for source, link in SOURCES.items() for task in self.names(source)]
        ours = self.check_lines(f"beside {name}", copies + self.written[2], name not in ("nobody", "shell"))
        print(f"beside {name}: {len(self.written[2])} lines of the peer; {ours} lines in the history only; "
              f"{self.refused} times no time was left", flush=True)

    def check_undone(self, name):
        files, where = self.home.files(), f"undone beside {name}"
        if name == "nobody":
            self.problems.check(files == self.before, f"{where}: {sorted(set(files) ^ set(self.before))} are others")
        for source in SOURCES:
            self.problems.check(files[source] == self.before[source], f"{where}: {source} is not as before")
        self.check_lines(where, self.written[2], name != "nobody")
        self.problems.check(not self.home.leftovers(), f"{where}: left {self.home.leftovers()}")
        self.problems.check(not self.home.torn_texts(), f"{where}: torn: {self.home.torn_texts()}")


def main():
    problems = Problems()
    for name in sys.argv[2:] or run_peers.PEERS:
        with tempfile.TemporaryDirectory(prefix="tessaly-peers-") as folder:
            words = run_peers.PEERS[name]
            peers = TaskPeers(Home(os.path.realpath(sys.argv[1]), os.path.realpath(folder)), problems, words is not None)
            peers.schedule_beside(words)
            peers.check_scheduled(name)
            # Where a peer took a copy away, that scheduling cannot be undone in full.
            peers.undo_all(status=(0, 1) if name in ("editor", "sed") else (0,))
            peers.check_undone(name)
    return problems.finish()


if __name__ == "__main__":
    sys.exit(main())
