# SPDX-License-Identifier: MIT
"""The sidebar's tree: what building it takes, and how soon it shows a note that has changed."""

import json
import os
import subprocess

from goals import Row, answer
from live_goals import percentile

ROUNDS = 200
BUILD = 150  # milliseconds of the processor, with 100,000 notes
UPDATE = 5
CHANGES = {"title": "title and date", "tag": "a new tag", "move": "moved to another folder"}


def measure(build, root):
    command = [os.path.join(build, "bin", "side_bar"), root, str(ROUNDS)]
    return json.loads(subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout)


def build_rows(size, found):
    detail = f"{found['rows']} rows, {found['bytes']} bytes each"
    names = {"byTitle": "by title", "byDate": "by date"}
    return [Row(f"{size}: sidebar built, notes {name} / {BUILD} ms", found[key] / BUILD, 1, detail=f"{found[key]:.1f} ms, {detail}")
            for key, name in names.items()]


def update_row(size, name, times):
    p95 = percentile(times, 0.95)
    detail = f"p95 {p95:.3f} ms, median {percentile(times, 0.5):.3f} ms, slowest {max(times):.3f} ms"
    return Row(f"{size}: sidebar, one note changed ({name}), p95 / {UPDATE} ms", p95 / UPDATE, 1, detail=detail)


def side_bar_rows(build, medium, large):
    rows = []
    for size, root in {"medium": medium, **({"large": large} if large else {})}.items():
        found = measure(build, root)
        rows.append(answer(f"{size}: sidebar kept is sidebar built anew", True, found["isSame"]))
        rows += build_rows(size, found)
        rows += [update_row(size, name, found[key]) for key, name in CHANGES.items()]
    return rows
