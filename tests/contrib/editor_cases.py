# SPDX-License-Identifier: MIT
"""What the commands must do in any editor. ‸ is the cursor; « and » are around what is selected."""

import os
import subprocess

from editor_home import CURSOR, START, TIMEOUT, EditorHome, marked, unmarked

NOTE = "Notes/Größe 1.txt"
TODAY = "Calendar/20191231.txt"
FRIDAY = "Calendar/20200103.txt"
DONE = " @done(2019-12-31 12:00 PM)"
LONG = "😀ẽ " * 20000  # more bytes than an argument may have
MANY = "* a\n" * 200001  # more lines than the program looks at in one request
LONGEST_PROBLEM = 2000

# action, the text before, the text after
MARKS = [
    ("todo", "one\n😀 Bu‸y ẽ 👨‍👩‍👧\nthree\n", "one\n* [ ] 😀 Bu‸y ẽ 👨‍👩‍👧\nthree\n"),
    ("todo", "* [ ] 😀 Bu‸y\n", "😀 Bu‸y\n"),
    ("quote", "ä\n«b\nẽ 😀»\nd\n", "ä\n> «b\n> ẽ 😀»\nd\n"),
    ("orderedList", "1. ä\nb‸c\n", "1. ä\n2. b‸c\n"),
    ("heading2", "😀‸😀", "## 😀‸😀"),
    ("shiftRight", "\ta‸b\n", "\t\ta‸b\n"),
    ("moveUp", "ä\n😀b‸c\nd\n", "😀b‸c\nä\nd\n"),
    ("moveDown", "ä‸ö\n😀\nd\n", "😀\nä‸ö\nd\n"),
    ("bold", "😀 «ẽ 😀» b\n", "😀 **«ẽ 😀»** b\n"),
    ("inlineCode", "ä 😀 ‸ b\n", "ä 😀 `‸` b\n"),
    ("markAsCanceled", "* [x] 😀 a‸b @done(2019-12-30 09:00)\n", "* [-] 😀 a‸b\n"),
    ("todo", "ä\r\nb‸c\r\nd\r\n", "ä\r\n* [ ] b‸c\r\nd\r\n"),
]

# steps, the notes before, the notes after, a part of what is told; the first note is the one that is open
TASKS = [
    ([["toggle"]], {NOTE: "# Ä\n* 😀 ẽ b‸c\n"}, {NOTE: f"# Ä\n* [x] 😀 ẽ bc{DONE}\n"}, ""),
    ([["toggle"], ["toggle"]], {NOTE: "# Ä\n* ä b‸c\n"}, {NOTE: "# Ä\n* ä bc\n"}, ""),
    ([["toggle"]], {NOTE: "ä\r\n- [ ] 😀 b‸c\r\nd\r\n"}, {NOTE: f"ä\r\n- [x] 😀 bc{DONE}\r\nd\r\n"}, ""),
    ([["cancel"]], {NOTE: "* 😀‸😀\n"}, {NOTE: "* [-] 😀😀\n"}, ""),
    ([["cancel"]], {NOTE: f"* {LONG}‸a\n"}, {NOTE: f"* [-] {LONG}a\n"}, ""),
    ([["reopen"]], {NOTE: "* [x] a\n😀‸ b\n"}, {NOTE: "* [x] a\n😀 b\n"}, "neither a task nor a list item"),
    ([["schedule", "+3d"]], {TODAY: "* ä 😀‸b", FRIDAY: "* x\n"},
     {TODAY: "* [>] ä 😀b >2020-01-03", FRIDAY: "* x\n* ä 😀b <2019-12-31\n"}, ""),
    ([["schedule", "fri"], ["undo"]], {TODAY: "a\n* ä 😀‸b\n", FRIDAY: "* x"}, {TODAY: "a\n* ä 😀b\n", FRIDAY: "* x"}, ""),
    ([["schedule", "nonsense"]], {TODAY: "* ä ‸b\n"}, {TODAY: "* ä b\n"}, "nonsense"),
    ([["undo"]], {NOTE: "* ‸ä\n"}, {NOTE: "* ä\n"}, "nothing to undo"),
    # What was written and not saved comes first, in all notes.
    ([["write", " 😀 new"], ["toggle"]], {NOTE: "* ‸ä\n"}, {NOTE: f"* [x] ä 😀 new{DONE}\n"}, ""),
    ([["visit", FRIDAY], ["write", " 😀 new"], ["visit", TODAY], ["schedule", "fri"], ["visit", FRIDAY]],
     {TODAY: "* ‸ä\n", FRIDAY: "* x\n"}, {TODAY: "* [>] ä >2020-01-03\n", FRIDAY: "* x 😀 new\n* ä <2019-12-31\n"}, ""),
    # Of several lines, only those that are tasks.
    ([["toggle"]], {NOTE: "«* a\nplain\n\n* [x] 😀»\n* c\n"}, {NOTE: f"* [x] a{DONE}\nplain\n\n* [x] 😀\n* c\n"}, ""),
    ([["toggle"]], {NOTE: "«* [x] a\nplain\n* [x] 😀»\n* c\n"}, {NOTE: "* a\nplain\n* 😀\n* c\n"}, ""),
    ([["toggle"]], {NOTE: "* a\n‸\n"}, {NOTE: "* a\n\n"}, "neither a task nor a list item"),
    ([["toggle"]], {NOTE: f"«{MANY}»"}, {NOTE: MANY}, "too many lines for one answer"),
    # A note that is broken is in nobody's way.
    ([["toggle"]], {NOTE: "* ‸ä\n", TODAY: "* \udcff\n"}, {NOTE: f"* [x] ä{DONE}\n", TODAY: "* \udcff\n"}, ""),
    # Going somewhere makes no note.
    ([["open", "today"]], {NOTE: "* ‸ä\n", TODAY: "* 😀\n"}, {NOTE: "* ä\n", TODAY: "* 😀\n"}, ""),
    ([["open", "fri"]], {NOTE: "* ‸ä\n"}, {NOTE: "* ä\n"}, ""),
    ([["open", "-1w"]], {NOTE: "* ‸ä\n"}, {NOTE: "* ä\n"}, ""),
    ([["open", "no such note"]], {NOTE: "* ‸ä\n"}, {NOTE: "* ä\n"}, "no note called"),
]
SHOWN = {"open": {"today": TODAY, "fri": FRIDAY, "-1w": "Calendar/20191224.txt"}, "visit": {FRIDAY: FRIDAY}}  # the file that is shown after a last step


def line_and_column(text, place):
    before = text[:place].replace("\r\n", "\n")
    return before.count("\n"), len(before) - before.rfind("\n") - 1


class EditorCases:
    """`words` run the editor with its driver on the job that the environment names."""

    def __init__(self, program, words):
        self.program, self.words = program, words
        self.checks, self.problems = 0, []

    def check(self, where, what, actual, wanted):
        self.checks += 1
        if actual != wanted:
            self.problems.append(f"{where}: {what} is\n  {actual!r}, not\n  {wanted!r}")

    def home(self):
        return EditorHome(self.program, self.words)

    def text(self, steps, before, after):
        """What the editor shows, and where its cursor or selection is, if `after` marks it. The file stays."""
        where = f"{steps} on {before!r}"
        text, cursor, anchor = unmarked(before.replace("\r\n", "\n"))
        in_file = text.replace("\n", "\r\n") if "\r\n" in before else text
        with self.home() as home:
            home.write(NOTE, in_file)
            shown = home.edit(NOTE, steps, cursor, anchor)
            found = shown["text"]
            if START in after or CURSOR in after:
                found = marked(found, shown["cursor"], shown["anchor"])
            self.check(where, "the text", found, after.replace("\r\n", "\n"))
            self.check(where, "what is told", shown["messages"].strip(), "")
            self.check(where, "the file", home.notes()[NOTE], in_file)

    def tasks(self, steps, before, after, told, settings=None):
        where = f"{steps} on {before}"
        name = next(iter(before))
        text, cursor, anchor = unmarked(before[name].replace("\r\n", "\n"))
        with self.home() as home:
            for note, words in before.items():
                home.write(note, unmarked(words)[0])
            home.settings(settings or {})
            shown = home.edit(name, steps, cursor, anchor)
            self.check(where, "what lies in the files", home.notes(), after)
            at = SHOWN.get(steps[-1][0], {}).get(steps[-1][-1], name)
            self.check(where, "the file that is shown", shown["file"], home.path(at))
            self.check(where, "the text that is shown", shown["text"], after.get(at, "").replace("\r\n", "\n"))
            self.check(where, "whether it is modified", bool(shown["modified"]), False)
            if at == name and anchor is None:
                self.check(where, "the cursor", line_and_column(shown["text"], shown["cursor"]), line_and_column(text, cursor))
            self.check(where, f"that it tells {told!r} ({shown['messages']!r})", told in shown["messages"], True)

    def refused(self, where, told, steps, name=NOTE, after="* ä\n", **environment):
        """Nothing is changed, and the reason is told."""
        with self.home() as home:
            home.write("elsewhere.txt", "* ä\n")
            home.write(NOTE, "* ä\n")
            shown = home.edit(name, steps, 0, **environment)
            self.check(where, "the text", shown["text"], after)
            self.check(where, f"that it tells {told!r} ({shown['messages']!r})", told in shown["messages"], True)
            self.check(where, "the notes", home.notes(), {NOTE: "* ä\n"})
            self.check(where, "whether there are keys", bool(shown["keys"]), name == NOTE and not environment)

    def outside(self):
        """What another program wrote stays, and so does what was written here."""
        with self.home() as home:
            home.write(NOTE, "* ä\n")
            shown = home.edit(NOTE, [["write", " mine"], ["outside", "* theirs\n"], ["toggle"]])
            self.check("written by both", "the text", shown["text"], "* ä mine\n")
            self.check("written by both", "the notes", home.notes(), {NOTE: "* theirs\n"})
            self.check("written by both", f"that it is refused ({shown['messages']})",
                       "nothing was done" in shown["messages"], True)

    def interloper(self):
        """Another program is faster: the line that was meant is elsewhere now, and no other is changed for it."""
        with self.home() as home:
            home.write(NOTE, "* ä\n* b\n")
            shown = home.edit(NOTE, [["toggle"]], 6, INTERLOPER=home.path(NOTE))
            self.check("an interloper", "the notes", home.notes(), {NOTE: "theirs\n* ä\n* b\n"})
            self.check("an interloper", "the text", shown["text"], "theirs\n* ä\n* b\n")
            self.check("an interloper", f"that it is refused ({shown['messages']})",
                       "the line has changed" in shown["messages"], True)

    def holding_nul(self):
        """A line that holds the character is one line."""
        with self.home() as home:
            home.write(NOTE, "- a\0b\n- c\n* d\n")
            home.edit(NOTE, [["cancel"]], 13, 0)
            self.check("a line with NUL", "the note", home.notes()[NOTE], "- a\0b\n- c\n* [-] d\n")

    def completion(self):
        """The actions that are offered are those that the program has."""
        with self.home() as home:
            home.write(NOTE, "")
            ended = subprocess.run([os.path.join(home.bin, "tessaly"), "mark", "?"], input=b"", capture_output=True,
                                   env=home.environment(), timeout=TIMEOUT)
            names = ended.stderr.decode().splitlines()[0].partition("there are: ")[2].split(", ")
            offered = home.edit(NOTE, [["complete"]])["messages"].split()
            self.check("completion", "what is offered", sorted(offered), sorted(names))

    def run(self):
        self.completion()
        self.interloper()
        self.outside()
        self.holding_nul()
        for action, before, after in MARKS:
            self.text([["mark", action]], before, after)
            self.text([["mark", action], ["editorUndo"]], before, unmarked(before)[0])
        for row in TASKS:
            self.tasks(*row)
        self.tasks([["toggle"]], {NOTE: "«* a\n- b\n1. c»\n"}, {NOTE: f"* a\n- [x] b{DONE}\n1. [x] c{DONE}\n"}, "",
                   {"isAsteriskTodo": False, "isDashTodo": True, "isNumbersTodo": True})
        for step in (["toggle"], ["cancel"], ["reopen"], ["schedule", "fri"]):
            self.refused(f"{step} outside", "is no note in", [step], "elsewhere.txt")
        for step in (["toggle"], ["schedule", "fri"], ["undo"], ["mark", "todo"], ["open", "today"]):
            self.refused(f"{step} without the program", "cannot be found", [step], PATH="/usr/bin:/bin")
        self.refused("an unknown mark", "nonsense", [["mark", "nonsense"]])

    def add(self, other):
        self.checks += other.checks
        self.problems += other.problems

    def finish(self):
        for problem in self.problems:
            print(f"FAILED: {problem if len(problem) < LONGEST_PROBLEM else problem[:LONGEST_PROBLEM] + '…'}")
        print(f"{self.checks} checks, {len(self.problems)} failed")
        return 1 if self.problems else 0
