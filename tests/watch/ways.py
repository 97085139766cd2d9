# SPDX-License-Identifier: MIT
"""How programs save a file that is there: each way leaves `text` in `path`."""

import os
import subprocess

from watcher import write


def in_place(path, text):
    write(path, text)


def in_pieces(path, text):
    with open(path, "w", encoding="utf-8") as file:
        for line in text.splitlines(keepends=True):
            file.write(line)
            file.flush()
            os.fsync(file.fileno())


def renamed_over(path, text):
    folder, name = os.path.split(path)
    temporary = os.path.join(folder, f".syncthing.{name}.tmp")
    write(temporary, text)
    os.rename(temporary, path)


def renamed_from_visible(path, text):
    write(path + ".tmp", text)
    os.rename(path + ".tmp", path)


def backed_up(path, text):
    os.rename(path, path + "~")
    write(path, text)


def deleted_and_created(path, text):
    os.unlink(path)
    write(path, text)


def cut_and_appended(path, text):
    os.truncate(path, 0)
    with open(path, "a", encoding="utf-8") as file:
        file.write(text)


def by_sed(path, text):
    script = "\\n".join(text.splitlines()).replace("/", "\\/")
    subprocess.run(["sed", "-i", f"1s/.*/{script}/;2,$d", path], check=True)


def by_vim(path, text):
    lines = "\r".join(text.splitlines())
    subprocess.run(["vim", "-N", "-u", "NONE", "-i", "NONE", "-es", "-c", f"normal! ggdGi{lines}", "-c", "wq", path],
                   check=True, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)


QUICK = [in_place, in_pieces, renamed_over, renamed_from_visible, backed_up, deleted_and_created, cut_and_appended]
ALL = [*QUICK, by_sed, by_vim]
