#!/usr/bin/env bash
# Input wider than the window on a terminal described as wrapping at once after its last column
# (no "xenl": TERM=ansi): the echo goes on at column 0 of the next row without a move, and the
# value read is the text typed.
. "$(dirname "$0")/lib/tmux_session.bash"
kvx_setup "$@"
infocmp ansi > /dev/null 2>&1 || kvx_skip "the terminfo database has no entry for ansi"

kvx_script <<'KVX'
&READ &a
&TYPE &a
n = &LEN &a
&TYPE n=&n
KVX
KVX_RUN="env TERM=ansi LC_ALL=C.UTF-8 KVEXEC_TERM=ansi '$KVX_BIN' script.kvx"
kvx_start 20 10

# Thirty characters after the two-column prompt: 18 on row 0, 12 on row 1.
kvx_wait_prompt_raw 0 " :"
kvx_type "abcdefghijklmnopqrstuvwxyz0123"
kvx_check_row 1 "stuvwxyz0123"
kvx_expect_row 0 " :abcdefghijklmnopqr"
kvx_check_cursor 12 1
kvx_keys Enter
kvx_wait_text "n="
# The value, thirty characters, fills row 2 and goes on on row 3.
kvx_expect_row 2 "abcdefghijklmnopqrst"
kvx_expect_row 3 "uvwxyz0123"
kvx_expect_row 4 "n=30"

kvx_expect_status 0
kvx_pass
