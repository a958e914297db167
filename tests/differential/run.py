#!/usr/bin/env python3
"""Differential test: every script must give the same bytes, with and without KVEXEC_PLAIN.

The engine may keep the script's lines, its labels and its variables in faster structures and start
commands without a shell; KVEXEC_PLAIN (set and not empty) turns all of that off. For each seed this
driver generates a script (generate.py), runs it twice in the same fresh directory and the same
clean environment, once with KVEXEC_PLAIN=1 and once without, and compares standard output,
standard error and the exit status byte for byte. A difference prints the seed and keeps the script,
its files and both runs' output under --keep, and the test fails. Under a sanitizer build, a
sanitizer's report in either run fails the seed as well.

    run.py <kvexec> [--kind general|selfmod] [--seeds FIRST-LAST] [--jobs N] [--keep DIR] [--pipe]
    run.py <kvexec> --self-test

A long run (40 to 80 seeds a second on two cores, so 100,000 seeds take about half an hour to
an hour):

    tests/differential/run.py build/kvexec --seeds 1-100000 --jobs 2 --keep /tmp/kvdiff
    tests/differential/run.py build/kvexec --kind selfmod --seeds 1-20000 --jobs 2 --keep /tmp/kvdiff

One seed again, keeping its files whatever the outcome:

    tests/differential/run.py build/kvexec --seeds 4711 --keep /tmp/kvdiff --keep-all

--pipe gives the script through a pipe (/dev/stdin), which cannot be repositioned: a jump back
then finds no label. It is not part of the ctest runs.

Each run is limited to 5 seconds (timeout -s KILL). When both runs of a seed hit the limit, what
they printed must agree up to where the shorter one stops; when only one does, that is a difference.
--self-test checks the driver itself: wrappers around the binary that change the output of one of
the two runs must be caught, and selfmod scripts must notice when their rewrite does not happen.
"""

import argparse
import collections
import concurrent.futures
import os
import resource
import shlex
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import generate  # noqa: E402

KILLED = 128 + 9


class Outcome:
    def __init__(self, status, out, err):
        # timeout(1) sends the kill to its whole process group, itself included.
        if status == -9:
            status = KILLED
        self.status, self.out, self.err = status, out, err
        self.timed_out = status == KILLED


def run_environment(files, rundir, plain):
    env = {
        "PATH": "/usr/local/bin:/usr/bin:/bin",
        "HOME": rundir,
        "KVEXEC_TERM": "raw",
        "TZ": "UTC",
        "LC_ALL": "C.UTF-8",
    }
    # The script's own variables, in its order; PWD right, missing or wrong.
    pwd = "PWD=@run"
    for line in files.get("env", pwd + "\n").split("\n")[:-1]:
        name, value = line.split("=", 1)
        if line == "PWD=@none":
            continue
        env.pop(name, None)
        env[name] = rundir if line == "PWD=@run" else value
    for v in ("ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"):
        if os.environ.get(v):
            env[v] = os.environ[v]
    if plain:
        env["KVEXEC_PLAIN"] = "1"
    return env


def run_once(binary, rundir, files, plain, limit, pipe=False):
    """Runs the script in a fresh rundir (the same path for both runs) and returns its outcome;
    with pipe, the script comes through a pipe as /dev/stdin."""
    shutil.rmtree(rundir, ignore_errors=True)
    os.makedirs(rundir)
    for name, data in files.items():
        if name in ("args", "env"):
            continue
        with open(os.path.join(rundir, name), "wb") as f:
            f.write(data if isinstance(data, bytes) else data.encode())
    args = files.get("args", "").split("\n")[:-1]
    env = run_environment(files, rundir, plain)
    script = "/dev/stdin" if pipe else "job.kvx"
    p = subprocess.run(["timeout", "-s", "KILL", str(limit), binary, script] + args,
                       cwd=rundir, env=env, stdin=None if pipe else subprocess.DEVNULL,
                       input=files["job.kvx"] if pipe else None,
                       stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    return Outcome(p.returncode, p.stdout, p.stderr)


def first_difference(a, b):
    n = min(len(a), len(b))
    for i in range(n):
        if a[i] != b[i]:
            return i
    return n


SANITIZER_REPORTS = (b"ERROR: AddressSanitizer", b"ERROR: LeakSanitizer", b"runtime error:")


def compare(plain, fast):
    """Returns a list of what differs, empty when the two runs agree. A sanitizer's report
    (in a sanitizer build) counts as a failure too, even when both runs print the same one."""
    problems = []
    for side, o in (("plain", plain), ("fast", fast)):
        if any(r in o.err for r in SANITIZER_REPORTS):
            problems.append(f"the {side} run has a sanitizer report:\n      "
                            + o.err[:400].decode(errors="replace").replace("\n", "\n      "))
    both_cut = plain.timed_out and fast.timed_out
    if plain.timed_out != fast.timed_out:
        problems.append(f"only the {'plain' if plain.timed_out else 'fast'} run hit the time limit")
    if plain.status != fast.status:
        problems.append(f"exit status: plain {plain.status}, fast {fast.status}")
    for what, a, b in (("stdout", plain.out, fast.out), ("stderr", plain.err, fast.err)):
        if both_cut:
            n = min(len(a), len(b))
            same = a[:n] == b[:n]
        else:
            same = a == b
        if not same:
            i = first_difference(a, b)
            lo = max(0, i - 60)
            problems.append(f"{what} differs at byte {i} (plain {len(a)} bytes, fast {len(b)} bytes)\n"
                            f"      plain: {a[lo:i + 60]!r}\n"
                            f"      fast:  {b[lo:i + 60]!r}")
    return problems


def keep_files(keep, kind, seed, files, plain, fast):
    d = os.path.join(keep, f"{kind}-{seed}")
    shutil.rmtree(d, ignore_errors=True)
    os.makedirs(d)
    for name, data in files.items():
        with open(os.path.join(d, name), "wb") as f:
            f.write(data if isinstance(data, bytes) else data.encode())
    for side, o in (("plain", plain), ("fast", fast)):
        with open(os.path.join(d, side + ".stdout"), "wb") as f:
            f.write(o.out)
        with open(os.path.join(d, side + ".stderr"), "wb") as f:
            f.write(o.err)
        with open(os.path.join(d, side + ".status"), "w") as f:
            f.write(f"{o.status}\n")
    # By hand: the same run in a fresh directory, e.g. under a debugger.
    run = "/tmp/kvdiff-again"
    env = " ".join(shlex.quote(f"{k}={v}") for k, v in run_environment(files, run, False).items())
    args = " ".join(shlex.quote(a) for a in files.get("args", "").split("\n")[:-1])
    with open(os.path.join(d, "again.sh"), "w") as f:
        f.write("#!/bin/sh\n# again.sh <kvexec> [KVEXEC_PLAIN=1]: runs this script as the test did.\n"
                f"bin=$(readlink -f \"$1\"); shift\nrm -rf {run} && mkdir {run} && "
                f"cp \"$(dirname \"$0\")\"/*.kvx {run}/ && cd {run} || exit 2\n"
                f"exec env -i {env} \"$@\" \"$bin\" job.kvx {args}\n")
    os.chmod(os.path.join(d, "again.sh"), 0o755)
    return d


def check_seed(binary, kind, seed, limit, keep, keep_all, pipe=False):
    files = generate.generate(kind, seed)
    base = tempfile.mkdtemp(prefix="kvdiff.")
    try:
        rundir = os.path.join(os.path.realpath(base), "run")
        plain = run_once(binary, rundir, files, True, limit, pipe)
        fast = run_once(binary, rundir, files, False, limit, pipe)
    finally:
        shutil.rmtree(base, ignore_errors=True)
    problems = compare(plain, fast)
    kept = None
    if keep and (problems or keep_all):
        kept = keep_files(keep, kind, seed, files, plain, fast)
    return seed, plain, problems, kept


def parse_seeds(text):
    if "-" in text:
        first, last = text.split("-", 1)
        return range(int(first), int(last) + 1)
    return range(int(text), int(text) + 1)


def run_seeds(binary, kind, seeds, jobs=2, limit=5, keep=None, keep_all=False, max_failures=5,
              quiet=False, out=sys.stdout, pipe=False):
    """Compares every seed; returns the seeds that differed."""
    failed = []
    statuses = collections.Counter()
    timeouts = 0
    total_out = 0
    with concurrent.futures.ThreadPoolExecutor(max_workers=jobs) as pool:
        futures = [pool.submit(check_seed, binary, kind, s, limit, keep, keep_all, pipe) for s in seeds]
        for fut in futures:
            if len(failed) >= max_failures:
                fut.cancel()
                continue
            seed, plain, problems, kept = fut.result()
            statuses[plain.status] += 1
            timeouts += plain.timed_out
            total_out += len(plain.out)
            if problems:
                failed.append(seed)
                print(f"DIFFERENCE: {kind} seed {seed}", file=out)
                for p in problems:
                    print("  " + p, file=out)
                if kept:
                    print(f"  kept in {kept}", file=out)
                print(f"  again: {sys.argv[0]} {binary} --kind {kind} --seeds {seed} --keep DIR --keep-all",
                      file=out)
    if not quiet:
        done = sum(statuses.values())
        hist = ", ".join(f"{s}: {n}" for s, n in sorted(statuses.items()))
        print(f"{kind}: {done} seeds compared, {len(failed)} differ; exit statuses ({hist}); "
              f"{timeouts} hit the time limit; {total_out // max(done, 1)} bytes of output on average",
              file=out)
    return failed


WRAPPERS = {
    # Both runs behave alike: the driver must pass.
    "same": 'exec "$REAL" "$@"',
    # One run prints a byte more, writes to standard error, or ends with another status.
    "stdout": '"$REAL" "$@"; s=$?; [ -n "$KVEXEC_PLAIN" ] && printf x; exit $s',
    "stderr": '"$REAL" "$@"; s=$?; [ -z "$KVEXEC_PLAIN" ] && printf x >&2; exit $s',
    "status": '"$REAL" "$@"; s=$?; [ -n "$KVEXEC_PLAIN" ] && exit $((s ^ 64)); exit $s',
    # A run that never sees its script change, as a cache that is not checked would.
    "stale": '[ -z "$KVEXEC_PLAIN" ] && [ -f new.kvx ] && cp job.kvx new.kvx && : > more.kvx; exec "$REAL" "$@"',
}


def self_test(binary):
    # The comparison alone, on made-up outcomes (status, stdout, stderr).
    cut = KILLED
    cases = [
        ((0, b"a\r", b""), (0, b"a\r", b""), True),
        ((0, b"a\r", b""), (0, b"a\n", b""), False),
        ((0, b"", b"x"), (0, b"", b""), False),
        ((4, b"", b""), (3, b"", b""), False),
        ((cut, b"abc", b""), (cut, b"ab", b""), True),
        ((cut, b"abc", b""), (cut, b"abX", b""), False),
        ((cut, b"abc", b""), (0, b"abc", b""), False),
        ((1, b"", b"==1==ERROR: AddressSanitizer: x"), (1, b"", b"==1==ERROR: AddressSanitizer: x"), False),
    ]
    ok = True
    for plain, fast, same in cases:
        if (not compare(Outcome(*plain), Outcome(*fast))) != same:
            print(f"self-test compare {plain} {fast}: WRONG")
            ok = False
    print(f"self-test compare ({len(cases)} cases) -> {'ok' if ok else 'WRONG'}")
    tmp = tempfile.mkdtemp(prefix="kvdiff-self.")
    try:
        for name, body in WRAPPERS.items():
            path = os.path.join(tmp, name + ".sh")
            with open(path, "w") as f:
                f.write(f"#!/bin/sh\nREAL='{binary}'\n{body}\n")
            os.chmod(path, 0o755)

        def check(name, kind, seeds, want_failures):
            nonlocal ok
            keep = os.path.join(tmp, "keep-" + name)
            sink = open(os.devnull, "w")
            failed = run_seeds(os.path.join(tmp, name + ".sh"), kind, seeds, keep=keep,
                               max_failures=len(seeds), quiet=True, out=sink)
            sink.close()
            kept = all(os.path.exists(os.path.join(keep, f"{kind}-{s}", "job.kvx")) for s in failed)
            good = want_failures(len(failed)) and kept
            print(f"self-test {name} ({kind}, {len(seeds)} seeds): {len(failed)} differ"
                  f"{'' if kept else ', scripts not kept'} -> {'ok' if good else 'WRONG'}")
            ok = ok and good

        seeds = range(1, 4)
        check("same", "general", seeds, lambda n: n == 0)
        check("same", "selfmod", seeds, lambda n: n == 0)
        check("stdout", "general", seeds, lambda n: n == len(seeds))
        check("stderr", "general", seeds, lambda n: n == len(seeds))
        check("status", "selfmod", seeds, lambda n: n == len(seeds))
        # Most self-modifying scripts must notice a rewrite or an append that did not happen.
        check("stale", "selfmod", range(1, 21), lambda n: n >= 5)
    finally:
        shutil.rmtree(tmp, ignore_errors=True)
    return ok


def main():
    ap = argparse.ArgumentParser(description="Compare kvexec runs with and without KVEXEC_PLAIN.")
    ap.add_argument("binary")
    ap.add_argument("--kind", choices=["general", "selfmod"], default="general")
    ap.add_argument("--seeds", default="1-300", help="FIRST-LAST or one seed (default 1-300)")
    ap.add_argument("--jobs", type=int, default=2)
    ap.add_argument("--timeout", type=int, default=5, help="seconds per run (default 5)")
    ap.add_argument("--keep", help="directory for the files of seeds that differ")
    ap.add_argument("--keep-all", action="store_true", help="keep every seed's files")
    ap.add_argument("--max-failures", type=int, default=5)
    ap.add_argument("--pipe", action="store_true",
                    help="give the script through a pipe (/dev/stdin), where it cannot be repositioned")
    ap.add_argument("--self-test", action="store_true")
    a = ap.parse_args()
    binary = os.path.realpath(a.binary)
    # A script may end on a signal; no core files in the run directories.
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    if shutil.which("timeout") is None:
        print("SKIPPED: timeout(1) is not installed")
        return 77
    if a.self_test:
        return 0 if self_test(binary) else 1
    failed = run_seeds(binary, a.kind, parse_seeds(a.seeds), a.jobs, a.timeout,
                       a.keep, a.keep_all, a.max_failures, pipe=a.pipe)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
