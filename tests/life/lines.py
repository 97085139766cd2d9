# SPDX-License-Identifier: MIT
"""What a line of a note is and what each operation makes of it: written from the rules, not from the program."""

import datetime
import re
from dataclasses import dataclass

# ICU's \s, which has neither \x1c nor \x1f; the anchors count at a line's start alone.
BLANK = r"\t\n\x0b\f\r \x85\xa0\u1680\u2000-\u200a\u2028\u2029\u202f\u205f\u3000"
MARKER = re.compile(rf"(?P<indent>[{BLANK}]*)(?P<sign>[*\-]|[0-9]+[.)]) (?P<box>\[[x\->{BLANK}]\] )?", re.DOTALL)
DAY = r"[0-9]{4}-(?:0[1-9]|1[0-2])-(?:0[1-9]|1[0-9]|2[0-9]|3[01])"
TIME = r"(?:0[0-9]|1[0-9]|2[0-3]):[0-5][0-9](?: ?[aApP][mM])?"
TAGS = {
    "done": re.compile(rf"[{BLANK}]?@done\({DAY}(?: {TIME})?\)"),
    "date": re.compile(rf"[{BLANK}]?[<>@]{DAY}"),
    "schedule": re.compile(rf"[{BLANK}]?>{DAY}"),
    "back-link": re.compile(rf"[{BLANK}]?<{DAY}"),
    "repeat": re.compile(rf"[{BLANK}]?@repeat\(0*[1-9][0-9]*/0*[1-9][0-9]*\)"),
    "final": re.compile(rf"[{BLANK}]?@final-repeat"),
}
STATES = {"x": "done", "-": "cancelled", ">": "scheduled"}


@dataclass
class Settings:
    """Those that the operations depend on, by the program's names."""


    isAsteriskTodo: bool = True
    isDashTodo: bool = False
    isNumbersTodo: bool = False
    isAppendCompletionLinks: bool = True
    isAppendScheduleLinks: bool = True
    isCopyScheduleGeneralNoteTodos: bool = True
    hasTwelveHours: bool = False  # the locale's clock, no setting

    def counts(self, sign):
        """Whether a bare marker makes a task."""
        return self.isAsteriskTodo if sign == "*" else self.isDashTodo if sign == "-" else self.isNumbersTodo


def state_of(line, settings):
    """"open", "done", "cancelled" or "scheduled"; None for a line that is no task."""
    match = MARKER.match(line)
    if not match:
        return None
    if match["box"]:
        return STATES.get(match["box"][1], "open")
    return "open" if settings.counts(match["sign"]) else None


def content_of(line):
    match = MARKER.match(line)
    return line[match.end():] if match else line


def without(line, *tags):
    """Without these tags; the blank that belongs to a marker or a box stays."""
    for tag in tags:
        match = MARKER.match(line)
        begin = match.end() if match else 0
        # A tag right behind the marker must not take the marker's blank with it.
        line = line[:begin] + TAGS[tag].sub("", line[begin:])
    return line


def with_box(line, box):
    """With another box, "" for none."""
    match = MARKER.match(line)
    return match["indent"] + match["sign"] + " " + box + line[match.end():]


def opened(line, settings):
    """With a box only where the bare marker would not be read as an open task."""
    bare = with_box(line, "")
    return bare if settings.counts(MARKER.match(line)["sign"]) and not MARKER.match(bare)["box"] else with_box(line, "[ ] ")


def repeat_of(line):
    """(index, count) of the line's repeat tag, or None."""
    match = re.search(r"@repeat\(([0-9]{1,9})/([0-9]{1,9})\)", line)
    return (int(match[1]), int(match[2])) if match else None


def completed(line, now, settings):
    if settings.isAppendCompletionLinks:
        clock = "%I:%M %p" if settings.hasTwelveHours else "%H:%M"
        line = without(line, "done") + now.strftime(f" @done(%Y-%m-%d {clock})")
    line = with_box(line, "[x] ")
    repeat = repeat_of(line)
    ends = repeat and repeat[0] == repeat[1] and not TAGS["final"].search(line)
    return line + " @final-repeat" if ends else line


def cancelled(line):
    return with_box(without(line, "done"), "[-] ")


def reopened(line, settings):
    tags = ["done", "schedule"] if state_of(line, settings) == "scheduled" else ["done"]
    return opened(without(line, *tags), settings)


def scheduled(line, day, settings, copies):
    """`copies`: the line is also copied, so that it need not tell the day."""
    line = without(line, "done")
    if settings.isAppendScheduleLinks or not copies:
        line = without(line, "date") + f" >{day}"
    return with_box(line, "[>] ")


def copied(line, source_day, settings):
    """What stands in the day that a line is scheduled to; `source_day`: of a calendar note."""
    line = without(line, "done", "schedule").lstrip(BLANKS)  # a schedule tag would send it on
    if source_day is None or settings.isAppendScheduleLinks:
        line = without(line, "date")
    line = opened(line, settings)
    return f"{line} <{source_day}" if source_day and settings.isAppendScheduleLinks else line


def repeated(line, index, count, settings):
    state = state_of(line, settings)
    line = without(line, "repeat", "final", *(["done", "schedule", "back-link"] if state else []))
    if state == "open" and MARKER.match(line)["box"]:
        line = with_box(line, "[ ] ")
    elif state:
        line = opened(line, settings)
    return f"{line} @repeat({index}/{count})"


def is_later_repeat(line, other):
    mine, its = repeat_of(line), repeat_of(other)
    if not mine or not its or mine[1] != its[1] or its[0] <= mine[0]:
        return False
    return line.replace("@repeat(%d/%d)" % mine, "@", 1) == other.replace("@repeat(%d/%d)" % its, "@", 1)


def day_of_schedule(line):
    match = re.search(rf">({DAY})", line)
    try:
        return datetime.date.fromisoformat(match[1]) if match else None
    except ValueError:
        return None


def day_after(day, unit, count):
    """`count` units later."""
    if unit in ("day", "week"):
        return day + datetime.timedelta(days=count * (7 if unit == "week" else 1))
    months = day.year * 12 + day.month - 1 + count * {"month": 1, "quarter": 3, "year": 12}[unit]
    year, month = divmod(months, 12)
    last = (datetime.date(year + month // 11, (month + 1) % 12 + 1, 1) - datetime.timedelta(days=1)).day
    return datetime.date(year, month + 1, min(day.day, last))


BLANKS = "\t\n\x0b\f\r \x85\xa0\u1680\u2028\u2029\u202f\u205f\u3000" + "".join(map(chr, range(0x2000, 0x200b)))
