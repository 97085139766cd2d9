# SPDX-License-Identifier: MIT
"""Notes that are held in memory and watched: how soon a change is seen, and what watching costs."""

import json
import os
import shutil
import statistics
import subprocess
import tempfile
import time

from cold_pages import drop, files_of, share_in_memory
from goals import Row, answer
from process_goals import Programs, pairs, ratio_row

EDITS = 200
EDITED_AT_ONCE = 1000
SMALL, BIG = 1200, 1 << 20  # bytes of a note that is edited
BIG_NOTES = 8
TICKS = os.sysconf("SC_CLK_TCK")


def git(root, *words):
    settings = ("core.untrackedCache=false", "core.fsmonitor=false", "gc.auto=0", "user.name=bench", "user.email=bench")
    return ["git", "-C", root, *(part for setting in settings for part in ("-c", setting)), *words]


def sizes(programs, root):
    found = json.loads(programs.output(programs.load_notes(root, "read")))
    return {key: found[key] for key in ("files", "bytes")}


def copy_of(programs, corpus, folder):
    """A copy below the build folder, under git, as it was when it was made; it is kept for the next run."""
    expected = sizes(programs, corpus)
    if os.path.isdir(folder):
        programs.output(git(folder, "checkout", "--quiet", "--force", "."))
        programs.output(git(folder, "clean", "--quiet", "--force"))
        if sizes(programs, folder) == expected:
            return folder
        shutil.rmtree(folder)
    unfinished = folder + ".new"
    shutil.rmtree(unfinished, ignore_errors=True)
    os.makedirs(os.path.dirname(folder), exist_ok=True)
    programs.output(["cp", "-a", corpus, unfinished])
    programs.output(git(unfinished, "init", "--quiet"))
    programs.output(git(unfinished, "add", "--all"))
    programs.output(git(unfinished, "commit", "--quiet", "--message", "notes"))
    os.rename(unfinished, folder)
    return folder


class LiveNotes:
    """The program that holds a copy's notes, watches it, and does what is timed when it is asked to."""

    def __init__(self, build, root):
        command = [os.path.join(build, "bin", "live_notes"), root]
        self._process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.started = self._answer()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._process.stdin.close()
        self._process.wait()

    def ask(self, *words):
        print(*words, file=self._process.stdin, flush=True)
        return self._answer()

    def _answer(self):
        line = self._process.stdout.readline()
        if not line:
            raise RuntimeError(f"live_notes ended with status {self._process.wait()}")
        return json.loads(line)


def percentile(times, share):
    ordered = sorted(times)
    return ordered[min(len(ordered) - 1, int(len(ordered) * share))]


def edit_rows(live, size, name, limit, words):
    """The limit is a time: the ratio to it is what is measured."""
    found = live.ask("edit", *words)
    times = found["times"] or [float("inf")]
    half, p95 = percentile(times, 0.5), percentile(times, 0.95)
    detail = f"p95 {p95:.2f} ms, median {half:.2f} ms, slowest {max(times):.2f} ms"
    rows = [
        answer(f"{size}: edits of {name} seen", EDITS, found["seen"]),
        Row(f"{size}: a changed note of {name} is seen, p95 / {limit} ms", p95 / limit, 1, detail=detail),
    ]
    return rows, half


def many_rows(live, size, rounds):
    live.ask("many", EDITED_AT_ONCE)
    found = [live.ask("many", EDITED_AT_ONCE) for _ in range(rounds)]
    times = [tuple([milliseconds / 1e3 for milliseconds in one[side]] for side in ("batch", "read")) for one in found]
    return [
        answer(f"{size}: notes changed at once seen", EDITED_AT_ONCE, min(one["seen"] for one in found)),
        ratio_row(f"{size}: {EDITED_AT_ONCE} changed notes / reading them", 2, times),
    ]


def folders_of(root):
    return sum(1 for kind in ("Calendar", "Notes") for _ in os.walk(os.path.join(root, kind)))


def rescan_rows(programs, live, build, root, size, count):
    """Ours in the process that watches, which holds what git reads from its index; and as a whole process."""
    status = git(root, "status", "--porcelain")
    time.sleep(1.1)  # else git takes the files for changed, as young as the index
    clean = programs.output(status)
    looks = []

    def rescan():
        looks.append(live.ask("rescan"))
        return [milliseconds / 1e3 for milliseconds in looks[-1]["rescan"]]

    in_process = pairs(rescan, lambda: programs.times(status), count)
    look = [os.path.join(build, "bin", "live_notes"), root, "look"]
    whole = programs.pairs(look, status, count)
    rows = [
        answer(f"{size}: git finds no change", "", clean),
        answer(f"{size}: folders looked at", folders_of(root), min(one["folders"] for one in looks)),
        ratio_row(f"{size}: rescan, nothing changed / git status", 1, in_process),
        ratio_row(f"{size}: one look, from start to exit / git status", None, whole),
    ]
    return rows, statistics.median(ours[0] for ours, _ in in_process)


class Watcher:
    """`tessaly watch` while it runs."""

    def __init__(self, programs, root):
        self._process = programs.watch(root)
        self.ready = next((line for line in self._process.stderr if line.startswith("Watching ")), None)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._process.terminate()
        self._process.stderr.close()
        self._process.wait()

    def peak(self):
        """Bytes of memory, at the most up to now."""
        with open(f"/proc/{self._process.pid}/status", encoding="utf-8") as file:
            line = next(line for line in file if line.startswith("VmHWM:"))
        return int(line.split()[1]) * 1024

    def seconds_of_cpu(self):
        with open(f"/proc/{self._process.pid}/stat", encoding="utf-8") as file:
            fields = file.read().rpartition(")")[2].split()
        return (int(fields[11]) + int(fields[12])) / TICKS


def share_of_core(watcher, seconds):
    """In per cent, over so many seconds in which nothing changes."""
    began, before = time.monotonic(), watcher.seconds_of_cpu()
    time.sleep(seconds)
    return 100 * (watcher.seconds_of_cpu() - before) / (time.monotonic() - began)


def peak_after(programs, root, seconds):
    """Of a watcher that has been ready for so long."""
    with Watcher(programs, root) as watcher:
        time.sleep(seconds)
        return watcher.peak()


def memory_rows(programs, roots):
    """And bytes for a note, by size, beside what a process without notes takes."""
    with tempfile.TemporaryDirectory() as empty:
        for kind in ("Calendar", "Notes"):
            os.mkdir(os.path.join(empty, kind))
        bare = peak_after(programs, empty, 3)
    rows, notes = [], {}
    for size, root in roots.items():
        held, peak = sizes(programs, root), peak_after(programs, root, 8)
        notes[size] = (peak - bare) / held["files"]
        limit = 1.6 + 25e6 / held["bytes"]
        detail = f"{peak / 1e6:.1f} MB for {held['bytes'] / 1e6:.1f} MB; {bare / 1e6:.1f} MB without notes"
        rows.append(Row(f"{size}: peak of memory / the notes' bytes", peak / held["bytes"], round(limit, 2), detail=detail))
    return rows, notes


def idle_rows(programs, size, root, seconds):
    """With what it does a second after it is ready left out."""
    with Watcher(programs, root) as watcher:
        time.sleep(2)
        share = share_of_core(watcher, seconds)
    detail = (watcher.ready or "never ready").split(" in ")[0]
    return [Row(f"{size}: idle watcher, of a core over {seconds} s", share if watcher.ready else None, 0.5, unit="%", detail=detail)]


def cold_rows(programs, size, corpus, count, limit):
    """Both begin with the names of the files in memory, but none of their pages."""
    os.sync()
    paths = files_of(corpus)
    sample = paths[::max(1, len(paths) // 500)]
    shares = []

    def cold(command):
        drop(paths)
        shares.append(share_in_memory(sample))
        return programs.times(command)

    load, search = programs.load_notes(corpus, "load"), programs.search(corpus)
    times = pairs(lambda: cold(load), lambda: cold(search), count)
    return [
        Row(f"{size}: pages in memory before a cold run", 100 * max(shares), 1, unit="%"),
        ratio_row(f"{size}: load / rg, cold pages", limit, times),
    ]


def growth(name, limit, large, medium, detail=""):
    return Row(f"{name}: large / medium", large / medium, limit, detail=detail)


def held_rows(programs, build, size, corpus, count):
    """What is done in a process that holds and watches the notes; and, for growth, what two of them take."""
    root = copy_of(programs, corpus, os.path.join(os.path.abspath(build), "live", size))
    with LiveNotes(build, root) as live:
        rescans, seconds = rescan_rows(programs, live, build, root, size, count)
        edits, half = edit_rows(live, size, "1.2 KB", 2, (SMALL, EDITS, EDITS))
        big_edits, _ = edit_rows(live, size, "1 MB", 5, (BIG, EDITS, BIG_NOTES))
        rows = rescans + edits + big_edits + many_rows(live, size, count)
    return rows, {"edit": half, "rescan": seconds / sizes(programs, corpus)["files"]}


def growth_rows(large, medium):
    goals = (("a changed note is seen, median", "edit", 1.2), ("rescan, cost of a note", "rescan", 1.1),
             ("memory, cost of a note", "memory", 1.1))
    return [Row(f"{name}: large / medium", large[key] / medium[key], limit) for name, key, limit in goals]


def live_rows(build, medium, large, count, seconds):
    corpora = {"medium": medium, **({"large": large} if large else {})}
    found = {}
    with tempfile.TemporaryDirectory() as folder:
        programs = Programs(build, folder)
        rows = cold_rows(programs, "medium", medium, count, 0.6)
        if large:
            rows += cold_rows(programs, "large", large, 3, None)
        for size, corpus in corpora.items():
            more, found[size] = held_rows(programs, build, size, corpus, count)
            rows += more
        more, notes = memory_rows(programs, corpora)
        rows += more + idle_rows(programs, size, corpus, seconds)
    for size, taken in notes.items():
        found[size]["memory"] = taken
    return rows + (growth_rows(found["large"], found["medium"]) if large else [])
