#!/usr/bin/env bash
# A script that fails while it is read ends the run as one that cannot be opened: the system's
# message naming the script on standard error, and the error number as status. The script here
# is a terminal whose other side closes once the interpreter has it open: reading it then fails
# with an input/output error (5).
. "$(dirname "$0")/lib/shell_test.bash"
sht_setup "$@"
sht_need python3

python3 - "$SHT_BIN" <<'PY' || exit $?
import os, subprocess, sys, time

binary = sys.argv[1]
try:
    master, slave = os.openpty()
except OSError as e:
    print("script_read_error: SKIPPED: no pseudo-terminal to be had (%s)" % e)
    sys.exit(77)
name = os.ttyname(slave)
os.close(slave)
run = subprocess.Popen([binary, name], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                       stderr=subprocess.PIPE)

# Once the interpreter holds the terminal open, its other side goes away.
fds = "/proc/%d/fd" % run.pid
deadline = time.monotonic() + 10
while True:
    try:
        if any(os.readlink(os.path.join(fds, f)) == name for f in os.listdir(fds)):
            break
    except OSError:
        pass
    if run.poll() is not None or time.monotonic() > deadline:
        print("script_read_error: FAIL: the interpreter never opened %s" % name)
        sys.exit(1)
    time.sleep(0.01)
os.close(master)

out, err = run.communicate(timeout=20)
want = ("%s: Input/output error\n" % name).encode()
if run.returncode != 5 or out != b"" or err != want:
    print("script_read_error: FAIL: status %d, output %r, error %r (expected 5, '', %r)"
          % (run.returncode, out, err, want))
    sys.exit(1)
PY

sht_pass
