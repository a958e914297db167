#!/usr/bin/env bash
# &SYSTEM ACCOUNT without KVEXEC_ACCOUNT is the login name of the user the run belongs to, from
# the system's user database, whatever USER says.
. "$(dirname "$0")/lib/shell_test.bash"
sht_setup "$@"
sht_need id

name=$(id -un 2> /dev/null) || sht_skip "the user running the test has no name in the user database"
printf 'a = &SYSTEM ACCOUNT\n&TYPE [&a]\n' > script.kvx
env -u KVEXEC_ACCOUNT USER=not-the-login-name "$SHT_BIN" script.kvx > account.out
status=$?
[ "$status" = 0 ] || sht_fail "status $status"
printf '[%s]\r' "$name" > expected
cmp -s expected account.out || sht_fail "output is '$(od -c < account.out)', expected '[$name]'"

sht_pass
