#!/usr/bin/env bash
# A script that cannot be repositioned (a pipe, a FIFO) is kept as it is read, so its loops and
# jumps, backward ones included, work as on a file; and the same with the plain engine.
. "$(dirname "$0")/lib/shell_test.bash"
sht_setup "$@"
sht_need mkfifo

script='&FOR &i = 1, 3
&TYPE i=&i
&NEXT
&GOTO below
back:
&TYPE back
&QUIT 5
below:
&GOTO back
'
expected=$'i=1\ri=2\ri=3\rback\r'

for plain in "" 1; do
    out=$(printf '%s' "$script" | KVEXEC_PLAIN=$plain KVEXEC_TERM=raw "$SHT_BIN" /dev/stdin)
    status=$?
    [ "$out" = "$expected" ] || sht_fail "pipe (plain='$plain'): output $(printf '%q' "$out")"
    [ "$status" = 5 ] || sht_fail "pipe (plain='$plain'): status $status, expected 5"

    rm -f fifo
    mkfifo fifo
    printf '%s' "$script" > fifo &
    out=$(KVEXEC_PLAIN=$plain KVEXEC_TERM=raw "$SHT_BIN" fifo)
    status=$?
    wait
    [ "$out" = "$expected" ] || sht_fail "FIFO (plain='$plain'): output $(printf '%q' "$out")"
    [ "$status" = 5 ] || sht_fail "FIFO (plain='$plain'): status $status, expected 5"
done

# A script that arrives slowly is run as it arrives: its first line runs before the rest exists.
rm -f fifo started
mkfifo fifo
{
    printf 'touch started\n'
    for _ in $(seq 50); do [ -e started ] && break; sleep 0.1; done
    printf '&TYPE rest\n'
} > fifo &
out=$(KVEXEC_TERM=raw "$SHT_BIN" fifo)
wait
[ "$out" = $'\rtouch started\rrest\r' ] || sht_fail "slow FIFO: output $(printf '%q' "$out")"
sht_pass
