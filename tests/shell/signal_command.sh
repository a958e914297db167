#!/usr/bin/env bash
# Terminate or hangup sent to the interpreter while a command runs go on to the command; the
# interpreter waits for it, then ends of the same signal (status 128 + the signal), with the
# output written so far in place and nothing of the script run after the command. Interrupt
# and quit sent to the interpreter alone are ignored while the command runs, as ever.
#
# The command is "exec sleep 30", so that the process started is the sleep itself.
. "$(dirname "$0")/lib/shell_test.bash"
sht_setup "$@"
sht_need perl ps

cat > script.kvx <<'KVX'
&TYPE before
exec sleep 30
&TYPE after
KVX
printf 'before\r\rexec sleep 30\r' > expected

# The process id of the sleep that kvexec ($1) runs, once it runs.
sleep_of() {
    local pid
    for pid in $(ps -o pid= --ppid "$1"); do
        if [ "$(ps -o comm= -p "$pid")" = sleep ]; then
            echo "$pid"
            return 0
        fi
    done
    return 1
}

# run_case NAME EXPECTED_STATUS SIGNAL...: starts the script, sends the signals in turn once the
# command runs, and checks how the run ended.
run_case() {
    local name=$1 want=$2
    shift 2
    "${SHT_DEFAULT_SIGNALS[@]}" "$SHT_BIN" script.kvx > "$name.out" 2> "$name.err" &
    local pid=$!
    sht_wait_until sleep_of "$pid" > /dev/null
    local child
    child=$(sleep_of "$pid")
    local sig
    for sig in "$@"; do kill -s "$sig" "$pid"; done
    { wait "$pid"; } 2> /dev/null
    local status=$?
    if kill -0 "$child" 2> /dev/null; then
        kill "$child"
        sht_fail "$name: the command (pid $child) was left running"
    fi
    [ "$status" = "$want" ] || sht_fail "$name: status $status, expected $want"
    cmp -s expected "$name.out" || sht_fail "$name: output is '$(od -c < "$name.out")'"
    [ ! -s "$name.err" ] || sht_fail "$name: standard error: $(cat "$name.err")"
}

run_case terminate 143 TERM
run_case hangup 129 HUP
# Interrupt and quit, ignored, come before the terminate that ends the run; were either taken,
# the status would be 130 or 131.
run_case interrupt 143 INT QUIT TERM

# A plain "sleep 30" is started directly, so the signal reaches the sleep itself too. (Through
# the shell, with KVEXEC_PLAIN, the shell gets it; what it does with its own child is its affair.)
if [ -z "${KVEXEC_PLAIN:-}" ]; then
    cat > script.kvx <<'KVX'
&TYPE before
sleep 30
&TYPE after
KVX
    printf 'before\r\rsleep 30\r' > expected
    run_case direct_terminate 143 TERM
    run_case direct_hangup 129 HUP
fi

sht_pass
