#!/usr/bin/env bash
# &READ starts the input at the column where the cursor really stands, whatever put it there:
# after HOME, after box-drawing characters (one column each), after the NL code, after RIGHT
# moves and after CLEAR. In a 20-column terminal the echo then fills the row up to the last
# column, wraps to column 0 of the next row, and backspace comes back across the wrap to the
# last column.
. "$(dirname "$0")/lib/tmux_session.bash"
kvx_setup "$@"

kvx_script <<'KVX'
&TYPE abcdefgh\
&CRT "x" HOME
&READ &a
&TYPE [&a]
&CRT 0 3
&CRT "x" HOR
&CRT "x" HOR
&CRT "x" HOR
&CRT "x" HOR
&CRT "x" HOR
&READ &b
&TYPE [&b]
&CRT 0 6
&TYPE xyz\
&CRT "x" NL
&READ &c
&TYPE [&c]
&CRT 0 10
&CRT "x" RIGHT
&CRT "x" RIGHT
&CRT "x" RIGHT
&READ &d
&TYPE [&d]
&READ &pause
&TYPE abcdef\
&CRT "x" CLEAR
&READ &e
&TYPE [&e]
KVX
kvx_start 20 16

KEYS=0123456789ABCDEFGHIJ

# one_read ROW PREFIX COL [SHOWN]: the prompt is on row ROW, PREFIX is what stands left of the
# input (prompt included) and COL the column where the input starts. 20 - COL keys fill the rest
# of the row and two more go to the next row. SHOWN is the row before any key (default PREFIX).
one_read() {
    local row=$1 prefix=$2 col=$3 shown=${4:-$2}
    local n=$((20 - col + 2))
    local typed=${KEYS:0:n}
    kvx_wait_prompt_raw "$row" "$shown"
    kvx_check_cursor "$col" "$row"
    kvx_type "$typed"
    kvx_check_row $((row + 1)) "${typed:n-2}"
    kvx_expect_row "$row" "$prefix${typed:0:n-2}"
    kvx_check_cursor 2 $((row + 1))
    kvx_keys BSpace BSpace BSpace
    kvx_check_row "$row" "$prefix${typed:0:n-3}"
    kvx_expect_row $((row + 1)) ""
    kvx_check_cursor 19 "$row"
    kvx_keys Enter
    kvx_wait_row $((row + 1)) "[${typed:0:n-3}]"
}

# HOME: the prompt overwrites "ab" of "abcdefgh"; 18 columns are left for the input.
one_read 0 " :" 2 " :cdefgh"
# Five box characters and the prompt: 13 columns left.
one_read 3 "───── :" 7
# NL after "xyz": the prompt starts the next row.
one_read 7 " :" 2
kvx_expect_row 6 "xyz"
# Three RIGHT moves: the prompt stands at columns 3 and 4.
one_read 10 "    :" 5

kvx_wait_prompt_raw 12 " :"
kvx_expect_row 0 " :0123456789ABCDEFG"
kvx_expect_row 1 "[0123456789ABCDEFG]"
kvx_expect_row 2 ""
kvx_expect_row 3 "───── :0123456789AB"
kvx_expect_row 4 "[0123456789AB]"
kvx_expect_row 5 ""
kvx_expect_row 6 "xyz"
kvx_expect_row 7 " :0123456789ABCDEFG"
kvx_expect_row 8 "[0123456789ABCDEFG]"
kvx_expect_row 9 ""
kvx_expect_row 10 "    :0123456789ABCD"
kvx_expect_row 11 "[0123456789ABCD]"
kvx_keys Enter

# CLEAR after "abcdef": the prompt is at the top left.
one_read 0 " :" 2
kvx_expect_status 0
kvx_pass
