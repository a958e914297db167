#!/usr/bin/env bash
# Escape sequences with numbers too large for any key are keys without meaning for the line
# editor, ignored like any such sequence: 4294967299 is 3 (the Delete key's number) beyond 2^32,
# and must not be taken for it.
. "$(dirname "$0")/lib/tmux_session.bash"
kvx_setup "$@"

kvx_script_read_one
kvx_start 80 24

kvx_wait_prompt_raw 0 " :"
kvx_type "ab"
kvx_check_row 0 " :ab"
kvx_type $'\e[4294967299~'
kvx_type $'\e[99999999999999999999~'
kvx_type $'\e[3;99999999999999999999999999A'
kvx_type "c"
kvx_check_row 0 " :abc"
kvx_keys Enter
kvx_wait_text "a=["
kvx_expect_row 1 "a=[abc]"
kvx_expect_status 0
kvx_pass
