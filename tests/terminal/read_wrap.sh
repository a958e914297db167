#!/usr/bin/env bash
# Input wider than the window: in a 20-column terminal the echo continues on column 0 of the next
# row once the last column is used, and backspace at column 0 goes back to the last column of the
# previous row. The value read is the text typed, without any line breaks.
. "$(dirname "$0")/lib/tmux_session.bash"
kvx_setup "$@"

kvx_script <<'KVX'
&READ &a
&TYPE &a
n = &LEN &a
&TYPE n=&n
&READ &b
&TYPE &b
n = &LEN &b
&TYPE n=&n
&READ &c
&TYPE &c
n = &LEN &c
&TYPE n=&n
KVX
kvx_start 20 14

# 1. Thirty characters after the two-column prompt: 18 on row 0, 12 on row 1.
kvx_wait_prompt_raw 0 " :"
kvx_type "abcdefghijklmnopqrstuvwxyz0123"
kvx_check_row 1 "stuvwxyz0123"
kvx_expect_row 0 " :abcdefghijklmnopqr"
kvx_check_cursor 12 1
# Twelve backspaces empty row 1; the cursor stays at its column 0.
kvx_keys BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace
kvx_check_row 1 ""
kvx_expect_row 0 " :abcdefghijklmnopqr"
kvx_check_cursor 0 1
# One more goes back across the wrap to the last column of row 0 and blanks it.
kvx_keys BSpace
kvx_check_row 0 " :abcdefghijklmnopq"
kvx_check_cursor 19 0
kvx_keys C-h
kvx_check_row 0 " :abcdefghijklmnop"
kvx_check_cursor 18 0
# Typing on from there fills row 0 again and wraps once more.
kvx_type "XYZ"
kvx_check_row 1 "Z"
kvx_expect_row 0 " :abcdefghijklmnopXY"
kvx_check_cursor 1 1
kvx_keys Enter
kvx_wait_text "n="
kvx_expect_row 2 "abcdefghijklmnopXYZ"
kvx_expect_row 3 "n=19"

# 2. Exactly filling the row and then erasing: the character in the last column goes.
kvx_wait_prompt_raw 4 " :"
kvx_type "ABCDEFGHIJKLMNOPQR"
kvx_check_row 4 " :ABCDEFGHIJKLMNOPQR"
kvx_keys BSpace
kvx_check_row 4 " :ABCDEFGHIJKLMNOPQ"
kvx_check_cursor 19 4
kvx_expect_row 5 ""
kvx_type "!"
kvx_check_row 4 " :ABCDEFGHIJKLMNOPQ!"
kvx_type "?"
kvx_check_row 5 "?"
kvx_check_cursor 1 5
kvx_keys Enter
kvx_wait_row 7 "n=19"
kvx_expect_row 6 "ABCDEFGHIJKLMNOPQ!?"

# 3. Cancel across the wrap clears both rows and returns to the start of the input.
kvx_wait_prompt_raw 8 " :"
kvx_type "0123456789012345678901234"
kvx_check_row 9 "8901234"
kvx_expect_row 8 " :012345678901234567"
kvx_keys C-x
kvx_check_row 8 " :"
kvx_check_row 9 ""
kvx_check_cursor 2 8
kvx_type "ok"
kvx_check_row 8 " :ok"
kvx_keys Enter
kvx_wait_row 10 "n=2"
kvx_expect_row 9 "ok"

kvx_expect_status 0
kvx_pass
