#!/usr/bin/env bash
# The interpreter runs on a large stack it reserves at start. Where it cannot reserve it (a limit
# on the address space), it runs on the stack it was given: scripts run the same, only very deep
# nesting has less room. (Not run in the sanitizer build, whose runtime reserves far more address
# space than the limit leaves.)
. "$(dirname "$0")/lib/shell_test.bash"
sht_setup "$@"

printf '&FOR &i = 1, 3\n&IF &i = 2 &TYPE two\n&NEXT\n&CALL sub\n&QUIT 3\nsub:\n&TYPE sub\n&RETURN\n' > case.kvx
expected=$'two\rsub\r'
for plain in "" 1; do
  # 256 MiB: room for the program, not for a stack of 1 GiB.
  got=$( (ulimit -v 262144 && KVEXEC_PLAIN=$plain KVEXEC_TERM=raw "$SHT_BIN" case.kvx); echo "status $?")
  [ "$got" = "${expected}status 3" ] || sht_fail "plain '$plain': $(printf '%q' "$got")"
done
# The same with room to spare takes the large stack; the output is the same.
got=$(KVEXEC_TERM=raw "$SHT_BIN" case.kvx; echo "status $?")
[ "$got" = "${expected}status 3" ] || sht_fail "without a limit: $(printf '%q' "$got")"
sht_pass
