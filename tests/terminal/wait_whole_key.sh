#!/usr/bin/env bash
# &WAIT takes one whole key: an arrow key or a function key (an escape sequence of several bytes)
# or a character of several bytes. Nothing of it is left over for the next &WAIT or &READ.
. "$(dirname "$0")/lib/tmux_session.bash"
kvx_setup "$@"

kvx_script <<'KVX'
&WAIT
&TYPE one
&WAIT
&TYPE two
&WAIT
&TYPE three
&READ &a
&TYPE a=[&a]
KVX
kvx_start 80 24

kvx_wait_row 0 "Press any key to continue"
kvx_wait_raw
kvx_keys Up
kvx_wait_row 0 "one"
kvx_wait_row 1 "Press any key to continue"
kvx_wait_raw
kvx_keys F5
kvx_wait_row 1 "two"
kvx_wait_row 2 "Press any key to continue"
kvx_wait_raw
kvx_type "é"
kvx_wait_row 2 "three"
kvx_wait_prompt_raw 3 " :"
kvx_type "x"
kvx_check_row 3 " :x"
kvx_keys Enter
kvx_wait_text "a=["
kvx_expect_row 4 "a=[x]"
kvx_expect_status 0
kvx_pass
