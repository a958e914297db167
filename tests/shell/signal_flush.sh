#!/usr/bin/env bash
# A run ended by interrupt, terminate or hangup while its output goes to a file: what it wrote
# is in the file, once, and the run ends of that signal (status 128 + the signal).
. "$(dirname "$0")/lib/shell_test.bash"
sht_setup "$@"
sht_need perl

printf '&TYPE progress\n&SLEEP 30\n&TYPE never\n' > script.kvx
printf 'progress\r' > expected

has_progress() { cmp -s expected "$1"; }

run_case() {
    local sig=$1 want=$2
    "${SHT_DEFAULT_SIGNALS[@]}" "$SHT_BIN" script.kvx > "$sig.out" &
    local pid=$!
    sht_wait_until has_progress "$sig.out"
    kill -s "$sig" "$pid"
    { wait "$pid"; } 2> /dev/null
    local status=$?
    [ "$status" = "$want" ] || sht_fail "$sig: status $status, expected $want"
    cmp -s expected "$sig.out" || sht_fail "$sig: the file holds '$(od -c < "$sig.out")'"
}

run_case INT 130
run_case TERM 143
run_case HUP 129

sht_pass
