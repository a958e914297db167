#!/usr/bin/env bash
# Output that cannot be written ends the run: a message on standard error, "kvexec: write error:"
# and the system's text for the error, and status 1. Nothing after the failed write runs.
. "$(dirname "$0")/lib/shell_test.bash"
sht_setup "$@"
[ -w /dev/full ] || sht_skip "/dev/full is not available"

expected_err="kvexec: write error: No space left on device"

# 1. Output written at the end of the run.
printf '&TYPE hello\n' > end.kvx
"$SHT_BIN" end.kvx > /dev/full 2> end.err
status=$?
[ "$status" = 1 ] || sht_fail "end of run: status $status, expected 1"
[ "$(cat end.err)" = "$expected_err" ] || sht_fail "end of run: standard error is '$(cat end.err)'"

# 2. Output written before a command: the run ends there, the command never runs.
printf '&TYPE hello\ntouch ran\n&TYPE after\n' > command.kvx
"$SHT_BIN" command.kvx > /dev/full 2> command.err
status=$?
[ "$status" = 1 ] || sht_fail "before a command: status $status, expected 1"
[ "$(cat command.err)" = "$expected_err" ] || sht_fail "before a command: standard error is '$(cat command.err)'"
[ ! -e ran ] || sht_fail "the command after the failed write ran"

# 3. More output than the buffer holds, in a loop: the first write ends the run.
cat > loop.kvx <<'KVX'
&N = 0
&WHILE &N < 3000
&TYPE a line of some length, written to a device that takes nothing at all
&N = &N + 1
&WEND
touch ran
KVX
"$SHT_BIN" loop.kvx > /dev/full 2> loop.err
status=$?
[ "$status" = 1 ] || sht_fail "loop: status $status, expected 1"
[ "$(cat loop.err)" = "$expected_err" ] || sht_fail "loop: standard error is '$(cat loop.err)'"
[ ! -e ran ] || sht_fail "the run went on after the failed write"

# 4. The status of &QUIT gives way to the write error.
printf '&TYPE hello\n&QUIT 5\n' > quit.kvx
"$SHT_BIN" quit.kvx > /dev/full 2> quit.err
status=$?
[ "$status" = 1 ] || sht_fail "&QUIT: status $status, expected 1"
[ "$(cat quit.err)" = "$expected_err" ] || sht_fail "&QUIT: standard error is '$(cat quit.err)'"

sht_pass
