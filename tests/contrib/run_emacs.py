#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""run_emacs.py TESSALY: the plug-in in Emacs."""

import os
import shutil
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True

from editor_cases import EditorCases
from editor_home import PLUGINS, TIMEOUT

HERE = os.path.dirname(os.path.realpath(__file__))
WORDS = ["emacs", "--batch", "-Q", "-L", f"{PLUGINS}/emacs", "-l", os.path.join(HERE, "drive.el")]
SKIPPED = 77

# steps, the text before, the text after
TEXTS = [
    # Point stays on its side of the selection.
    ([["keys", "C-x C-x"], ["mark", "bold"], ["keys", "C-x C-x"]], "😀 «ẽ 😀» b\n", "😀 **«ẽ 😀»** b\n"),
    ([["keys", "C-c C-t 1"]], "ä 😀‸b\n", "# ä 😀‸b\n"),
    ([["keys", "C-c C-t >"]], "ä\n«b\n»c\n", "ä\n\t«b\n»c\n"),
    ([["narrow"], ["mark", "orderedList"]], "1. ä\n😀‸b\nc\n", "1. ä\n2. 😀‸b\nc\n"),
]


def compile_it(cases):
    """Without a warning."""
    with tempfile.TemporaryDirectory() as folder:
        shutil.copy(f"{PLUGINS}/emacs/tessaly.el", folder)
        words = ["emacs", "--batch", "-Q", "--eval", "(setq byte-compile-error-on-warn t)", "-f", "batch-byte-compile",
                 f"{folder}/tessaly.el"]
        ended = subprocess.run(words, capture_output=True, text=True, timeout=TIMEOUT)
        cases.check("byte-compiling", "what is told", ended.stderr.strip(), "")
        cases.check("byte-compiling", "the exit status", ended.returncode, 0)


def main():
    if not shutil.which("emacs"):
        print("Emacs is not installed")
        return SKIPPED
    cases = EditorCases(sys.argv[1], WORDS)
    compile_it(cases)
    cases.run()
    for row in TEXTS:
        cases.text(*row)
    return cases.finish()


if __name__ == "__main__":
    sys.exit(main())
