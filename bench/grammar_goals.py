# SPDX-License-Identifier: MIT
"""How fast notes are read in memory, against peers, and that no line takes time out of proportion."""

import json
import os
import subprocess
import tempfile

from goals import Row, answer

COUNTS = ("tasksAndLists", "headingsAndQuotes", "hashtags", "mentions", "dates", "doneTags")
SHORT, LONG = 64 << 10, 256 << 10


def run_benchmarks(program, corpus, which, repetitions, seconds):
    """Medians by name: CPU time in milliseconds, and the counters."""
    with tempfile.TemporaryDirectory() as folder:
        out = os.path.join(folder, "out.json")
        subprocess.run([program, corpus, f"--benchmark_filter={which}", f"--benchmark_repetitions={repetitions}",
                        f"--benchmark_min_time={seconds}", "--benchmark_enable_random_interleaving=true",
                        f"--benchmark_out={out}", "--benchmark_out_format=json"],
                       check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        with open(out, encoding="utf-8") as file:
            results = json.load(file)["benchmarks"]
    return {r["run_name"]: r for r in results if r.get("aggregate_name") == "median"}


def counts_of(result):
    return {name: round(result[name]) for name in COUNTS}


def faster(ours, peer, name, limit):
    speed = f"{ours['bytes_per_second'] / 1e6:.0f} against {peer['bytes_per_second'] / 1e6:.1f} MB/s"
    return Row(name, peer["cpu_time"] / ours["cpu_time"], limit, at_least=True, detail=speed)


def peer_rows(program, corpus):
    found = run_benchmarks(program, corpus, "^(read|sample)/", 7, 0.3)
    return [
        answer("sample, against ICU", counts_of(found["sample/icu"]), counts_of(found["sample/tessaly"])),
        answer("corpus, against PCRE2", counts_of(found["read/pcre2"]), counts_of(found["read/tessaly"])),
        faster(found["sample/tessaly"], found["sample/icu"], "classify + tags + dates / ICU's patterns (3 MB)", 40),
        faster(found["read/tessaly"], found["read/pcre2"], "classify + tags + dates / PCRE2-JIT, UTF + UCP", 2.5),
        faster(found["read/tessaly"], found["read/md4c"], "classify + tags + dates / md4c, CommonMark", 2),
    ]


def growth_row(found, kind, family):
    short, long = (found[f"{kind}/{family}/{size}"]["cpu_time"] for size in (SHORT, LONG))
    return Row(f"{family}: {kind}, 256 KB / 64 KB", long / short, 4.5, detail=f"{short:.3f} ms, {long:.3f} ms")


def time_row(found, family):
    return Row(f"{family}: scan, 64 KB", found[f"scan/{family}/{SHORT}"]["cpu_time"], 1, unit="ms")


def worst_and_missed(rows, name):
    worst = max(rows, key=lambda row: row.value)
    summary = Row(f"{name}, worst of {len(rows)}", worst.value, worst.limit, unit=worst.unit, detail=worst.name)
    return [summary] + [row for row in rows if not row.met and row is not worst]


def line_rows(program, corpus):
    found = run_benchmarks(program, corpus, "^(scan|records)/", 5, 0.02)
    families = sorted({name.split("/")[1] for name in found})
    return (
        [growth_row(found, "scan", family) for family in families]
        + worst_and_missed([time_row(found, family) for family in families], "scan, 64 KB")
        + worst_and_missed([growth_row(found, "records", family) for family in families], "records, 256 KB / 64 KB")
    )
