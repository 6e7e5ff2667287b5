#!/usr/bin/env python3
"""Shows what share of the product's lines the tests ran, and which did not run.

  coverage.py BUILD_FOLDER PERCENT

Reads the counters of the objects of class_modules and platform. Fails when fewer than PERCENT of all lines ran.
"""

import collections
import concurrent.futures
import json
import os
import pathlib
import subprocess
import sys


def counted(notes: pathlib.Path) -> list[tuple[str, int, int]]:
    """(source, line, times) for each line of our own sources that an object's notes name."""
    answer = subprocess.run(["gcov", "--json-format", "--stdout", "--relative-only", "--source-prefix", os.getcwd(), notes],
                            capture_output=True, check=True).stdout
    found = []
    for text in answer.splitlines():
        for source in json.loads(text)["files"]:
            name = os.path.relpath(source["file"]) if os.path.isabs(source["file"]) else source["file"].removeprefix("../")
            parts = pathlib.Path(name).parts
            if parts[0] in ("class_modules", "platform") and {"src", "include"} & set(parts) and "tests" not in parts:
                found += [(name, line["line_number"], line["count"]) for line in source["lines"]]
    return found


def spans(lines: list[int]) -> str:
    """1-3, 7"""
    shown = []
    for line in lines:
        if shown and shown[-1][1] == line - 1:
            shown[-1][1] = line
        else:
            shown.append([line, line])
    return ", ".join(str(a) if a == b else f"{a}-{b}" for a, b in shown)


def main() -> int:
    build = pathlib.Path(sys.argv[1])
    notes = [path for room in ("class_modules", "platform") for path in (build / room).rglob("*.gcno")
             if "/src/" in str(path)]
    times = collections.defaultdict(collections.Counter)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for found in pool.map(counted, notes):
            for name, line, count in found:
                times[name][line] += count
    total = sum(len(lines) for lines in times.values())
    ran = sum(1 for lines in times.values() for count in lines.values() if count > 0)
    for name in sorted(times):
        missed = sorted(line for line, count in times[name].items() if count == 0)
        if missed:
            share = 100 * (1 - len(missed) / len(times[name]))
            print(f"{share:6.1f} %  {name}: {spans(missed)}")
    share = 100 * ran / total if total else 0.0
    print(f"{share:6.1f} %  of {total} lines in {len(times)} files")
    return 0 if share >= float(sys.argv[2]) else 1


if __name__ == "__main__":
    sys.exit(main())
