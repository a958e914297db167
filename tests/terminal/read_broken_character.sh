#!/usr/bin/env bash
# A character of several bytes broken off by a byte that cannot continue it is a key with no
# meaning, and that byte begins the next key: typing "x", the lead byte of "é" followed by "A",
# and "y" reads "xAy".
. "$(dirname "$0")/lib/tmux_session.bash"
kvx_setup "$@"

kvx_script <<'KVX'
&READ &a
&n = &LEN &a
&TYPE a=[&a] &n bytes
KVX
kvx_start 80 24

kvx_wait_prompt_raw 0 " :"
kvx_type "x"
kvx_check_row 0 " :x"
# Both bytes in one write, so that the second is there when the first is read.
kvx_tmux send-keys -t t -H c3 41
kvx_check_row 0 " :xA"
kvx_type "y"
kvx_check_row 0 " :xAy"
kvx_keys Enter
kvx_wait_text "a=["
kvx_expect_row 1 "a=[xAy] 3 bytes"

kvx_expect_status 0
kvx_pass
