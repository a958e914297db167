#!/usr/bin/env bash
# --help starts the help viewer with an argument vector, never through a shell: a program name
# holding shell characters reaches the viewer as one argument and runs nothing else. The viewer
# is put in place in a private mount namespace, so the machine's own files are left alone.
. "$(dirname "$0")/lib/shell_test.bash"
sht_setup "$@"
sht_need unshare
unshare --mount --map-root-user true 2> /dev/null || unshare --mount true 2> /dev/null ||
    sht_skip "mount namespaces are not available"

ln -s "$SHT_BIN" 'x;touch ran;y'
cat > viewer <<'VIEWER'
#!/bin/sh
printf '%s\n' "$#" "$@" > "$VIEWER_LOG"
VIEWER
chmod +x viewer

inner='set -e
mount -t tmpfs none /home 2> /dev/null || { mkdir -p /home && mount -t tmpfs none /home; }
mkdir -p /home/system/disks/s/kavro/bin
cp viewer /home/system/disks/s/kavro/bin/help
"./x;touch ran;y" --help > out 2> err
echo "status $?" >> out'
export VIEWER_LOG="$SHT_DIR/viewer.log"
unshare --mount sh -c "$inner" 2> /dev/null || unshare --mount --map-root-user sh -c "$inner" ||
    sht_skip "cannot mount in a private namespace"

[ ! -e ran ] || sht_fail "a command in the program's name ran"
[ -f viewer.log ] || sht_fail "the viewer did not run"
# One argument: the base name, cut to 13 characters as the 50-byte command line always cut it.
[ "$(cat viewer.log)" = $'1\nx;touch ran;y' ] || sht_fail "viewer arguments: $(cat viewer.log)"
[ "$(cat out)" = "status 0" ] || sht_fail "output: $(cat out)"
[ ! -s err ] || sht_fail "standard error: $(cat err)"
sht_pass
