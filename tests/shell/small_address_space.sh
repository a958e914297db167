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
# Nesting deeper than the given stack holds ends with the out-of-memory report (status 12), as
# nesting past 100,000 levels does on the large stack, not with a crash. 5,000 open blocks are
# more than 8 MiB of stack is given levels for; on the large stack they run.
awk 'BEGIN { for (i = 0; i < 5000; i++) print "&IF 1"; print "&TYPE deep"; for (i = 0; i < 5000; i++) print "&ENDIF" }' > deep.kvx
got=$( (ulimit -s 8192 && ulimit -v 262144 && KVEXEC_TERM=raw "$SHT_BIN" deep.kvx 2>&1); echo "status $?")
case $got in
  *"Cannot allocate memory, in deep.kvx, line "*"status 12") ;;
  *) sht_fail "deep nesting on the given stack: $(printf '%q' "$(tail -c 200 <<< "$got")")" ;;
esac
got=$(KVEXEC_TERM=raw "$SHT_BIN" deep.kvx; echo "status $?")
[ "$got" = $'deep\rstatus 0' ] || sht_fail "deep nesting on the large stack: $(printf '%q' "$(tail -c 200 <<< "$got")")"
# A value that outgrows the address space ends the run with the out-of-memory report (status 12)
# on the line that makes it.
printf '&s = "xxxxxxxxxxxxxxxx"\n&WHILE 1\n&s = &CAT &s &s\n&WEND\n' > grow.kvx
got=$( (ulimit -v 262144 && KVEXEC_TERM=raw "$SHT_BIN" grow.kvx 2>&1); echo "status $?")
[ "$got" = $'\rCannot allocate memory, in grow.kvx, line 3.\rdetected in ../src/kvexec, line 183\rstatus 12' ] ||
  sht_fail "a growing value: $(printf '%q' "$(tail -c 200 <<< "$got")")"
# The same with room to spare takes the large stack; the output is the same.
got=$(KVEXEC_TERM=raw "$SHT_BIN" case.kvx; echo "status $?")
[ "$got" = "${expected}status 3" ] || sht_fail "without a limit: $(printf '%q' "$got")"
sht_pass
