#!/usr/bin/env bash
# &SYSTEM ACCOUNT for a user the user database does not know (a container run under an arbitrary
# user id): the name service is asked, finds nothing, and USER is the name. Every source the
# system's name service lists is asked, modules included (systemd's, where configured).
. "$(dirname "$0")/lib/shell_test.bash"
sht_setup "$@"
sht_need setpriv getent
# Being root is not something an installation can provide: without it the test is skipped, in CI
# as well.
if [ "$(id -u)" != 0 ]; then
  echo "$SHT_NAME: SKIPPED: only root can run a program under another user id"
  exit 77
fi

uid=54321
while getent passwd "$uid" > /dev/null; do uid=$((uid + 1)); done
# The other user must be able to reach the program and the script.
chmod 755 "$SHT_DIR"
cp "$SHT_BIN" "$SHT_DIR/kvexec"
printf 'a = &SYSTEM ACCOUNT\n&TYPE [&a]\n' > script.kvx
chmod 644 script.kvx
# A build with line counters writes them where that user may write.
mkdir -m 777 counters
setpriv --reuid="$uid" --regid="$uid" --clear-groups env -u KVEXEC_ACCOUNT USER=someone GCOV_PREFIX="$SHT_DIR/counters" \
  "$SHT_DIR/kvexec" script.kvx > account.out 2> account.err
status=$?
[ "$status" = 0 ] || sht_fail "status $status, standard error '$(cat account.err)'"
printf '[someone]\r' > expected
cmp -s expected account.out || sht_fail "output is '$(od -c < account.out)', expected '[someone]\\r'"
[ -s account.err ] && sht_fail "standard error '$(cat account.err)'"

sht_pass
