#!/usr/bin/env bash
# Ctrl-Z while the line editor waits for a key: kvexec stops at once, with the terminal handed back
# as it was found (the shell then reads a line with echo and editing as usual); "fg" continues it
# with the terminal raw again, so the keys typed then are shown once, by kvexec, and the read
# goes on with what was typed before the stop. The script then finishes and the terminal is left
# as it was found.
. "$(dirname "$0")/lib/tmux_session.bash"
kvx_setup "$@"

kvx_script_read_one
# The pane's shell runs kvexec with job control, so that it can be stopped and continued.
KVX_RUN="set -m
$(kvx_command)
echo \"stopped with \$?\"
stty -g > stopped.stty
printf 'shell> '
read -r line
echo \"GOT[\$line]\"
fg > /dev/null"
kvx_start 80 24

kvx_wait_prompt_raw 0 " :"
kvx_type "ab"
kvx_check_row 0 " :ab"
kvx_keys C-z
# 148: stopped by SIGTSTP.
kvx_wait_text "stopped with 148"
cmp -s "$KVX_DIR/before.stty" "$KVX_DIR/stopped.stty" \
    || kvx_fail "terminal settings while stopped: '$(cat "$KVX_DIR/stopped.stty")', before the run: '$(cat "$KVX_DIR/before.stty")'"

# The shell reads a line in the terminal as it was: typed text is echoed, erase works.
kvx_wait_text "shell>"
kvx_type "xyz"
kvx_wait_text "shell> xyz"
kvx_keys BSpace
kvx_type "w"
kvx_keys Enter
kvx_wait_text "GOT[xyw]"

# Continued: raw again, and the read goes on.
kvx_wait_raw
row=$(($(kvx_screen | grep -n -F 'GOT[xyw]' | cut -d: -f1)))
kvx_type "cd"
kvx_check_row "$row" "cd"
kvx_keys Enter
kvx_wait_text "a=[abcd]"
kvx_expect_row "$row" "cd"
kvx_expect_status 0
cmp -s "$KVX_DIR/before.stty" "$KVX_DIR/after.stty" \
    || kvx_fail "terminal settings after the run: '$(cat "$KVX_DIR/after.stty")', before: '$(cat "$KVX_DIR/before.stty")'"
kvx_pass
