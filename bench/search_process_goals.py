# SPDX-License-Identifier: MIT
"""How fast one search is from start to exit, without and with an index, against a peer that runs in turn."""

import tempfile
import unicodedata

from goals import Row, answer
from naive_notes import WHITE, day_of, note_files, state_of
from process_goals import Programs, ratio_row

WORDS = ("zanzibarite", "meeting")  # in one note of a thousand, and in one of three
ASKED = WORDS + ("Grünewäldchen", "機密会議録", "purple elephant parade", "quokkafjord")
MODES = {"without index": 1.3, "with a fresh index": 0.7}


def folded(text):
    if text.isascii():
        return text.lower()
    return unicodedata.normalize("NFC", unicodedata.normalize("NFC", text).lower())


def rows_of_note(text, name, word):
    """A row for each task that holds the word, and one for the note if its title or other lines do."""
    if not text.strip(WHITE).lstrip("#").strip(WHITE):
        return int(word in folded(name.rpartition(".")[0]))
    lines = [line for line in text.split("\n") if word in folded(line)]
    tasks = sum(state_of(line) is not None for line in lines)
    return tasks + (tasks < len(lines))


def rows_of_folder(root, words):
    rows = dict.fromkeys(words, 0)
    for folder in ("Calendar", "Notes"):
        for path, name in note_files(root, folder):
            if folder == "Calendar" and not day_of(name):
                continue
            with open(path, "rb") as file:
                data = file.read()
            try:
                text = data.decode("utf-8-sig")
            except UnicodeDecodeError:
                text = ""
            whole = folded(text + name)
            for word in words:
                if folded(word) in whole:
                    rows[word] += rows_of_note(text, name, folded(word))
    return rows


class Searches(Programs):
    def search_notes(self, root, word):
        return [self._tessaly, "--root", root, "search", word]

    def found(self, root, word):
        return self.output(self.search_notes(root, word)).splitlines()

    @staticmethod
    def peer(root, word):
        return ["rg", "-i", word, root]


def answer_rows(programs, corpus, size):
    return [answer(f"{size}: rows with {word}", count, len(programs.found(corpus, word)))
            for word, count in rows_of_folder(corpus, ASKED).items()]


def timed_rows(programs, corpus, size, mode, pairs):
    return [ratio_row(f"{size}: tessaly search {word}, {mode} / rg -i {word}", MODES[mode],
                      programs.pairs(programs.search_notes(corpus, word), programs.peer(corpus, word), pairs))
            for word in WORDS]


def size_rows(build, corpus, size, pairs):
    with tempfile.TemporaryDirectory(dir=build) as folder:
        programs = Searches(build, folder)
        without, indexed = MODES
        rows = answer_rows(programs, corpus, size) + timed_rows(programs, corpus, size, without, pairs)
        before = {word: programs.found(corpus, word) for word in WORDS}
        programs.write_index(corpus)
        same = all(programs.found(corpus, word) == before[word] for word in WORDS)
        rows.append(answer(f"{size}: a search finds the same with an index", True, same))
        return rows + timed_rows(programs, corpus, size, indexed, pairs)


def search_process_rows(build, medium, large, pairs):
    rows = size_rows(build, medium, "medium", pairs)
    if large is None:
        return rows + [Row("large: one search", None, 1.3, detail="no large corpus")]
    return rows + size_rows(build, large, "large", pairs)
