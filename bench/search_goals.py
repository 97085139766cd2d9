# SPDX-License-Identifier: MIT
"""Search as you type, among notes that are held in memory: what a letter costs, and a newer one."""

import json
import os
import statistics
import subprocess
import tempfile
import unicodedata

from goals import Row, answer
from live_goals import percentile
from naive_notes import note_files
from process_goals import Programs

WORDS = ("meeting", "zanzibarite", "quokkafjord", "grünewäldchen", unicodedata.normalize("NFD", "grünewäldchen"),
         "機密会議録", "call bob", "purple elephant parade")
TAGS = ("#needle/tagged", "@needleperson")
OPERATORS = ("is:open on:today meeting", "-call title:meeting in:work", '"purple elephant" before:2019-06-01')
BAD = ("e e e e e e e e e", "-a", '"', "is:open", "before:2019-12-31", "a" * 1000)
AGAINST = ("meeting", "zanzibarite")  # the whole word, and one process that looks for it in the files
FEW, SOME = 16, 8  # ms: one or two letters, and more
LARGE = 60


class SearchNotes:
    """The program that holds the notes and searches them."""

    def __init__(self, build, root):
        command = [os.path.join(build, "bin", "search_notes"), root]
        self._process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.ready = self._answer()["ready"]

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
            raise RuntimeError(f"search_notes ended with status {self._process.wait()}")
        return json.loads(line)


def folded(text):
    return unicodedata.normalize("NFC", unicodedata.normalize("NFC", text).lower())


def files_with(root, words):
    """In how many notes each occurs in some line, by reading them the plain way."""
    wanted = {word: folded(word) for word in words}
    found = dict.fromkeys(words, 0)
    for folder in ("Calendar", "Notes"):
        for path, _ in note_files(root, folder):
            with open(path, "rb") as file:
                try:
                    text = folded(file.read().decode("utf-8"))
                except UnicodeDecodeError:
                    continue
            for word, sought in wanted.items():
                found[word] += sought in text
    return found


def answer_rows(search, size, root):
    words = [word for word in WORDS if " " not in word]
    found = {word: search.ask("find", word)["notes"] for word in words}
    return [answer(f"{size}: notes with each word", files_with(root, words), found)]


def time_row(name, limit, times, cpu):
    """The limit is a time: the ratio to it is what is measured."""
    p95, median = percentile(times, 0.95), statistics.median(times)
    detail = f"p95 {p95:.1f} ms, median {median:.1f} ms, slowest {max(times):.1f} ms; of CPU, p95 {percentile(cpu, 0.95):.1f} ms"
    return Row(f"{name}, p95 / {limit} ms", p95 / limit, 1, detail=detail)


def typed_rows(search, size, few_limit, limit, rounds):
    times = {"1-2 letters": ([], []), "more letters": ([], [])}
    for text in WORDS + TAGS + OPERATORS:
        found = search.ask("type", rounds, text)
        for letter, (passed, cpu) in enumerate(zip(found["times"], found["cpu"])):
            kind = times["1-2 letters" if letter < 2 else "more letters"]
            kind[0].extend(passed)
            kind[1].extend(cpu)
    limits = {"1-2 letters": few_limit, "more letters": limit}
    return [time_row(f"{size}: a letter typed, {kind}", limits[kind], *times[kind]) for kind in times]


def peer_rows(programs, search, size, root, count):
    """Searching memory for a word at once, beside a process that looks for it in the files, in the same run."""
    rows = []
    for word in AGAINST:
        whole = statistics.median(search.ask("whole", count, word)["times"][0]) / 1e3
        peer = statistics.median(programs.times(["rg", "-i", word, root])[0] for _ in range(count))
        detail = f"{whole * 1e3:.1f} ms against {peer * 1e3:.0f} ms"
        rows.append(Row(f"{size}: {word} in memory / rg -i {word}", whole / peer, 0.1, detail=detail))
    return rows


def bad_rows(search, size, limit, rounds):
    """Searches that match nearly everything, or cost much for nothing; whole, not typed."""
    rows = []
    for text in BAD:
        found = search.ask("whole", rounds, text)
        name = text if len(text) < 40 else f"{text[:3]}… of {len(text)} letters"
        rows.append(time_row(f"{size}: {name}", limit, found["times"][0], found["cpu"][0]))
    return rows


def turn_rows(search, size, rounds):
    ended = search.ask("end", rounds, "e")["times"]
    changed = search.ask("change", rounds)["times"]
    return [
        time_row(f"{size}: a running search ends for a newer one", 1, ended, ended),
        time_row(f"{size}: notes are ready again when one has changed", 5, changed, changed),
    ]


def search_rows(build, medium, large, count):
    limits = {"medium": (FEW, SOME), "large": (LARGE, LARGE)}
    rows = []
    with tempfile.TemporaryDirectory() as folder:
        programs = Programs(build, folder)
        for size, root in {"medium": medium, **({"large": large} if large else {})}.items():
            with SearchNotes(build, root) as search:
                rows += answer_rows(search, size, root)
                rows += typed_rows(search, size, *limits[size], count)
                rows += peer_rows(programs, search, size, root, count)
                rows += bad_rows(search, size, limits[size][0], count) + turn_rows(search, size, 10 * count)
                rows.append(Row(f"{size}: notes made ready for the first search", search.ready, unit="ms"))
    return rows
