#!/usr/bin/env bash
# A character of several bytes typed into the line editor is one character: it takes one column,
# Backspace takes all of its bytes away (and blanks its one column), Ctrl-X erases it whole, and
# &CONTROL AUTOCR counts it once. A character broken off by a byte that cannot continue it is a
# key with no meaning, and that byte begins the next key.
. "$(dirname "$0")/lib/tmux_session.bash"
kvx_setup "$@"

kvx_script <<'KVX'
&READ &a
&n = &LEN &a
&TYPE a=[&a] &n bytes
&READ &b
&n = &LEN &b
&TYPE b=[&b] &n bytes
&READ &d
&n = &LEN &d
&TYPE d=[&d] &n bytes
&CONTROL AUTOCR 2
&READ &c
&n = &LEN &c
&TYPE c=[&c] &n bytes
KVX
kvx_start 80 24

# 1. Backspace over "é".
kvx_wait_prompt_raw 0 " :"
kvx_type "aé"
kvx_check_row 0 " :aé"
kvx_check_cursor 4 0
kvx_keys BSpace
kvx_check_row 0 " :a"
kvx_check_cursor 3 0
kvx_type "b"
kvx_check_row 0 " :ab"
kvx_keys Enter
kvx_wait_text "a=["
kvx_expect_row 1 "a=[ab] 2 bytes"

# 2. Ctrl-X over characters of two and three bytes, then one typed afresh.
kvx_wait_prompt_raw 2 " :"
kvx_type "é€x"
kvx_check_row 2 " :é€x"
kvx_check_cursor 5 2
kvx_keys C-x
kvx_check_row 2 " :"
kvx_check_cursor 2 2
kvx_type "ü"
kvx_check_cursor 3 2
kvx_keys Enter
kvx_wait_text "b=["
kvx_expect_row 3 "b=[ü] 2 bytes"

# 3. "x", the lead byte of "é" followed by "A", and "y" read "xAy".
kvx_wait_prompt_raw 4 " :"
kvx_type "x"
kvx_check_row 4 " :x"
# Both bytes in one write, so that the second is there when the first is read.
kvx_tmux send-keys -t t -H c3 41
kvx_check_row 4 " :xA"
kvx_type "y"
kvx_check_row 4 " :xAy"
kvx_keys Enter
kvx_wait_text "d=["
kvx_expect_row 5 "d=[xAy] 3 bytes"

# 4. Two characters end the input: "é" and "a", three bytes. AUTOCR ends it without a line
# end, so the next output follows on the same row.
kvx_wait_prompt_raw 6 " :"
kvx_type "éa"
kvx_wait_text "c=["
kvx_expect_row 6 " :éac=[éa] 3 bytes"
kvx_expect_status 0
kvx_pass
