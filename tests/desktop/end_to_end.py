#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""end_to_end.py TESSALY-DESKTOP: the program on a display, from its first start to its sudden end."""

import sys
import time

sys.dont_write_bytecode = True

from desktop_session import LONGEST, DesktopSession, missing, skip, wait_for

SOON = 2.0  # seconds after the last key in which all is to be on the disk
LOST = 1.5  # seconds of typing that a sudden end may cost


def save_what_is_typed(session):
    """The first start: notes to begin with, and what is typed is soon in a file."""
    program, window = session.open_window()
    wait_for("notes to begin with", session.notes)
    session.press("ctrl+End", "Return")
    session.type("* typed on the first day")
    started = time.monotonic()
    day = wait_for("the file of the day", lambda: session.holding("* typed on the first day"))
    took = time.monotonic() - started
    assert took < SOON, f"the file was written {took:.1f} s after the last key"
    return program, window, day


def start_again(session, window):
    """A second start shows the first window, and ends."""
    second = session.start([session.program])
    assert second.wait(LONGEST) == 0
    windows = session.xdotool("search", "--onlyvisible", "--name", " – Tessaly$").split()
    assert windows == [window], f"one window is expected, not {windows}"


def end_by_signal(session, program):
    """What was typed at the last moment is saved."""
    session.xdotool("type", "--delay", "1", " to the last word")
    assert session.end(program) == 0
    assert session.holding("* typed on the first day to the last word"), session.notes()


def restore_place(session):
    """The next start shows the note that the last one has shown."""
    program, window = session.open_window()
    session.press("ctrl+o")
    session.type("Garden")
    session.press("shift+Return")
    wait_for("the new note", lambda: session.xdotool("getwindowname", window) == "Garden – Tessaly")
    assert session.end(program) == 0
    program, window = session.open_window()
    wait_for("its title", lambda: session.xdotool("getwindowname", window) == "Garden – Tessaly")
    session.press("ctrl+End", "Return")
    return program


def kill_while_typing(session, program):
    """Types words one by one, each with the time when its last key was sent."""
    typed = []
    end = time.monotonic() + 4
    while time.monotonic() < end:
        word = f"w{len(typed):03}"
        session.type(word + " ")
        typed.append((word, time.monotonic()))
        time.sleep(0.05)
    killed = time.monotonic()
    program.kill()
    program.wait()
    note = session.notes()[session.holding("# Garden")]
    due = [word for word, at in typed if at < killed - LOST]
    assert len(due) > 5, f"only {len(typed)} words were typed"
    lost = [word for word in due if word not in note]
    assert not lost, f"lost: {lost}"
    return due


def go_on_after_kill(session, due):
    """The start after that has all of it, goes on with it, and leaves nothing behind."""
    program, window = session.open_window()
    wait_for("the note", lambda: session.xdotool("getwindowname", window) == "Garden – Tessaly")
    session.press("ctrl+End")
    session.type("and on")
    path = wait_for("the note in its file", lambda: session.holding("and on"))
    text = session.notes()[path]
    assert text.startswith("# Garden\n") and text.endswith("and on"), text
    assert all(word in text for word in due), text
    assert session.end(program) == 0
    assert not session.stray_files(), session.stray_files()


def main():
    if missing():
        return skip(missing())
    with DesktopSession(sys.argv[1]) as session:
        program, window, _ = save_what_is_typed(session)
        start_again(session, window)
        end_by_signal(session, program)
        program = restore_place(session)
        due = kill_while_typing(session, program)
        go_on_after_kill(session, due)
    return 0


if __name__ == "__main__":
    sys.exit(main())
