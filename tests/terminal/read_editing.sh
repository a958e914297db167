#!/usr/bin/env bash
# The line editor's keys: BSpace (127, delete) and C-h (8, backspace) remove the last character
# and blank it on the screen; C-x (24, cancel) erases the whole input and returns the cursor to
# where the input began, after which typing starts afresh. On an empty input, 127 is ignored
# while 8 and 24 end the input like Enter.
. "$(dirname "$0")/lib/tmux_session.bash"
kvx_setup "$@"

kvx_script <<'KVX'
&READ &a
&TYPE a=[&a]
&READ &b
&TYPE b=[&b]
&READ &c
&TYPE c=[&c]
&READ &d
&TYPE d=[&d]
&READ &e
&TYPE e=[&e]
KVX
kvx_start 80 24

# 1. BSpace twice, more typing, then C-h once.
kvx_wait_prompt_raw 0 " :"
kvx_type "abcd"
kvx_check_row 0 " :abcd"
kvx_keys BSpace BSpace
kvx_check_row 0 " :ab"
kvx_check_cursor 4 0
kvx_type "xy"
kvx_check_row 0 " :abxy"
kvx_keys C-h
kvx_check_row 0 " :abx"
kvx_check_cursor 5 0
kvx_keys Enter
kvx_wait_text "a=["
kvx_expect_row 1 "a=[abx]"

# 2. C-x erases everything typed; the retyped text starts right after the prompt.
kvx_wait_prompt_raw 2 " :"
kvx_type "hello there"
kvx_check_row 2 " :hello there"
kvx_keys C-x
kvx_check_row 2 " :"
kvx_check_cursor 2 2
kvx_type "bye"
kvx_check_row 2 " :bye"
kvx_check_cursor 5 2
kvx_keys Enter
kvx_wait_text "b=["
kvx_expect_row 3 "b=[bye]"

# 3. BSpace on an empty input does nothing: the input goes on and takes the next key.
kvx_wait_prompt_raw 4 " :"
kvx_keys BSpace
kvx_type "k"
kvx_check_row 4 " :k"
kvx_check_cursor 3 4
kvx_keys Enter
kvx_wait_text "c=["
kvx_expect_row 5 "c=[k]"

# 4. C-h on an empty input ends it: the variable gets the empty string. Typing and erasing a
#    character first shows the input is empty again afterwards.
kvx_wait_prompt_raw 6 " :"
kvx_type "q"
kvx_check_row 6 " :q"
kvx_keys C-h
kvx_check_row 6 " :"
kvx_keys C-h
kvx_wait_text "d=["
kvx_expect_row 7 "d=[]"

# 5. C-x on an empty input ends it as well.
kvx_wait_prompt_raw 8 " :"
kvx_keys C-x
kvx_wait_text "e=["
kvx_expect_row 9 "e=[]"

kvx_expect_status 0
# Nothing stray was left on the rows in between.
kvx_expect_row 0 " :abx"
kvx_expect_row 2 " :bye"
kvx_expect_row 4 " :k"
kvx_expect_row 6 " :"
kvx_expect_row 8 " :"
kvx_pass
