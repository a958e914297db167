#!/usr/bin/env bash
# &CRT col row places the cursor (row and column counted from 0) and &CRT "x" NAME writes the
# line-drawing code NAME, shown in a UTF-8 terminal as the matching box character: a plain box
# (ULC URC LLC LRC HOR VER), a rounded one (RULC RURC RLLC RLRC) and a double one (DULC DURC
# DLLC DLRC DHOR DVER.), with text inside. Every row of the screen is compared in full.
. "$(dirname "$0")/lib/tmux_session.bash"
kvx_setup "$@"

kvx_script <<'KVX'
&CONTROL OFF
&CRT "x" CLEAR
; plain box: rows 1-5, columns 2-13
&CRT 2 1
&CRT "x" ULC
&FOR &I = 1 , 10
&CRT "x" HOR
&NEXT
&CRT "x" URC
&FOR &R = 2 , 4
&CRT 2 &R
&CRT "x" VER
&CRT 13 &R
&CRT "x" VER
&NEXT
&CRT 2 5
&CRT "x" LLC
&FOR &I = 1 , 10
&CRT "x" HOR
&NEXT
&CRT "x" LRC
&CRT 5 3
&TYPE Hi box\
; rounded box: rows 1-3, columns 16-21, drawn bottom first
&CRT 16 3
&CRT "x" RLLC
&CRT "x" HOR
&CRT "x" HOR
&CRT "x" HOR
&CRT "x" HOR
&CRT "x" RLRC
&CRT 16 1
&CRT "x" RULC
&CRT "x" HOR
&CRT "x" HOR
&CRT "x" HOR
&CRT "x" HOR
&CRT "x" RURC
&CRT 21 2
&CRT "x" VER
&CRT 16 2
&CRT "x" VER
&TYPE ok\
; double box: rows 7-9, columns 2-9
&CRT 2 7
&CRT "x" DULC
&FOR &I = 1 , 6
&CRT "x" DHOR
&NEXT
&CRT "x" DURC
&CRT 2 8
&CRT "x" DVER.
&CRT 9 8
&CRT "x" DVER.
&CRT 4 8
&TYPE dbl\
&CRT 2 9
&CRT "x" DLLC
&FOR &I = 1 , 6
&CRT "x" DHOR
&NEXT
&CRT "x" DLRC
&CRT 0 12
KVX
kvx_start 40 14
kvx_expect_status 0
# The run has ended; wait until the last row drawn is on the screen.
kvx_wait_row 9 "  ╚══════╝"

kvx_expect_row 0 ""
kvx_expect_row 1 "  ┌──────────┐  ╭────╮"
kvx_expect_row 2 "  │          │  │ok  │"
kvx_expect_row 3 "  │  Hi box  │  ╰────╯"
kvx_expect_row 4 "  │          │"
kvx_expect_row 5 "  └──────────┘"
kvx_expect_row 6 ""
kvx_expect_row 7 "  ╔══════╗"
kvx_expect_row 8 "  ║ dbl  ║"
kvx_expect_row 9 "  ╚══════╝"
kvx_expect_row 10 ""
kvx_expect_row 11 ""
kvx_expect_row 12 ""
kvx_expect_row 13 ""
# The last &CRT 0 12 left the cursor at column 0 of row 12.
kvx_expect_cursor 0 12
kvx_pass
