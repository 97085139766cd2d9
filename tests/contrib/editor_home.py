# SPDX-License-Identifier: MIT
"""A data folder and an editor that works in it, without a display."""

import json
import os
import shlex
import subprocess
import tempfile

NOW = "2019-12-31T12:00:00"
TIMEOUT = 60  # seconds, on a busy machine
PLUGINS = os.path.join(os.path.dirname(os.path.realpath(__file__)), "..", "..", "contrib")
# The program at a fixed time. With INTERLOPER, a note gets a first line behind the editor's back.
WRAPPER = """#!/bin/sh
if [ -n "$INTERLOPER" ] && [ "$1" = done ]; then
    sed -i '1i theirs' "$INTERLOPER"
fi
exec {program} --now {now} "$@"
"""
CURSOR, START, END = "‸", "«", "»"


class EditorHome:
    """One editor's session: notes, then steps in the editor, then what it shows and what lies in the files."""

    def __init__(self, program, words):
        self.words = words  # of the editor's command line
        self._temporary = tempfile.TemporaryDirectory(prefix="tessaly-editor-")
        self.folder = self._temporary.name
        self.data = os.path.join(self.folder, "planner")
        self.bin = os.path.join(self.folder, "bin")
        for name in (self.data, self.bin, os.path.join(self.data, "Calendar"), os.path.join(self.data, "Notes")):
            os.mkdir(name)
        with open(os.path.join(self.bin, "tessaly"), "w") as file:
            file.write(WRAPPER.format(program=shlex.quote(os.path.abspath(program)), now=NOW))
        os.chmod(file.name, 0o755)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._temporary.cleanup()

    def path(self, name):
        return os.path.join(self.data, name)

    def write(self, name, text):
        with open(self.path(name), "w", encoding="utf-8", errors="surrogateescape", newline="") as file:
            file.write(text)

    def settings(self, values):
        os.makedirs(os.path.join(self.folder, "config", "tessaly"))
        with open(os.path.join(self.folder, "config", "tessaly", "settings.json"), "w") as file:
            json.dump(values, file)

    def notes(self):
        found = {}
        for kind in ("Calendar", "Notes"):
            for name in os.listdir(self.path(kind)):
                if not name.endswith("~"):  # an editor's backup
                    with open(self.path(f"{kind}/{name}"), encoding="utf-8", errors="surrogateescape", newline="") as file:
                        found[f"{kind}/{name}"] = file.read()
        return found

    def environment(self):
        kinds = {f"XDG_{kind}_HOME": os.path.join(self.folder, kind.lower()) for kind in ("CONFIG", "CACHE", "STATE", "DATA")}
        return {"PATH": f"{self.bin}:/usr/bin:/bin", "HOME": self.folder, "LC_ALL": "C.UTF-8", "TZ": "UTC",
                "TESSALY_ROOT": self.data, **kinds}

    def edit(self, name, steps, cursor=0, anchor=None, **environment):
        """What the editor shows after `steps` in a note: text, cursor, anchor, messages, file, modified, keys.

        Should it ask whether to write over what another program wrote, the answer is no.
        """
        job, answer = os.path.join(self.folder, "job.json"), os.path.join(self.folder, "answer.json")
        with open(job, "w") as file:
            json.dump({"file": self.path(name), "cursor": cursor, "anchor": anchor, "steps": steps}, file)
        ended = subprocess.run(self.words, cwd=self.folder, input=b"n\n", capture_output=True, timeout=TIMEOUT,
                               env={**self.environment(), "JOB": job, "ANSWER": answer, **environment})
        if not os.path.exists(answer):
            raise RuntimeError(f"{self.words[0]} ended with {ended.returncode}: {(ended.stdout + ended.stderr).decode()}")
        with open(answer) as file:
            shown = json.load(file)
        os.remove(answer)
        return shown


def unmarked(text):
    """(text, cursor, anchor): the places that ‸ or « and » mark, in characters."""
    if CURSOR in text:
        return text.replace(CURSOR, ""), text.index(CURSOR), None
    if START not in text:
        return text, 0, None
    anchor, cursor = text.index(START), text.index(END) - 1
    return text.replace(START, "").replace(END, ""), cursor, anchor


def marked(text, cursor, anchor=None):
    if anchor is None:
        return text[:cursor] + CURSOR + text[cursor:]
    return text[:anchor] + START + text[anchor:cursor] + END + text[cursor:]
