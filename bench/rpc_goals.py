# SPDX-License-Identifier: MIT
"""How many requests `tessaly rpc` answers a second, against a program that only echoes the JSON."""

import json
import os
import statistics
import subprocess
import tempfile
import time

from goals import Row, answer

REQUESTS = 300_000
LINES = ("\t- [ ] Call Bob >2019-05-21 #a", "* [x] Pay @done(2019-05-21 14:07)", "# Title",
         "plain text of some length, as notes have it", "> quote", "1. item")


def write_requests(path):
    with open(path, "w", encoding="utf-8") as file:
        for number in range(REQUESTS):
            request = {"id": number, "method": "classify", "params": {"line": LINES[number % len(LINES)]}}
            file.write(json.dumps(request) + "\n")


def run(command, requests, answers, environment):
    """Seconds, and kilobytes of memory at the most."""
    with open(requests, "rb") as given, open(answers, "wb") as taken:
        start = time.perf_counter()
        child = subprocess.Popen(command, stdin=given, stdout=taken, env=environment)
        _, status, usage = os.wait4(child.pid, 0)
        child.returncode = status
    if status != 0:
        raise RuntimeError(f"{' '.join(command)} ended with status {status}")
    return time.perf_counter() - start, usage.ru_maxrss


def rpc_rows(build, pairs):
    with tempfile.TemporaryDirectory() as folder:
        requests, answers = os.path.join(folder, "requests"), os.path.join(folder, "answers")
        environment = {"PATH": "/usr/bin:/bin", "HOME": folder, "LC_ALL": "C.UTF-8"}
        write_requests(requests)
        programs = {name: os.path.join(build, "bin", name) for name in ("tessaly", "echo_json")}
        ours, theirs, memory = [], [], 0
        for _ in range(pairs):
            theirs.append(run([programs["echo_json"]], requests, answers, environment)[0])
            seconds, memory = run([programs["tessaly"], "rpc"], requests, answers, environment)
            ours.append(seconds)
        with open(answers, encoding="utf-8") as file:
            types = [json.loads(line)["result"]["type"] for _, line in zip(LINES, file)]
            count = len(types) + sum(1 for _ in file)
    ratio = statistics.median(mine / other for mine, other in zip(ours, theirs))
    rate = REQUESTS / statistics.median(ours)
    return [
        answer("types of lines", ["open", "done", "title", "text", "quote", "list"], types),
        answer("answers", REQUESTS, count),
        Row("classify requests", rate / 1000, 20, at_least=True, unit="k/s", detail=f"{memory} kB of memory"),
        Row("classify / echo of the same lines", ratio, 4),
    ]
