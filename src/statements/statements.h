// The statement table and the statement handlers, each named for its keyword.
#pragma once

#include "dispatch.h"
#include "expression.h"
#include "keywords.h"
#include "script_reader.h"

// A statement word bound to its handler.
struct Statement {
    StatementWord eWord;
    void (*pHandler)(Parser*);
};

extern const Statement aStatements[];
// The statement named by text (case ignored), or null.
const Statement* GetStatement(const char* name);

// dispatch.cpp
// The count argument of &SKIP and &SPACE: one expression, as a 16-bit integer.
int CountArgument(Parser* p);
void ParseMenu(Parser* p);
void ParseWait(Parser* p);
// exec.cpp
void ParseError(Parser* p);
void ParseQuit(Parser* p);
// conditionals.cpp
void ParseIf(Parser* p);
void ParseElseif(Parser* p);
void ParseElse(Parser* p);
void ParseIfend(Parser* p);
void _DiscardFullIfBlock(Parser* p);
const char* _DiscardIfBlock(Parser* p);
CBString _DiscardElseIfBlock(Parser* p);
void _DiscardElseBlock(Parser* p);
// loops.cpp
void ParseFor(Parser* p);
void ParseWhile(Parser* p);
void ParseUntil(Parser* p);
void ParseNext(Parser* p);
void ParseWend(Parser* p);
void ParseLoop(Parser* p);
void ParseBreak(Parser* p);
void ParseContinue(Parser* p);
void _Restart_Loop(Parser* p);
void _DiscardBlock(Parser* p, const char* keyword);
// jumps.cpp
void ParseGoto(Parser* p);
void ParseCall(Parser* p);
void ParseReturn(Parser* p);
void ParseSkip(Parser* p);
void ParseEnd(Parser* p);
// shift.cpp
void ParseShift(Parser* p);
// control.cpp
void ParseControl(Parser* p);
// output_statements.cpp
void ParseType(Parser* p);
void ParseBegtype(Parser* p);
void ParseBegstack(Parser* p);
void ParseStack(Parser* p);
void ParseSpace(Parser* p);
void ParseSleep(Parser* p);
// screen.cpp
void ParseCrt(Parser* p);
// escape.cpp
void ParseEsc(Parser* p);
// read.cpp
void ParseRead(Parser* p);
