#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the command's answering mode as other programs do: one question at a time, hostile lines, many lines.

    run_rpc.py PROGRAM [--sanitized]
"""
import json
import os
import pathlib
import select
import subprocess
import sys
import tempfile

PATIENCE = 60  # seconds; far more than any answer takes
LONGEST = 32 << 20  # bytes that a line may have
MODEST = 1 << 20


class Server:
    def __init__(self, program, home):
        environment = {"PATH": "/usr/bin:/bin", "HOME": home, "LC_ALL": "C.UTF-8", "TZ": "UTC"}
        self._process = subprocess.Popen([program, "rpc"], env=environment, stdin=subprocess.PIPE,
                                         stdout=subprocess.PIPE)
        self._answers = b""

    def write(self, data):
        """Writes, and reads what is answered in the meantime."""
        view = memoryview(data)
        os.set_blocking(self._process.stdin.fileno(), False)
        while view:
            readable, writable, _ = select.select([self._process.stdout], [self._process.stdin], [], PATIENCE)
            assert readable or writable, "neither reads nor answers"
            if readable:
                self._read()
            if writable:
                view = view[os.write(self._process.stdin.fileno(), view):]

    def _read(self):
        part = os.read(self._process.stdout.fileno(), MODEST)
        assert part, f"ended with {self._process.wait()}"
        self._answers += part

    def answer(self):
        while b"\n" not in self._answers:
            readable, _, _ = select.select([self._process.stdout], [], [], PATIENCE)
            assert readable, "no answer"
            self._read()
        line, _, self._answers = self._answers.partition(b"\n")
        return json.loads(line)

    def skip(self, count):
        """Reads that many answers, and returns the last."""
        while True:
            lines = self._answers.count(b"\n")
            if lines >= count:
                break
            count -= lines
            self._answers = self._answers[self._answers.rfind(b"\n") + 1:]
            self._read()
        lines = self._answers.split(b"\n")
        self._answers = b"\n".join(lines[count:])
        return json.loads(lines[count - 1])

    def peak(self):
        """Kilobytes of memory, at the most so far."""
        status = pathlib.Path(f"/proc/{self._process.pid}/status").read_text()
        return int(status.partition("VmHWM:")[2].split()[0])

    def end(self):
        self._process.stdin.close()
        rest = self._process.stdout.read()
        return self._process.wait(PATIENCE), self._answers + rest


def request(number, method, **params):
    return json.dumps({"id": number, "method": method, "params": params}).encode() + b"\n"


def one_at_a_time(server):
    """Each is answered though no further line comes, also one that comes in pieces."""
    for number in range(3):
        server.write(request(number, "cancel", line=f"* {number}"))
        assert server.answer() == {"id": number, "result": f"* [-] {number}"}
    for piece in (b'{"id":"p","method":', b'"cancel","params":{"line"', b':"* a"}}\n{"id":'):
        server.write(piece)
    assert server.answer() == {"id": "p", "result": "* [-] a"}
    server.write(b'9,"method":"nothing"}\n')
    answer = server.answer()
    assert answer["id"] == 9 and "nothing" in answer["error"]["message"], answer


def hostile_lines(server):
    """Each gets an error, and the line behind it its answer."""
    deep = 2_000_000
    lines = [
        b"[" * deep,
        b'{"id":' + b"[" * deep + b"]" * deep + b"}",
        b'{"a":' * (deep // 5),
        b'{"id":"' + b"x" * (LONGEST + 1) + b'"}',
        b"y" * (3 * LONGEST),
        b"\0" * MODEST,
        b"\xff" * MODEST,
        b"",
        request(1, "nothing" * MODEST).strip(),
        request(1, "classify", line="a" * (2 * MODEST)).strip(),
        request(1, "parse", text="\n" * MODEST).strip(),
        request(1, "repeat", line="* a" * 30_000, day="2019-01-01", unit="day", count=1000).strip(),
        request(1, "uniqueName", base="a", taken=["a.txt", 1]).strip(),
    ]
    for number, line in enumerate(lines):
        server.write(line + b"\n" + request(number, "cancel", line="* a"))
        bad = server.answer()
        assert "message" in bad["error"] and len(bad) == 2, f"hostile line {number}: {str(bad)[:200]}"
        good = server.answer()
        assert good == {"id": number, "result": "* [-] a"}, f"behind hostile line {number}: {good}"


def large_texts(server):
    text = "* Pay 😀 #a\r\n" * 700_000
    server.write(request(1, "noteModel", filename="a.txt", content=text))
    assert server.answer()["result"]["hashTags"] == ["#a"]
    server.write(request(2, "addText", content=text, text="b", mode="append"))
    assert server.answer()["result"] == text + "b\r\n"
    cursor = {"location": len(text) + 700_000, "length": 0}
    server.write(request(3, "mark", text=text, action="todo", selection=cursor))
    answer = server.answer()["result"]
    assert answer["text"] == text + "* [ ] " and answer["selection"]["location"] == cursor["location"] + 6
    server.write(request(4, "parse", text="* [x] a\n" * 100_000))
    assert len(server.answer()["result"]) == 100_001


def many(server, count):
    kinds = [request(7, "classify", line="\t- [ ] Call Bob >2019-05-21 #a"),
             request(8, "mark", text="one\ntwo", action="todo"),
             request(9, "complete", line="* a", now="2019-05-21T14:07"),
             request(10, "classify", lin="a"),
             b"no JSON\n"]
    server.write(b"".join(kinds) * (count // len(kinds)))
    server.skip(count)


def memory(server):
    """What five times as many requests need is not more, but for what an allocator keeps."""
    many(server, 20_000)
    before = server.peak()
    many(server, 80_000)
    grown = server.peak() - before
    assert grown < 1024, f"grew by {grown} kB over 80,000 requests, from {before}"


def main():
    # A sanitizer keeps what was freed.
    checks = [one_at_a_time, hostile_lines, large_texts] + ([] if "--sanitized" in sys.argv else [memory])
    with tempfile.TemporaryDirectory() as home:
        for check in checks:
            server = Server(sys.argv[1], home)
            check(server)
            status, rest = server.end()
            assert (status, rest) == (0, b""), f"{check.__name__}: {status} {rest[:200]}"
    print(f"{len(checks)} checks")


if __name__ == "__main__":
    main()
