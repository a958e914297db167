#!/usr/bin/env python3
"""Line coverage of the sources by the test suite, from the gcov counters of a coverage build.

    tests/coverage.py <build folder> [--least N] [--uncovered FILE] [--notes NOTES]

Reads every .gcda file under the build folder (written by a build configured with
-DKVEXEC_COVERAGE=ON after its tests ran), asks gcov for its lines, and prints each file of src/
with its executable and executed lines, least covered first (N of them, 10 by default), then the
total. A line compiled into several targets counts as executed when any of them ran it.
--uncovered FILE lists the lines of one file (a path ending, such as kavro/signals.cpp) that
never ran. --notes NOTES compares the lines that never ran with the reasons given in NOTES (lines
"file:line[-line]: reason", such as tests/coverage_notes.md): it lists the lines without a reason
and the reasons for lines that now run, and ends with status 1 when there is either.
"""
import argparse
import gzip
import json
import os
import re
import subprocess
import sys


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--least", type=int, default=10)
    parser.add_argument("--uncovered")
    parser.add_argument("--notes")
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

    if args.notes:
        sys.exit(check_notes(lines, args.notes))

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


def check_notes(lines, notes):
    """The number of disagreements between the lines that never ran and the reasons in notes."""
    explained = set()
    for text in open(notes, encoding="utf-8"):
        m = re.match(r"([\w./+-]+):(\d+)(?:-(\d+))?: \S", text)
        if m:
            name, first = m.group(1), int(m.group(2))
            last = int(m.group(3) or first)
            # A group may hold lines with no code (blank, a lone declaration): only its lines that
            # can run count; a single line must be one.
            seen = lines.get(name, {})
            explained.update((name, n) for n in range(first, last + 1) if first == last or n in seen)
    never = {(name, n) for name, seen in lines.items() for n, ran in seen.items() if not ran}
    for name, n in sorted(never - explained):
        print(f"{name}:{n}: never runs, and has no reason in {notes}")
    for name, n in sorted(explained - never):
        print(f"{name}:{n}: has a reason in {notes}, but " + ("runs" if n in lines.get(name, {}) else "is no line that can run"))
    return 1 if never != explained else 0


if __name__ == "__main__":
    main()
