#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Filter files that the command writes are read by plistlib, and the other way round.

    check_plists.py PROGRAM
"""
import json
import os
import pathlib
import plistlib
import subprocess
import sys
import tempfile

ON_OFF = {"open": "fp_open", "done": "fp_done", "scheduled": "fp_scheduled",
          "cancelled": "fp_canceled", "none": "fp_noStatus", "notes": "fp_noteItem",
          "calendar": "fp_calendarItem", "events": "fp_event", "reminders": "fp_reminder"}
PARAMETERS = ["fp_open", "fp_done", "fp_scheduled", "fp_canceled", "fp_event", "fp_reminder",
              "fp_noStatus", "fp_timeframe", "fp_noteItem", "fp_calendarItem", "fp_startDate",
              "fp_endDate", "fp_keyword"]
TIMEFRAMES = {"last-week": "fptf_lastWeek", "this-week": "fptf_thisWeek",
              "next-week": "fptf_nextWeek", "last-month": "fptf_lastMonth",
              "this-month": "fptf_thisMonth", "next-month": "fptf_nextMonth",
              "all": "fptf_allTime", "past": "fptf_past", "future": "fptf_future"}
KEYWORD = "Größe ἐν 日本 𝄞 e\u0301 <&> \"\t'"


def item(param, value="", display=True):
    return {"param": param, "value": value, "display": display}


class Command:
    def __init__(self, program, folder):
        self.program = program
        self.root = folder / "root"
        self.filters = self.root / "Filters"
        self.filters.mkdir(parents=True)
        self.environment = {"PATH": "/usr/bin:/bin", "HOME": str(folder), "LC_ALL": "C.UTF-8",
                            "XDG_STATE_HOME": str(folder / "state"), "TZ": "UTC",
                            "ASAN_OPTIONS": os.environ.get("ASAN_OPTIONS", "")}

    def run(self, *words):
        return subprocess.run([self.program, "--root", self.root, "--now", "2020-01-03T12:00",
                               "filter", *words],
                              env=self.environment, capture_output=True, text=True, timeout=60,
                              check=False)

    def check_saved(self, options, expected):
        done = self.run("save", "Saved", *options)
        assert done.returncode == 0, done.stderr
        data = (self.filters / "Saved").read_bytes()
        found = plistlib.loads(data, fmt=plistlib.FMT_BINARY)
        assert found == expected, (options, found)
        # true is 1 to a comparison, and dictionaries have no order
        assert all(isinstance(one["display"], bool) for one in found), found
        assert all(list(one) == ["param", "value", "display"] for one in found), found

    def check_loaded(self, items, **how):
        (self.filters / "Foreign").write_bytes(plistlib.dumps(items, **how))
        done = self.run("show", "Foreign", "--json")
        assert done.returncode == 0, (items, how, done.stderr)
        expected = [{key: one[key] for key in ("param", "value", "display")} for one in items]
        assert json.loads(done.stdout) == {"name": "Foreign", "items": expected}, done.stdout


def check_writing(command):
    command.check_saved(
        ["--state", "open,done,scheduled,cancelled,none", "--kind",
         "notes,calendar,events,reminders", "--from", "today", "--to", "+1w", "--keyword", KEYWORD],
        [item(name, {"fp_timeframe": "fptf_custom", "fp_startDate": "2020-01-03",
                     "fp_endDate": "2020-01-10", "fp_keyword": KEYWORD}.get(name, ""))
         for name in PARAMETERS])
    for word, name in ON_OFF.items():
        option = "--kind" if word in ("notes", "calendar", "events", "reminders") else "--state"
        command.check_saved([option, word], [item(name)])
    for word, name in TIMEFRAMES.items():
        command.check_saved(["--timeframe", word], [item("fp_timeframe", name)])


def check_reading(command):
    everything = [item(name, KEYWORD, index % 2 == 0) for index, name in enumerate(PARAMETERS)]
    timeframes = [item("fp_timeframe", name)
                  for name in [*TIMEFRAMES.values(), "fptf_custom", "fptf_none"]]
    more = [dict(item("fp_open"), note="é", list=[1, 2.5, b"x", {"a": True}])]
    same = [everything[0]] * 3
    for items in (everything, timeframes, more, same, []):
        for form in (plistlib.FMT_BINARY, plistlib.FMT_XML):
            for is_sorted in (False, True):
                command.check_loaded(items, fmt=form, sort_keys=is_sorted)


def main():
    with tempfile.TemporaryDirectory() as name:
        command = Command(pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(name))
        check_writing(command)
        check_reading(command)
    print("all filters are the same on both sides")


if __name__ == "__main__":
    main()
