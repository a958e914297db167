#!/usr/bin/env bash
# Started with the child signal ignored (as some programs start theirs), the interpreter still
# learns how its commands end, and its commands get the signal at its default, as the shell gives
# it to them.
. "$(dirname "$0")/lib/shell_test.bash"
sht_setup "$@"
sht_need perl

cat > script.kvx <<'KVX'
&CONTROL OFF
sh -c "exit 3"
&TYPE &RETCODE
/bin/false
&TYPE &RETCODE
grep -i sigign /proc/self/status
KVX
perl -e '$SIG{CHLD} = "IGNORE"; exec @ARGV or die "exec: $!"' "$SHT_BIN" script.kvx > out 2> err
status=$?
[ "$status" = 0 ] || sht_fail "status $status, standard error '$(cat err)'"
[ -s err ] && sht_fail "standard error '$(cat err)'"
head -c 4 out | cmp -s - <(printf '3\r1\r') || sht_fail "statuses '$(head -c 4 out | od -c)', expected 3 and 1"
ignored=$(tr '\r' '\n' < out | sed -n 's/^SigIgn:[[:space:]]*//p')
[ -n "$ignored" ] || sht_fail "no SigIgn line in '$(cat out)'"
(((16#$ignored >> 16) & 1)) && sht_fail "the command has the child signal ignored (SigIgn $ignored)"

sht_pass
