// The built-in usage text and the version notice.
#pragma once

constexpr const char* kVersionNotice = "- job-control script interpreter for Linux";

constexpr const char* kUsageText =
    "usage: kvexec <script> [arguments...]\n"
    "       kvexec --help | --version\n"
    "\n"
    "Runs a job-control script line by line. &0 is the script path, &1... the arguments.\n"
    "\n"
    "Statements:\n"
    "  &BEGSTACK &BEGTYPE &BREAK &CALL &CRT &CONTINUE &CONTROL &ELSEIF &ELSE &END\n"
    "  &ENDIF &ERROR &ESC &FOR &GOTO &IF &IFEND &LOOP &MENU &NEXT &QUIT &READ\n"
    "  &RETURN &SHIFT &SKIP &SLEEP &SPACE &STACK &TYPE &UNTIL &WAIT &WEND &WHILE\n"
    "Functions:\n"
    "  &CAT &ENV &EXIST &FILESIZE &INDEX &LEN &LIT &SUB &TYP &SYSTEM\n"
    "\n"
    "Environment:\n"
    "  KVEXEC_TERM        output mode: raw, ansi or text (default: ansi on a terminal, else raw)\n"
    "  KVEXEC_ACCOUNT     account name for &SYSTEM ACCOUNT (default: the login name)\n"
    "  KVEXEC_DATE_STYLE  A (mm/dd/yy), E (dd-mm-yy) or Y (yyyy.mm.dd, the default)\n"
    "  KVEXEC_YEAR_MODE   2: two-digit years; 0: two digits before 2000; 1: four digits (default)\n"
    "  KVEXEC_SERIAL1, KVEXEC_SERIAL2   serial numbers for &SYSTEM SERIAL (default 0)\n"
    "  KVEXEC_CASE        input case mode: U upper, L swapped, M as typed (default M)\n"
    "  kvwm, b_lang, b_privlev, b_maxpid, PWD   read by the session and &SYSTEM\n"
    "\n"
    "See \"man kvexec\" for the language guide and \"man kvcheck\" for the script checker.\n";
