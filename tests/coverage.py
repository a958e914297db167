#!/usr/bin/env python3
"""Line coverage of the sources by the test suite, from the gcov counters of a coverage build.

    tests/coverage.py <build folder> [--least N] [--uncovered FILE]

Reads every .gcda file under the build folder (written by a build configured with
-DKVEXEC_COVERAGE=ON after its tests ran), asks gcov for its lines, and prints each file of src/
with its executable and executed lines, least covered first (N of them, 10 by default), then the
total. A line compiled into several targets counts as executed when any of them ran it.
--uncovered FILE lists the lines of one file (a path ending, such as kavro/signals.cpp) that
never ran.
"""
import argparse
import gzip
import json
import os
import subprocess
import sys


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--least", type=int, default=10)
    parser.add_argument("--uncovered")
    args = parser.parse_args()

    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    src = os.path.join(root, "src") + os.sep
    gcdas = []
    for folder, _, names in os.walk(os.path.abspath(args.build)):
        gcdas += [os.path.join(folder, n[:-5] + ".gcda") for n in names if n.endswith(".gcno")]
    if not gcdas:
        sys.exit(f"no .gcda files under {args.build}: configure with -DKVEXEC_COVERAGE=ON and run the tests")

    lines = {}  # source -> {line: executed}
    for gcda in gcdas:
        out = subprocess.run(["gcov", "--json-format", "--stdout", gcda], capture_output=True,
                             cwd=os.path.dirname(gcda))
        if out.returncode != 0 or not out.stdout:
            continue
        data = out.stdout
        if data[:2] == b"\x1f\x8b":
            data = gzip.decompress(data)
        for record in json.loads(data)["files"]:
            path = os.path.normpath(os.path.join(os.path.dirname(gcda), record["file"]))
            if not path.startswith(src):
                continue
            seen = lines.setdefault(path[len(src):], {})
            for line in record["lines"]:
                n = line["line_number"]
                seen[n] = seen.get(n, False) or line["count"] > 0

    if args.uncovered:
        for name, seen in lines.items():
            if name.endswith(args.uncovered):
                text = open(os.path.join(src, name), encoding="utf-8", errors="replace").read().splitlines()
                for n in sorted(k for k, ran in seen.items() if not ran):
                    print(f"{name}:{n}: {text[n - 1].strip() if n <= len(text) else ''}")
        return

    rows = []
    for name, seen in lines.items():
        rows.append((sum(seen.values()) / len(seen) if seen else 1.0, name, len(seen), sum(seen.values())))
    rows.sort()
    print(f"{'file':40} {'lines':>6} {'run':>6} {'%':>6}")
    for share, name, total, ran in rows[: args.least]:
        print(f"{name:40} {total:6} {ran:6} {100 * share:6.1f}")
    total = sum(r[2] for r in rows)
    ran = sum(r[3] for r in rows)
    print(f"{'src/ (' + str(len(rows)) + ' files)':40} {total:6} {ran:6} {100 * ran / total:6.1f}")


if __name__ == "__main__":
    main()
