#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""run_locales.py TESSALY: what programs read is the same in every zone and language.

The same data folder, under each zone and locale: all that --json prints is the same to the byte, but
for the words that are meant for people, and the offset of a time, which must be the zone's own.
"""

import datetime
import itertools
import os
import re
import sys
import tempfile
import zoneinfo

sys.dont_write_bytecode = True

from command import Checks, Command

ZONES = ["UTC", "Asia/Kathmandu", "America/St_Johns", "Pacific/Apia"]
LOCALES = ["en_US.UTF-8", "th_TH.UTF-8", "ar_EG.UTF-8", "tr_TR.UTF-8", "de_DE.UTF-8"]
NOTES = {
    "Calendar/20191231.txt": "# TITLE I\n* [x] Ilık İş @done(2019-12-31 09:05 PM)\n* [ ] 14:30 call >2020-01-01\n"
                             "\t- [>] moved >2019-12-31 #IĞDIR @IRIS\n",
    "Calendar/20191230.txt": "* [ ] overdue\n* [x] late @done(2019-12-31 23:59)\n* [x] no such hour @done(2019-03-31 02:30)\n",
    "Calendar/20111230.txt": "* [ ] a day that Apia never had >2011-12-30\n* [x] then @done(2011-12-30 12:00)\n",
    "Notes/Größe.txt": "# Größe ١٢٣\n* [x] a @done(2019-10-27 02:30) #straße/ẞ\n1. ١. one\n* [ ] ٢٠١٩ >2019-12-31 #İ\n",
}
VERBS = [
    ("today",), ("day", "2019-12-31"), ("day", "20111230"), ("week", "2019-12-30"), ("overdue",), ("tasks",),
    ("tags",), ("mentions",), ("parse", "Calendar/20191231.txt"), ("parse", "Notes/Größe.txt"), ("settings", "get", "sortBy"),
]
SETTINGS = '{"firstDayOfWeek": "monday"}'  # the one default that the locale may decide
FOR_PEOPLE = re.compile(rb'"(name|heading)": ?"(?:[^"\\]|\\.)*"')
TIME = re.compile(rb'"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d)(Z|[+-]\d\d:\d\d)"')


def instants_of(text, zone):
    """The instants that a time without an offset may mean; two where clocks went back."""
    times = [datetime.datetime.fromisoformat(text).replace(tzinfo=zoneinfo.ZoneInfo(zone), fold=fold) for fold in (0, 1)]
    return {time.timestamp() for time in times}


def check_times(checks, where, output, zone):
    for text, offset in TIME.findall(output):
        text, offset = text.decode(), offset.decode().replace("Z", "+00:00")
        instant = datetime.datetime.fromisoformat(text + offset).timestamp()
        checks.check(instant in instants_of(text, zone), f"{where}: {text}{offset} is no time of {zone}")


def first_difference(expected, found):
    for old, new in itertools.zip_longest(expected.splitlines(), found.splitlines(), fillvalue=b"nothing"):
        if old != new:
            return f"expected {old.decode()}\nfound    {new.decode()}"
    return "line breaks"


def stored_part(output):
    return TIME.sub(rb'"\1"', FOR_PEOPLE.sub(rb'"\1"', output))


def write(path, text):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


def main():
    checks = Checks()
    with tempfile.TemporaryDirectory(prefix="tessaly-locales-") as folder:
        root, home = os.path.join(folder, "data"), os.path.join(folder, "home")
        for name, text in NOTES.items():
            write(os.path.join(root, name), text)
        write(os.path.join(home, "config", "tessaly", "settings.json"), SETTINGS)
        command = Command(os.path.abspath(sys.argv[1]), home, checks)
        for verb in VERBS:
            words = [os.path.join(root, word) if "/" in word else word for word in verb]
            expected = stored_part(command.run(root, *words, "--json") or b"")
            checks.check(expected, f"{verb}: prints nothing")
            for zone in ZONES:
                for locale in LOCALES:
                    where = f"{verb} in {zone}, {locale}"
                    output = command.with_env(TZ=zone, LC_ALL=locale).run(root, *words, "--json") or b""
                    found = stored_part(output)
                    checks.check(found == expected, f"{where}: {first_difference(expected, found)}")
                    check_times(checks, where, output, zone)
    return checks.finish()


if __name__ == "__main__":
    sys.exit(main())
