#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the command end to end and compares what it prints with what is kept.

    run_cases.py PROGRAM [CASE…]        UPDATE=1 run_cases.py PROGRAM [CASE…]

A case is a folder below cases/:
    cmd     a shell script; `tessaly` is the program, the working folder is empty but for root/
    root    optional: the name of a folder of roots/, which is copied to root/
    env     optional: NAME=VALUE lines, beside a clean environment
    tty     optional: standard output is a terminal of that many columns
    keys    optional, with tty: what is typed; standard input and error are that terminal, too
    out, err, status    what must come of it; without a file: nothing, nothing, 0
UPDATE=1 writes these three instead, for a look at the difference.
"""
import concurrent.futures
import fcntl
import os
import pathlib
import pty
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import termios
import threading

HERE = pathlib.Path(__file__).resolve().parent
FIRST_CHANGE = 1577800800  # 2019-12-31 14:00 UTC; each file of a root is changed a minute later


def copy_root(name, target):
    shutil.copytree(HERE / "roots" / name, target)
    files = sorted(path for path in target.rglob("*") if path.is_file())
    for index, path in enumerate(files):
        os.utime(path, (FIRST_CHANGE + 60 * index,) * 2)


def clean_environment(program, home):
    return {
        "PATH": f"{program.parent}:/usr/bin:/bin",
        "HOME": str(home),
        "XDG_CONFIG_HOME": f"{home}/config",
        "XDG_DATA_HOME": f"{home}/data",
        "XDG_STATE_HOME": f"{home}/state",
        "XDG_CACHE_HOME": f"{home}/cache",
        "LC_ALL": "C.UTF-8",
        "TZ": "UTC",
        "TERM": "xterm",
    }


def read_all(descriptor, parts):
    while True:
        try:
            part = os.read(descriptor, 1 << 16)
        except OSError:  # how a terminal ends
            return
        if not part:
            return
        parts.append(part)


def run_in_terminal(command, columns, keys, **where):
    """As subprocess.run, with a terminal as standard output, and as all streams where keys are typed."""
    ours, theirs = pty.openpty()
    fcntl.ioctl(theirs, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
    attributes = termios.tcgetattr(theirs)
    attributes[1] &= ~termios.OPOST  # line breaks stay as they are written
    attributes[3] &= ~termios.ECHO  # it would come between the lines at any place
    termios.tcsetattr(theirs, termios.TCSANOW, attributes)
    parts = []
    if keys is not None:
        where["stdin"] = theirs
    process = subprocess.Popen(command, stdout=theirs,
                               stderr=subprocess.PIPE if keys is None else theirs, **where)
    os.close(theirs)
    reader = threading.Thread(target=read_all, args=(ours, parts))
    reader.start()
    if keys is not None:
        os.write(ours, keys.encode())
    error = process.stderr.read() if keys is None else b""
    status = process.wait(timeout=60)
    reader.join()
    os.close(ours)
    return b"".join(parts), error, status


def run_in_pipes(command, **where):
    done = subprocess.run(command, capture_output=True, timeout=60, check=False, **where)
    return done.stdout, done.stderr, done.returncode


def settled(output, folder):
    """What differs from run to run has a name instead; progress is shown by slow machines alone."""
    output = output.replace(str(folder).encode(), b"$DIR")
    output = re.sub(rb"\r[^\r\n]*\x1b\[K", b"", output)
    return re.sub(rb'("created":)"[^"]*"', rb'\1"$CREATED"', output)


def text_of(case, name, default=""):
    path = case / name
    return path.read_text() if path.exists() else default


def run_case(case, program):
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name).resolve()
        work = folder / "work"
        work.mkdir()
        environment = clean_environment(program, folder / "home")
        environment.update(line.split("=", 1) for line in text_of(case, "env").splitlines())
        root = text_of(case, "root").strip()
        if root:
            copy_root(root, work / "root")
        command = ["/bin/bash", "-c", text_of(case, "cmd")]
        where = {"cwd": work, "env": environment, "stdin": subprocess.DEVNULL}
        columns = text_of(case, "tty").strip()
        keys = text_of(case, "keys") if (case / "keys").exists() else None
        out, err, status = (run_in_terminal(command, int(columns), keys, **where) if columns
                            else run_in_pipes(command, **where))
        return {"out": settled(out, folder), "err": settled(err, folder),
                "status": b"" if status == 0 else f"{status}\n".encode()}


def compare(case, name, actual):
    path = case / name
    expected = path.read_bytes() if path.exists() else b""
    if actual == expected:
        return ""
    if os.environ.get("UPDATE"):
        path.write_bytes(actual) if actual else path.unlink()
        return ""
    diff = ""
    with tempfile.NamedTemporaryFile() as file:
        file.write(actual)
        file.flush()
        diff = subprocess.run(["diff", "-a", "-u", "--label", "expected", "--label", "actual",
                               str(path) if path.exists() else "/dev/null", file.name],
                              capture_output=True, check=False).stdout
    return f"{case.name}/{name}\n{diff.decode(errors='replace')}\n"


def check_case(case, program):
    try:
        results = run_case(case, program)
    except subprocess.TimeoutExpired:
        return f"{case.name}: did not end\n"
    return "".join(compare(case, name, actual) for name, actual in results.items())


def main():
    program = pathlib.Path(sys.argv[1]).resolve()
    cases = [HERE / "cases" / name for name in sys.argv[2:]] or sorted((HERE / "cases").iterdir())
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        complaints = [text for text in pool.map(lambda case: check_case(case, program), cases)
                      if text]
    sys.stdout.write("".join(complaints))
    print(f"{len(cases)} cases, {len(complaints)} failed")
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
