// Line dispatch and command execution: what every statement that reads its own lines hands the
// lines of its body to.
#pragma once

#include "expression.h"

// Decides what a script line is (comment, label, assignment, statement or command line) and runs it.
void _Parse_Line(Parser* p, const char* line);

// Statements that read their own lines nest one call per open block (and a failing &ERROR line
// one per failure); past this depth the run ends as out of memory rather than exhausting the
// machine stack. Each nesting level holds a guard.
constexpr int kMaxNesting = 100000;
// A smaller depth, for a run on a smaller stack than the one that depth is made for.
void LimitNesting(int depth);
struct NestingGuard {
    NestingGuard();
    ~NestingGuard();
    NestingGuard(const NestingGuard&) = delete;
    NestingGuard& operator=(const NestingGuard&) = delete;
};

// Runs a command line (case folded, echoed, run, status stored in &retcode); returns the status.
int Exec(Parser* p, CBString& command);
