#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""run_vim.py TESSALY: the plug-in in Vim."""

import os
import subprocess
import sys

sys.dont_write_bytecode = True

from editor_cases import NOTE, EditorCases
from editor_home import PLUGINS

HERE = os.path.dirname(os.path.realpath(__file__))
# As a value of `let`: `set` ends a path at a blank.
FOLDER = f"{PLUGINS}/vim".replace(",", "\\,").replace("'", "''")
WORDS = ["vim", "-es", "-N", "-u", "NONE", "-i", "NONE", "-c", f"let &runtimepath = '{FOLDER},' . &runtimepath",
         "-c", "runtime plugin/tessaly.vim", "-S", os.path.join(HERE, "drive.vim")]
SKIPPED = 77

# steps, the text before, the text after
TEXTS = [
    # The selection is there again, for the next key.
    ([["normal", "gv\\tb"]], "😀 «ẽ 😀» b\n", "😀 **«ẽ 😀»** b\n"),
    ([["normal", "gv\\tb"], ["normal", "gv\\ti"]], "😀 «ẽ😀» b\n", "😀 ***«ẽ😀»*** b\n"),
    ([["normal", "wv$\\tb"]], "😀 ‸a b\nc\n", "😀 a **b**\nc\n"),
    ([["normal", "Vj\\tq"]], "ä\n😀 ‸b\n\tc\nd\n", "ä\n> 😀 b\n\t> c\nd\n"),
    ([["normal", "\x16j\\tq"]], "ä\n😀 ‸b\nc\nd\n", "ä\n> 😀 b\n> c\nd\n"),
    ([["normal", "\x16jl\\tb"]], "ä ‸😀b\nc d e\n", "**ä 😀b**\n**c d e**\n"),
    ([["ex", "set selection=exclusive"], ["normal", "v2l\\tb"]], "‸ä😀c\n", "**ä😀**c\n"),
    ([["ex", "set shell=/nowhere shellredir=>&"], ["normal", "\\t1"]], "ä 😀‸b\n", "# ä 😀‸b\n"),
    ([["ex", "2,3TessalyMark todo"]], "ä‸b\nc\nd\n", "ä‸b\n* [ ] c\n* [ ] d\n"),
    ([["ex", "1,2TessalyMark todo"]], "ä‸b\nc\nd\n", "* [ ] ä‸b\n* [ ] c\nd\n"),
    ([["normal", "2\\t>"]], "ä‸b\nc\nd\n", "\tä‸b\n\tc\nd\n"),
    ([["normal", "\\tk"]], "\n‸ä\n", "‸ä\n\n"),
]


def can_script():
    try:
        version = subprocess.run(["vim", "--version"], capture_output=True, text=True).stdout
    except FileNotFoundError:
        return False
    return "+eval" in version


def keep_mappings(cases):
    """Keys that the user has given a meaning keep it, and commands that have keys get no others."""
    own = EditorCases(cases.program, [*WORDS[:7], "-c", "nnoremap \\tt x|nmap gc <Plug>(tessaly-cancel)", *WORDS[7:]])
    own.text([["normal", "\\tt"]], "* ‸äb\n", "* ‸b\n")
    own.tasks([["normal", "gc"]], {NOTE: "* ‸ä\n"}, {NOTE: "* [-] ä\n"}, "")
    cases.add(own)


def find_folder(cases):
    """By a setting of the plug-in."""
    own = EditorCases(cases.program, [*WORDS[:7], "-c", "let g:tessaly_root = $TESSALY_ROOT | let $TESSALY_ROOT = ''", *WORDS[7:]])
    own.tasks([["toggle"]], {NOTE: "* ‸ä\n"}, {NOTE: "* [x] ä @done(2019-12-31 12:00 PM)\n"}, "")
    cases.add(own)


def main():
    if not can_script():
        print("Vim with scripts is not installed")
        return SKIPPED
    cases = EditorCases(sys.argv[1], WORDS)
    cases.run()
    for row in TEXTS:
        cases.text(*row)
    keep_mappings(cases)
    find_folder(cases)
    return cases.finish()


if __name__ == "__main__":
    sys.exit(main())
