#!/usr/bin/env bash
# KVEXEC_CASE=L: typed letters change case as they are typed (echo and value alike); digits and
# punctuation are unchanged.
. "$(dirname "$0")/lib/tmux_session.bash"
kvx_setup "$@"

kvx_script_read_one
KVX_RUN="env TERM=xterm-256color LC_ALL=C.UTF-8 KVEXEC_TERM=ansi KVEXEC_CASE=L '$KVX_BIN' script.kvx"
kvx_start 80 24

kvx_wait_prompt_raw 0 " :"
kvx_type "Mixed Case 1, x-Y"
kvx_check_row 0 " :mIXED cASE 1, X-y"
kvx_keys Enter
kvx_wait_text "a=["
kvx_expect_row 1 "a=[mIXED cASE 1, X-y]"

kvx_expect_status 0
kvx_pass
