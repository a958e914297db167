#!/usr/bin/env bash
# After kvexec has read keys in raw mode, the terminal must be handed back as it was found,
# whichever way the run ends: at the end of the script, by &QUIT straight after an AUTOCR read,
# by an error, by SIGTERM while it is waiting for a key, or by SIGPIPE when its output goes to a
# pipe that nobody reads. Checked three ways for each ending:
# the terminal settings saved before and after the run (stty -g) are identical; the terminal is
# in canonical mode with echo on; and a shell reading a line afterwards shows the typed text,
# honours the erase key, and gets the line when Enter is pressed.
. "$(dirname "$0")/lib/tmux_session.bash"
kvx_setup "$@"
command -v perl > /dev/null 2>&1 || kvx_skip "perl is not installed"

# What runs in the pane after kvexec: a shell reading one line in cooked mode.
AFTER='printf "\nshell> "
read -r line
echo "GOT[$line]"
exec sleep 120'

_has_line() { kvx_screen | grep -qxF -- "$1"; }
wait_line() {
    kvx_poll "$KVX_TIMEOUT" _has_line "$1" || kvx_fail "$2 (no screen row is exactly '$1')"
}

# check_restored CASE: the three checks above, once kvexec has ended.
check_restored() {
    local what=$1
    kvx_wait_exit
    if ! cmp -s "$KVX_DIR/before.stty" "$KVX_DIR/after.stty"; then
        kvx_fail "$what: terminal settings differ after the run: before '$(cat "$KVX_DIR/before.stty")'," \
            "after '$(cat "$KVX_DIR/after.stty")'"
    fi
    local tty settings
    tty=$(kvx_tmux display-message -p -t t '#{pane_tty}')
    settings=$(stty -F "$tty" -a)
    for flag in icanon echo icrnl isig opost; do
        echo "$settings" | grep -Eq "(^|[ ;])$flag( |;|\$)" \
            || kvx_fail "$what: terminal flag '$flag' is off after the run: $settings"
    done
    wait_line "shell>" "$what: the shell after kvexec did not start"
    kvx_type "hello"
    wait_line "shell> hello" "$what: typed text is not echoed after the run"
    kvx_keys BSpace BSpace
    wait_line "shell> hel" "$what: the erase key does not work after the run"
    kvx_type "p me"
    kvx_keys Enter
    wait_line "GOT[help me]" "$what: the shell did not get the edited line after Enter"
}

# 1. The script ends normally after a read.
kvx_script_read_one
kvx_start 60 16 "$AFTER"
kvx_wait_prompt_raw 0 " :"
kvx_type "abc"
kvx_keys Enter
kvx_wait_text "a=[abc]"
kvx_expect_status 0
check_restored "end of script"
kvx_stop

# 2. AUTOCR ends the read without Enter, and &QUIT 3 ends the run at once.
kvx_script <<'KVX'
&CONTROL AUTOCR 2
&READ &a
&QUIT 3
KVX
kvx_start 60 16 "$AFTER"
kvx_wait_prompt_raw 0 " :"
kvx_type "ab"
kvx_expect_status 3
check_restored "&QUIT after an AUTOCR read"
kvx_stop

# 3. An error after a read (CASE accepts only U or M: a syntax error, status 255).
kvx_script <<'KVX'
&READ &a
&CONTROL CASE X
&TYPE not reached
KVX
kvx_start 60 16 "$AFTER"
kvx_wait_prompt_raw 0 " :"
kvx_type "abc"
kvx_keys Enter
kvx_expect_status 255
kvx_wait_text "Syntax error"
if kvx_screen | grep -qF "not reached"; then kvx_fail "the run went on after the error"; fi
check_restored "error after a read"
kvx_stop

# 4. SIGTERM while the line editor waits for a key.
kvx_script <<'KVX'
&READ &a
&TYPE not reached
KVX
kvx_start 60 16 "$AFTER"
kvx_wait_prompt_raw 0 " :"
kvx_type "xy"
kvx_check_row 0 " :xy"
pid=$(kvx_pid)
[ -n "$pid" ] || kvx_fail "could not find the kvexec process"
kill -TERM "$pid"
# How a run ended by a signal reports itself is not fixed; it must not look like success.
kvx_wait_exit
[ "$(cat "$KVX_DIR/status")" != 0 ] || kvx_fail "a run ended by SIGTERM reported success"
check_restored "SIGTERM during a read"
kvx_stop

# 5. SIGPIPE: standard output is a pipe whose reading end is closed, so the first output written
# (the prompt, written before the first key is read, with the terminal already raw) ends the run.
kvx_script <<'KVX'
&READ &a
&TYPE not reached
KVX
# shellcheck disable=SC2016
KVX_RUN="perl -e 'pipe(my \$r, my \$w) or die; close \$r; open(STDOUT, \">&\", \$w) or die; exec @ARGV or die' $(kvx_command)"
kvx_start 60 16 "$AFTER"
kvx_expect_status 141
check_restored "SIGPIPE during a read"
unset KVX_RUN
kvx_stop

kvx_pass
