#!/usr/bin/env bash
# 100,000 variables: creating and reading each is found through the variable index, so the run
# takes a small fraction of a second of processor time rather than growing with the square of the
# count. Processor time, not elapsed time, so a busy machine does not fail the test.
. "$(dirname "$0")/lib/shell_test.bash"
sht_setup "$@"
[ -x /usr/bin/time ] || sht_skip "/usr/bin/time is not installed"

awk 'BEGIN { for (i = 1; i <= 100000; i++) printf "v%d = %d\n", i, i % 1000;
             print "&TYPE &v1 &v99999 &v100000" }' > many.kvx
/usr/bin/time -f '%U %S' -o cpu "$SHT_BIN" many.kvx > out
status=$?
[ "$status" = 0 ] || sht_fail "status $status"
[ "$(cat out)" = $'1 999 0\r' ] || sht_fail "output $(printf '%q' "$(cat out)")"
read -r user sys < cpu
total=$(awk -v u="$user" -v s="$sys" 'BEGIN { print u + s }')
awk -v t="$total" 'BEGIN { exit !(t < 1.0) }' || sht_fail "took $total s of processor time"
echo "100,000 variables: $total s of processor time"
sht_pass
