# Shared helpers for the terminal tests: run kvexec inside a detached tmux session with a fixed
# window size, type keys into it and look at what the window shows.
#
# Source this file, then:
#   kvx_setup "$1"                    binary path; checks tmux, makes a work dir, sets a cleanup trap
#   kvx_script <<'EOF' ... EOF        writes the script to run (script.kvx in the work dir)
#   kvx_script_read_one               writes the script of one &READ that shows what it read as a=[…]
#   kvx_start COLS ROWS [AFTER]       starts the session; AFTER is shell text run once kvexec ended
#                                     (default: wait until the session is killed)
#   KVX_RUN                           shell text that runs kvexec in the pane, if not just
#                                     "$(kvx_command)"; its status is the run's status
#   kvx_command                       the command line that runs kvexec on script.kvx
#   kvx_skip MESSAGE                  ends the test as skipped (status 77): it cannot run here
#   kvx_wait_text TEXT [SECONDS]      waits until TEXT occurs on the screen
#   kvx_wait_row N TEXT [SECONDS]     waits until row N (from 0) is exactly TEXT
#   kvx_wait_raw [SECONDS]            waits until the pane's terminal is out of canonical mode
#   kvx_wait_prompt_raw N TEXT        both of the above, in that order (use before typing)
#   kvx_wait_exit [SECONDS]           waits until kvexec has ended
#   kvx_expect_status N               waits until kvexec has ended and checks its exit status
#   kvx_stop                          ends the session; kvx_start may then start another
#   kvx_pid                           process id of the running kvexec
#   kvx_keys KEY...                   tmux key names (Enter, BSpace, C-h, C-x)
#   kvx_type TEXT                     literal text
#   kvx_screen, kvx_row N, kvx_cursor the screen, one row, "col,row" of the cursor
#   kvx_expect_row N TEXT, kvx_expect_cursor COL ROW   assert now
#   kvx_check_row N TEXT, kvx_check_cursor COL ROW     assert, after waiting a little for it
#   kvx_fail MESSAGE                  fails the test, showing the screen; kvx_pass ends it well
#
# The run's exit status goes to a file, not to the screen, so the screen holds only what kvexec
# wrote.
#
# A test that cannot run here (no tmux, no terminal to be had) ends with status 77, which ctest
# reports as skipped; when CI is set, that is a failure instead.

set -u

KVX_NAME=$(basename "$0" .sh)
KVX_DIR=""
KVX_SOCK="kvx$$"
KVX_TIMEOUT=${KVX_TIMEOUT:-6}  # seconds for each wait; only a failing wait takes this long

. "$(dirname "${BASH_SOURCE[0]}")/../../lib/skip.bash"
kvx_skip() { skip_test "$KVX_NAME" "$@"; }

kvx_setup() {
    command -v tmux > /dev/null 2>&1 || kvx_skip "tmux is not installed"
    if [ $# -lt 1 ] || [ ! -x "$1" ]; then
        echo "$KVX_NAME: FAIL: usage: $0 <kvexec binary> (got '${1:-}')"
        exit 2
    fi
    KVX_BIN=$(readlink -f "$1")
    KVX_DIR=$(mktemp -d "${TMPDIR:-/tmp}/kvxterm.XXXXXX")
    unset TMUX
    export LC_ALL=C.UTF-8
    trap kvx_cleanup EXIT
}

# Stops the private tmux server and removes its socket file, which kill-server leaves behind.
_kvx_kill_server() {
    local socket
    socket=$(tmux -L "$KVX_SOCK" display-message -p '#{socket_path}' 2> /dev/null)
    tmux -L "$KVX_SOCK" kill-server > /dev/null 2>&1
    [ -n "$socket" ] && [ -S "$socket" ] && rm -f "$socket"
}

kvx_cleanup() {
    _kvx_kill_server
    [ -n "$KVX_DIR" ] && rm -rf "$KVX_DIR"
}

kvx_script() { cat > "$KVX_DIR/script.kvx"; }

kvx_script_read_one() { printf '&READ &a\n&TYPE a=[&a]\n' | kvx_script; }

kvx_command() { echo "env TERM=xterm-256color LC_ALL=C.UTF-8 KVEXEC_TERM=ansi '$KVX_BIN' script.kvx"; }

kvx_start() {
    local cols=$1 rows=$2 after=${3:-"exec sleep 120"}
    cat > "$KVX_DIR/run.sh" <<EOF
cd '$KVX_DIR' || exit 1
rm -f status status.tmp before.stty after.stty
stty -g > before.stty 2> /dev/null
${KVX_RUN:-$(kvx_command)}
echo \$? > status.tmp
stty -g > after.stty 2> /dev/null
mv status.tmp status
$after
EOF
    tmux -u -L "$KVX_SOCK" -f /dev/null new-session -d -x "$cols" -y "$rows" -s t \
        "env -u TMUX bash --norc --noprofile '$KVX_DIR/run.sh'" \
        || kvx_skip "tmux cannot start a session here (no terminal to be had)"
    tmux -L "$KVX_SOCK" set-option -t t remain-on-exit on > /dev/null 2>&1
}

# Ends the session (and kvexec with it), so that another one can be started.
kvx_stop() {
    _kvx_kill_server
    rm -f "$KVX_DIR/status" "$KVX_DIR/status.tmp" "$KVX_DIR/before.stty" "$KVX_DIR/after.stty"
}

# Process id of kvexec while it runs (the child of the shell that runs it in the pane).
kvx_pid() {
    local shell_pid
    shell_pid=$(kvx_tmux display-message -p -t t '#{pane_pid}') || return 1
    ps -o pid= --ppid "$shell_pid" | awk 'NR == 1 { print $1 }'
}

kvx_tmux() { tmux -L "$KVX_SOCK" "$@"; }

kvx_screen() { kvx_tmux capture-pane -p -t t; }

# Row n (from 0) of the screen, trailing blanks removed.
kvx_row() { kvx_screen | sed -n "$(($1 + 1))p"; }

kvx_cursor() { kvx_tmux display-message -p -t t '#{cursor_x},#{cursor_y}'; }

kvx_fail() {
    echo "$KVX_NAME: FAIL: $*"
    if [ -n "$KVX_DIR" ] && kvx_tmux has-session -t t > /dev/null 2>&1; then
        echo "---- screen (cursor at col,row $(kvx_cursor)) ----"
        kvx_screen | cat -A | sed 's/^/|/'
        echo "-----------------------------------------------"
    fi
    exit 1
}

# Polls until the command given succeeds or the time runs out (seconds, may be fractional).
kvx_poll() {
    local limit=$1
    shift
    local end=$(($(date +%s%N) + ${limit%.*} * 1000000000))
    while :; do
        "$@" && return 0
        [ "$(date +%s%N)" -ge "$end" ] && return 1
        sleep 0.05
    done
}

_kvx_has_text() { kvx_screen | grep -qF -- "$1"; }
_kvx_row_is() { [ "$(kvx_row "$1")" = "$2" ]; }
_kvx_is_raw() {
    local tty
    tty=$(kvx_tmux display-message -p -t t '#{pane_tty}') || return 1
    stty -F "$tty" -a 2> /dev/null | grep -qw -- '-icanon'
}
_kvx_has_status() { [ -f "$KVX_DIR/status" ]; }

kvx_wait_text() {
    kvx_poll "${2:-$KVX_TIMEOUT}" _kvx_has_text "$1" || kvx_fail "timed out waiting for '$1' on the screen"
}

kvx_wait_row() {
    kvx_poll "${3:-$KVX_TIMEOUT}" _kvx_row_is "$1" "$2" \
        || kvx_fail "timed out waiting for row $1 to be '$2' (it is '$(kvx_row "$1")')"
}

kvx_wait_raw() {
    kvx_poll "${1:-$KVX_TIMEOUT}" _kvx_is_raw || kvx_fail "the terminal never left canonical mode (no key reading)"
}

# Typed keys are only safe once the line editor reads keys: wait for its prompt, then raw mode.
kvx_wait_prompt_raw() {
    kvx_wait_row "$1" "$2"
    kvx_wait_raw
}

kvx_wait_exit() {
    kvx_poll "${1:-$KVX_TIMEOUT}" _kvx_has_status || kvx_fail "kvexec did not end"
}

kvx_keys() { kvx_tmux send-keys -t t "$@"; }
kvx_type() { kvx_tmux send-keys -t t -l -- "$1"; }

kvx_expect_row() {
    local got
    got=$(kvx_row "$1")
    [ "$got" = "$2" ] || kvx_fail "row $1: expected '$2', got '$got'"
}

# Waits briefly for the row, then asserts (the screen may lag behind the keys just sent).
kvx_check_row() {
    kvx_poll "${3:-$KVX_TIMEOUT}" _kvx_row_is "$1" "$2" || true
    kvx_expect_row "$1" "$2"
}

kvx_expect_cursor() {
    local got
    got=$(kvx_cursor)
    [ "$got" = "$1,$2" ] || kvx_fail "cursor: expected col,row $1,$2, got $got"
}

_kvx_cursor_is() { [ "$(kvx_cursor)" = "$1,$2" ]; }
kvx_check_cursor() {
    kvx_poll "${3:-$KVX_TIMEOUT}" _kvx_cursor_is "$1" "$2" || true
    kvx_expect_cursor "$1" "$2"
}

kvx_expect_status() {
    kvx_poll "${2:-$KVX_TIMEOUT}" _kvx_has_status || kvx_fail "kvexec did not end (expected exit status $1)"
    local st
    st=$(cat "$KVX_DIR/status")
    [ "$st" = "$1" ] || kvx_fail "exit status: expected $1, got $st"
}

kvx_pass() {
    echo "$KVX_NAME: PASS"
    exit 0
}
