"""benchtable.py FOLDER: prints one table of the Google Benchmark results (*.json) in the folder.

The columns are the time of one iteration, then every counter that a benchmark reports whose name
begins with "x_" (a ratio to a baseline measured beside it) or "q_" (a figure of quality), then the
rate in bytes a second.
"""

import json
import pathlib
import re
import sys

MILLISECONDS = {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}


def rows(folder):
    for path in sorted(pathlib.Path(folder).glob("*.json")):
        text = path.read_text()
        if not text.strip():
            continue  # the filter left nothing of this program
        for run in json.loads(text)["benchmarks"]:
            if run.get("run_type") == "aggregate":
                continue
            yield path.stem.removeprefix("bench_"), run


def ratios(run):
    found = [f"{key[2:]} x {value:.2f}" for key, value in run.items() if key.startswith("x_")]
    found += [f"{key[2:]} {value:.3f}" for key, value in run.items() if key.startswith("q_")]
    return ", ".join(found) or "-"


def cells(room, run):
    if run.get("error_occurred"):
        return room, run["name"], "failed", run.get("error_message", ""), ""
    milliseconds = run["real_time"] * MILLISECONDS[run["time_unit"]]
    rate = run.get("bytes_per_second")
    return (
        room,
        re.sub(r"/(manual_time|real_time|(iterations|min_time):[^/]*)", "", run["name"]),
        f"{milliseconds:.3f} ms",
        ratios(run),
        f"{rate / 1e9:.2f} GB/s" if rate else "",
    )


def main():
    table = [("room", "benchmark", "time", "ratio", "rate")]
    table += [cells(room, run) for room, run in rows(sys.argv[1])]
    widths = [max(len(line[column]) for line in table) for column in range(5)]
    for line in table:
        print("  ".join(text.ljust(width) for text, width in zip(line, widths)).rstrip())


main()
