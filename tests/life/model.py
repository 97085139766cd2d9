# SPDX-License-Identifier: MIT
"""What each operation makes of a data folder: written from the rules, not from the program."""

import dataclasses
import datetime
import os
import re

import lines as rules

BOM = "\ufeff"
ARCHIVE = "## Archive"


class Note:
    """A text by lines, each with its own ending."""

    def __init__(self, data):
        text = data.decode()
        self.bom = text.startswith(BOM)
        parts = re.split(r"(\r?\n)", text.removeprefix(BOM))
        self.lines = [[line, end] for line, end in zip(parts[::2], parts[1::2] + [""])]
        if self.lines[-1][0].endswith("\r"):
            self.lines[-1] = [self.lines[-1][0][:-1], "\r"]
        if self.lines[-1] == ["", ""]:
            self.lines.pop()

    def bytes(self):
        return (BOM * self.bom + "".join(line + end for line, end in self.lines)).encode()

    def line_break(self):
        return self.lines[0][1] if self.lines and self.lines[0][1] in ("\n", "\r\n") else "\n"

    def append(self, line):
        new = self.line_break()
        ended = not self.lines or self.lines[-1][1] in ("\n", "\r\n")
        if not ended:
            self.lines[-1][1] += new
        self.lines.append([line, new if ended and len(self.lines) > 0 else ""])

    def remove(self, index):
        gone = self.lines.pop(index)
        if self.lines and index == len(self.lines):
            self.end_as(gone[1])

    def end_as(self, end):
        """A missing end of the last line stays missing, but an empty line would be none without it."""
        if end not in ("\n", "\r\n") and self.lines[-1][0]:
            self.lines[-1][1] = end


def day_of(path):
    """The day of a calendar note, or None."""
    match = re.fullmatch(r"Calendar/(\d{4})(\d\d)(\d\d)\.(?:txt|md)", path)
    return datetime.date(*map(int, match.groups())) if match else None


class Refused(Exception):
    """Nothing is changed for this line, and the program says why."""


class Failed(Exception):
    """Nothing is changed at all."""


class Model:
    """A data folder as it is on disk, and what is to become of it."""

    def __init__(self, root, settings):
        self.root = root
        self.settings = settings
        self.changed = {}  # path: bytes, or None for a file that is not there
        self.unlinked = []  # (path, line) of copies that nothing leads back to, so that they stay when undone

    def read(self, path):
        if path not in self.changed:
            file = os.path.join(self.root, path)
            self.changed[path] = open(file, "rb").read() if os.path.exists(file) else None
        return self.changed[path]

    def note(self, path):
        """Of a file that is there and is a text."""
        return Note(self.read(path))

    def line(self, path, index):
        return self.note(path).lines[index][0]

    def state(self, line):
        return rules.state_of(line, self.settings)

    def rewrite(self, path, index, line):
        note = self.note(path)
        note.lines[index][0] = line
        self.changed[path] = note.bytes()

    def append(self, path, line):
        try:
            note = Note(self.read(path) or b"")
        except UnicodeDecodeError as error:
            raise Failed(path) from error
        note.append(line)
        self.changed[path] = note.bytes()

    def remove(self, path, index):
        note = self.note(path)
        note.remove(index)
        self.changed[path] = note.bytes()

    def path_of_day(self, day):
        names = [f"Calendar/{day:%Y%m%d}{end}" for end in (".txt", ".md")]
        return next((name for name in names if self.read(name) is not None), names[0])

    # The operations, each on one line.

    def done(self, path, index, now):
        line = self.line(path, index)
        if self.state(line) != "done":
            self.rewrite(path, index, rules.completed(line, now, self.settings))

    def cancel(self, path, index):
        line = self.line(path, index)
        if self.state(line) != "cancelled":
            self.rewrite(path, index, rules.cancelled(line))

    def reopen(self, path, index):
        line = self.line(path, index)
        if self.state(line) == "open":
            return
        earlier = self.earlier_copies(path, line) if self.state(line) == "scheduled" else []
        self.rewrite(path, index, rules.reopened(line, self.settings))
        self.remove_copy(earlier)

    def schedule(self, path, index, day):
        line = self.line(path, index)
        if self.state(line) in ("done", "cancelled"):
            raise Refused(line)
        source, there = day_of(path), self.path_of_day(day)
        copies = day != source and (source is not None or self.settings.isCopyScheduleGeneralNoteTodos)
        earlier = self.earlier_copies(path, line, day if copies else None)
        stands_there = any(place == there for place, _ in earlier)
        after = rules.scheduled(line, day, self.settings, copies)
        if after == line and (stands_there or not copies):
            return
        if copies and not stands_there:
            self.texts(there)
            self.copy(there, rules.copied(line, source, self.settings))
        self.rewrite(path, index, after)
        if not stands_there:
            self.remove_copy(earlier)

    def copy(self, path, line):
        self.append(path, line)
        if not self.settings.isAppendScheduleLinks:
            self.unlinked.append((path, line))

    def texts(self, path):
        """The lines of a note, none when there is no file."""
        try:
            return [text for text, _ in Note(self.read(path) or b"").lines]
        except UnicodeDecodeError as error:
            raise Refused(path) from error

    def earlier_copies(self, path, line, target=None):
        """Where copies of a line that was scheduled stand that are still open: (path, index) each.

        A line that names no day, since links were off, has its copy in the day `target` at most; an
        open one that names a day has one if a link tells so.
        """
        tagged, source = rules.day_of_schedule(line), day_of(path)
        day = tagged or target
        if not source and not self.settings.isCopyScheduleGeneralNoteTodos:
            return []
        if not day or day == source or (self.state(line) != "scheduled" and not (tagged and source)):
            return []
        there = self.path_of_day(day)
        then = dataclasses.replace(self.settings, isAppendScheduleLinks=tagged is not None)
        wanted = rules.content_of(rules.copied(line, source, then)).rstrip(rules.BLANKS)
        return [(there, index) for index, text in enumerate(self.texts(there))
                if self.state(text) == "open" and rules.content_of(text).rstrip(rules.BLANKS) == wanted]

    def remove_copy(self, earlier):
        if len(earlier) == 1:
            self.remove(*earlier[0])

    def repeat(self, path, index, unit, count):
        if day_of(path) is None:
            raise Refused(path)
        line = self.line(path, index)
        for step in range(1, count + 1):
            day = rules.day_after(day_of(path), unit, step)
            self.append(self.path_of_day(day), rules.repeated(line, step, count, self.settings))

    def delete(self, path, index, later_paths):
        """With all later repeats, which stand in `later_paths`."""
        line = self.line(path, index)
        self.remove(path, index)
        for other in later_paths if rules.repeat_of(line) else []:
            if day_of(other) > day_of(path):
                note = self.note(other)
                for at in reversed(range(len(note.lines))):
                    if rules.is_later_repeat(line, note.lines[at][0]):
                        note.remove(at)
                self.changed[other] = note.bytes()

    def archive(self, path):
        note = self.note(path)
        texts = [text for text, _ in note.lines]
        heading = texts.index(ARCHIVE) if ARCHIVE in texts else None
        end = len(texts)
        if heading is not None:
            after = (at for at in range(heading + 1, end) if re.match(r"##? ", texts[at]))
            end = next(after, end)
        moved = self.processed(texts, range(heading, end) if heading is not None else ())
        if not moved:
            return
        while heading is not None and not texts[end - 1].strip(rules.BLANKS):
            end -= 1  # the empty lines before the next heading stay there
        kept = [at for at in range(len(texts)) if at not in moved]
        before = [texts[at] for at in kept if at < end]
        new = [] if heading is not None else [""] * bool(before and before[-1].strip()) + [ARCHIVE]
        new += [texts[at] for at in moved]
        last = note.lines[-1][1]
        note.lines = [[text, note.line_break()] for text in before + new + [texts[at] for at in kept if at >= end]]
        note.end_as(last)
        self.changed[path] = note.bytes()

    def processed(self, texts, archived):
        """The indexes of done and cancelled lines, and of those indented under them."""
        moved, parent = [], None
        for at, text in enumerate(texts):
            indent = text[:len(text) - len(text.lstrip(rules.BLANKS))]
            if at in archived:
                parent = None
            elif parent is not None and text.strip(rules.BLANKS) and indent.startswith(parent) and indent != parent:
                moved.append(at)
            else:
                is_processed = self.state(text) in ("done", "cancelled")
                parent = indent if is_processed else None
                moved += [at] if is_processed else []
        return moved
