#!/usr/bin/env bash
# KVEXEC_TERM=text, for logs: a carriage return becomes a line feed, screen codes are dropped,
# text passes unchanged. A value that names no mode is ignored: standard output that is no
# terminal then gets the raw bytes.
. "$(dirname "$0")/lib/shell_test.bash"
sht_setup "$@"

printf '&TYPE one\n&CRT CLS CLEAR\n&TYPE two\n' > script.kvx

KVEXEC_TERM=text "$SHT_BIN" script.kvx > text.out
status=$?
[ "$status" = 0 ] || sht_fail "text: status $status"
printf 'one\ntwo\n' > expected
cmp -s expected text.out || sht_fail "text: output is '$(od -c < text.out)'"

KVEXEC_TERM=lines "$SHT_BIN" script.kvx > other.out
status=$?
[ "$status" = 0 ] || sht_fail "unknown mode: status $status"
printf 'one\r\x0ctwo\r' > expected
cmp -s expected other.out || sht_fail "unknown mode: output is '$(od -c < other.out)'"

sht_pass
