#!/usr/bin/env bash
# &READ in a terminal: a typed line, ended with Enter, is echoed after the prompt " :" and
# assigned to the variable; &TYPE then shows it on the next row.
. "$(dirname "$0")/lib/tmux_session.bash"
kvx_setup "$@"

kvx_script <<'KVX'
&READ &answer
&TYPE got [&answer]
KVX
kvx_start 80 24

# The prompt is written before the editor starts reading keys.
kvx_wait_prompt_raw 0 " :"
kvx_check_cursor 2 0

kvx_type "hello world"
kvx_check_row 0 " :hello world"
kvx_check_cursor 13 0
# Nothing has ended the input yet.
kvx_expect_row 1 ""

kvx_keys Enter
kvx_wait_text "got ["
kvx_expect_row 0 " :hello world"
kvx_expect_row 1 "got [hello world]"
kvx_expect_status 0
kvx_pass
