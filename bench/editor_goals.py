# SPDX-License-Identifier: MIT
"""The editor on a note of 1 MB: opening it, keys at its start, middle and end, and a line of 100 KB."""

import os
import tempfile

from goals import Row
from live_goals import percentile
from window_goals import FRAME, Windows, own_display

OPEN = 1.5  # beside the toolkit's plain editor, which styles nothing
WHOLE = 5  # frames for what touches all of the note
LONG_LINE = 12  # frames for a key in it


def frames(name, taken, at, limit):
    """How many frames of the screen it took: the share `at` of all tries did not take longer."""
    passed, cpu = taken["passed"], taken["cpu"]
    detail = (f"median {percentile(passed, 0.5):.1f} ms, p99 {percentile(passed, 0.99):.1f} ms, slowest {max(passed):.1f} ms; "
              f"of CPU, median {percentile(cpu, 0.5):.1f} ms, p99 {percentile(cpu, 0.99):.1f} ms")
    return Row(name, percentile(passed, at) / FRAME, limit, detail=detail)


def editor_rows(build):
    with tempfile.TemporaryDirectory() as folder, own_display() as display:
        found = Windows(build, folder, display).measure("edit_note")
    ours, peer = (percentile(found[key]["passed"], 0.5) for key in ("open", "peer"))
    rows = [Row(f"a note of {found['bytes'] / 1e6:.1f} MB opened and painted / the toolkit's plain editor", ours / peer, OPEN,
                detail=f"{ours:.0f} against {peer:.0f} ms")]
    for place in ("start", "middle", "end"):
        rows.append(frames(f"a key at its {place}, painted, p99 / a frame", found[place], 0.99, 1))
    for key, name in (("resize", "resized"), ("undo", "all of it deleted, undo")):
        rows.append(frames(f"{name}, painted, median / a frame", found[key], 0.5, WHOLE))
    rows.append(frames("a key in a line of 100 KB, painted, p99 / a frame", found["longLine"], 0.99, LONG_LINE))
    return rows
