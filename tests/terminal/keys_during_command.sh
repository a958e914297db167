#!/usr/bin/env bash
# Interrupt and quit typed at the terminal while a command runs reach the whole foreground: the
# command and the shell that runs it. The shell waits for its command after an interrupt and then
# ends as interrupted (status 130, whatever the command did with the key); on quit it ends at once
# (131), leaving the command running. A command started without the shell must give the same, so
# each case runs with and without KVEXEC_PLAIN.
. "$(dirname "$0")/lib/tmux_session.bash"
kvx_setup "$@"

# A command that ignores both keys and ends (status 3) once the file "go" exists.
cat > "$KVX_DIR/stubborn" <<'SH'
#!/bin/sh
trap '' INT QUIT
echo ready
while [ ! -f go ]; do sleep 0.05; done
echo finished
exit 3
SH
chmod +x "$KVX_DIR/stubborn"
kvx_script <<'KVX'
&CONTROL OFF
./stubborn
&TYPE rc=&retcode
KVX

for plain in ${KVX_WAYS:-"" 1}; do
    export KVEXEC_PLAIN=$plain
    way="KVEXEC_PLAIN='$plain'"

    # Interrupt: the status is 130 once the command has finished.
    rm -f "$KVX_DIR/go"
    kvx_start 60 16
    kvx_wait_text "ready"
    kvx_keys C-c
    sleep 0.2
    touch "$KVX_DIR/go"
    kvx_wait_text "finished"
    kvx_wait_text "rc=130"
    kvx_expect_status 0
    kvx_stop

    # Quit: the status is 131 at once, while the command still runs.
    rm -f "$KVX_DIR/go"
    kvx_start 60 16
    kvx_wait_text "ready"
    kvx_keys 'C-\'
    kvx_wait_text "rc=131"
    if kvx_screen | grep -qF finished; then kvx_fail "$way: the command ended before it was let go"; fi
    touch "$KVX_DIR/go"
    kvx_wait_text "finished"
    kvx_expect_status 0
    kvx_stop

    # Neither key typed: the command's own status.
    rm -f "$KVX_DIR/go"
    kvx_start 60 16
    kvx_wait_text "ready"
    touch "$KVX_DIR/go"
    kvx_wait_text "rc=3"
    kvx_expect_status 0
    kvx_stop
done
unset KVEXEC_PLAIN
kvx_pass
