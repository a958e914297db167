#!/usr/bin/env bash
# &CONTROL AUTOCR 3: the third typed character ends the input at once, without Enter and without
# a line break of its own, so the next output continues on the same row. Keys that remove
# characters do not count towards the limit; only the length of the input does.
. "$(dirname "$0")/lib/tmux_session.bash"
kvx_setup "$@"

kvx_script <<'KVX'
&CONTROL AUTOCR 3
&READ &a
&TYPE =[&a]
&READ &b
&TYPE =[&b]
&READ &c
&TYPE =[&c]
KVX
kvx_start 80 24

# 1. Three keys, no Enter.
kvx_wait_prompt_raw 0 " :"
kvx_type "ab"
kvx_check_row 0 " :ab"
# Two characters do not end the input.
kvx_check_cursor 4 0
kvx_type "c"
kvx_wait_text "=["
kvx_expect_row 0 " :abc=[abc]"

# 2. Erasing keeps the count at the input's length: x y BSpace p q ends after q with "xpq".
kvx_wait_prompt_raw 1 " :"
kvx_type "xy"
kvx_check_row 1 " :xy"
kvx_keys BSpace
kvx_check_row 1 " :x"
kvx_type "p"
kvx_check_row 1 " :xp"
kvx_check_cursor 4 1
kvx_type "q"
kvx_wait_text "=[xpq]"
kvx_expect_row 1 " :xpq=[xpq]"

# 3. Enter before the count is reached still ends the input (with its line break).
kvx_wait_prompt_raw 2 " :"
kvx_type "z"
kvx_check_row 2 " :z"
kvx_keys Enter
kvx_wait_text "=[z]"
kvx_expect_row 2 " :z"
kvx_expect_row 3 "=[z]"

kvx_expect_status 0
kvx_pass
