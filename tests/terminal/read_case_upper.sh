#!/usr/bin/env bash
# &CONTROL CASE U: typed letters are upper-cased as they are typed (echo and value alike);
# digits and punctuation are unchanged. Before the option, and after &CONTROL CASE M, typed
# text is kept as typed, and so it is after CASE u (the mode letter is stored as written).
. "$(dirname "$0")/lib/tmux_session.bash"
kvx_setup "$@"

kvx_script <<'KVX'
&READ &a
&TYPE a=[&a]
&CONTROL CASE U
&READ &b
&TYPE b=[&b]
&CONTROL CASE M
&READ &c
&TYPE c=[&c]
&CONTROL CASE u
&READ &d
&TYPE d=[&d]
KVX
kvx_start 80 24

# Before any case option: as typed.
kvx_wait_prompt_raw 0 " :"
kvx_type "Mixed Case 1"
kvx_check_row 0 " :Mixed Case 1"
kvx_keys Enter
kvx_wait_text "a=["
kvx_expect_row 1 "a=[Mixed Case 1]"

# CASE U: the echo is already in capitals, and so is the value.
kvx_wait_prompt_raw 2 " :"
kvx_type "hello, wOrld 42-x"
kvx_check_row 2 " :HELLO, WORLD 42-X"
kvx_keys BSpace
kvx_type "y"
kvx_check_row 2 " :HELLO, WORLD 42-Y"
kvx_keys Enter
kvx_wait_text "b=["
kvx_expect_row 3 "b=[HELLO, WORLD 42-Y]"

# CASE M: no conversion.
kvx_wait_prompt_raw 4 " :"
kvx_type "lower UPPER"
kvx_check_row 4 " :lower UPPER"
kvx_keys Enter
kvx_wait_text "c=["
kvx_expect_row 5 "c=[lower UPPER]"

# CASE u stores the letter as written, a lower-case "u", which is not the mode "U": no conversion.
kvx_wait_prompt_raw 6 " :"
kvx_type "still lower"
kvx_check_row 6 " :still lower"
kvx_keys Enter
kvx_wait_text "d=["
kvx_expect_row 7 "d=[still lower]"

kvx_expect_status 0
kvx_pass
