#!/usr/bin/env bash
# &WAIT in a terminal: shows "Press any key to continue", waits for one key, then takes the
# prompt away again; the script goes on only after the key.
. "$(dirname "$0")/lib/tmux_session.bash"
kvx_setup "$@"

kvx_script <<'KVX'
&TYPE before
&WAIT these words are ignored
&TYPE after
KVX
kvx_start 80 24

kvx_wait_row 1 "Press any key to continue"
kvx_wait_raw
kvx_expect_row 0 "before"
# Still waiting: nothing after the prompt.
sleep 0.3
kvx_expect_row 2 ""

kvx_type "x"
kvx_wait_text "after"
# The prompt's row is cleared and reused.
kvx_expect_row 1 "after"
kvx_expect_status 0
kvx_pass
