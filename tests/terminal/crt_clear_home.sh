#!/usr/bin/env bash
# &CRT "x" CLEAR (and its spelling CLS) blanks the whole screen and leaves the cursor at the top
# left; &CRT "x" HOME (and HM) moves the cursor to row 0, column 0 without erasing anything.
# &READ serves as a pause so the screen can be looked at between the steps.
. "$(dirname "$0")/lib/tmux_session.bash"
kvx_setup "$@"

kvx_script <<'KVX'
&TYPE first line
&TYPE second line
&CRT 30 6
&TYPE far away\
&CRT 0 8
&READ &x
&CRT "x" CLEAR
&TYPE top\
&CRT 10 4
&TYPE middle\
&CRT "x" HOME
&READ &y
&CRT 7 2
&CRT "x" HM
&TYPE X\
&CRT 0 3
&TYPE end
&READ &z
&CRT "x" CLS
&TYPE bye &x&y&z
KVX
kvx_start 40 12

# 1. Before clearing: text on rows 0, 1 and 6, the prompt on row 8.
kvx_wait_prompt_raw 8 " :"
kvx_expect_row 0 "first line"
kvx_expect_row 1 "second line"
kvx_expect_row 6 "                              far away"
kvx_check_cursor 2 8
kvx_keys Enter

# 2. After CLEAR only what was written since is there. HOME put the cursor on row 0, column 0,
#    so the next prompt overwrote the start of "top".
kvx_wait_row 0 " :p"
kvx_wait_raw
for r in 1 2 3 5 6 7 8 9 10 11; do kvx_expect_row $r ""; done
kvx_expect_row 4 "          middle"
kvx_check_cursor 2 0
kvx_type "Q"
kvx_check_row 0 " :Q"
kvx_keys Enter

# 3. HM is home as well: "X" lands on row 0, column 0.
kvx_wait_prompt_raw 4 " :        middle"
kvx_expect_row 0 "X:Q"
kvx_expect_row 3 "end"
for r in 1 2 5 6 7 8 9 10 11; do kvx_expect_row $r ""; done
kvx_check_cursor 2 4
kvx_keys Enter

# 4. CLS clears everything again; the last line is written from the top left.
kvx_expect_status 0
kvx_wait_row 0 "bye Q"
for r in 1 2 3 4 5 6 7 8 9 10 11; do kvx_expect_row $r ""; done
kvx_check_cursor 0 1
kvx_pass
