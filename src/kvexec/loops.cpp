// &FOR, &WHILE and &UNTIL. The opening handler runs the whole loop: it reads the body lines,
// recognises its own closing and control words as first words, and goes back by repositioning
// the script to the loop head kept in its block-stack entry.
#include "blocks.h"
#include "diagnostics.h"
#include "expression.h"
#include "kvexec.h"
#include "statements.h"

namespace {

enum class Truth { True, False, SkipAndEnd, EndAtOnce };

// &WHILE: an empty string ends the loop by skipping its body; a non-empty one ends it at once,
// without skipping, so the body runs once as ordinary lines and its &WEND fails.
Truth WhileTruth(Parser* p, const Const& c) {
    switch (c.eType) {
        case VarInteger: return c.iValue != 0 ? Truth::True : Truth::False;
        case VarFloat: return c.dValue != 0.0 ? Truth::True : Truth::False;
        case VarString: return c.sValue.empty() ? Truth::SkipAndEnd : Truth::EndAtOnce;
        default: SYNTAX_ERROR(p, Src::Kvexec, At::WhileCondition);
    }
}

// &UNTIL mirrors it: the body runs while the condition is false.
Truth UntilTruth(Parser* p, const Const& c) {
    switch (c.eType) {
        case VarInteger: return c.iValue == 0 ? Truth::True : Truth::False;
        case VarFloat: return c.dValue == 0.0 ? Truth::True : Truth::False;
        case VarString: return c.sValue.empty() ? Truth::EndAtOnce : Truth::SkipAndEnd;
        default: SYNTAX_ERROR(p, Src::Kvexec, At::UntilCondition);
    }
}

void ConditionalLoop(Parser* p, const char* closer, Truth (*truth)(Parser*, const Const&)) {
    PushBlock(BlockWhile, VarUndef, static_cast<unsigned>(p->iLine), static_cast<uint32_t>(p->lLinePos));
    for (;;) {
        GetNextToken(p);
        Const c;
        Evaluate(p, &c, true);
        switch (truth(p, c)) {
            case Truth::True: break;
            case Truth::False:
            case Truth::SkipAndEnd:
                _DiscardBlock(p, closer);
                PopBlock();
                SkipLine(p);
                return;
            case Truth::EndAtOnce:
                // Returns where the condition ended, like any statement that stops early.
                PopBlock();
                return;
        }
        // The body. "&CONTINUE" and the end of the file go back to the condition without
        // re-reading the head: it is taken from where the last dispatched line left the scan.
        while (char* line = GetLine(p, szLine, sizeof szLine)) {
            if (FirstWordIs(line, closer)) {
                _Restart_Loop(p, szLine, sizeof szLine);
                GetNextToken(p);
                break;
            }
            if (FirstWordIs(line, "&CONTINUE")) break;
            if (FirstWordIs(line, "&BREAK")) {
                PopBlock();
                SkipLine(p);
                return;
            }
            _Parse_Line(p, line);
        }
    }
}

}  // namespace

void _Restart_Loop(Parser* p, char* buffer, unsigned long size) {
    p->bFirstToken = false;
    p->bLineStart = false;
    p->bLiteral = false;
    ScriptSeek(p, static_cast<long>(GetBlockCharPos()));
    // Traced under the number that follows the closing line's; corrected to the head's below.
    char* line = GetLine(p, buffer, size);
    p->sLine = line ? line : "";
    p->pPos = p->sLine.data();
    p->iLine = static_cast<int>(GetBlockLinePos());
}

// Reads up to a line whose first word is the keyword, without counting nested blocks.
void _DiscardBlock(Parser* p, const char* keyword) {
    while (char* line = GetLine(p, szLine, sizeof szLine))
        if (FirstWordIs(line, keyword)) break;
    SkipLine(p);
}

void ParseWhile(Parser* p) { ConditionalLoop(p, "&WEND", WhileTruth); }

// &UNTIL opens an entry of the &WHILE kind.
void ParseUntil(Parser* p) { ConditionalLoop(p, "&LOOP", UntilTruth); }

// &FOR &var = start , limit: the body runs at least once and the bound is tested at &NEXT, in
// 16-bit arithmetic, so a limit of 32767 is never passed.
void ParseFor(Parser* p) {
    GetNextToken(p);
    if (p->eTokenType != TokenVar) SYNTAX_ERROR(p, Src::Kvexec, At::ForVariable);
    Variable* v = GetVar(p, p->sToken);
    GetNextToken(p);
    if (p->eTokenType != TokenEqual) SYNTAX_ERROR(p, Src::Kvexec, At::ForEqual);
    GetNextToken(p);
    Evaluate(p, &v->value, false);
    ToInteger(&v->value);
    if (p->eTokenType != TokenComma) SYNTAX_ERROR(p, Src::Kvexec, At::ForComma);
    GetNextToken(p);
    Const limit;
    Evaluate(p, &limit, false);
    ToInteger(&limit);

    PushBlock(BlockFor, v->value.eType, static_cast<unsigned>(p->iLine), static_cast<uint32_t>(p->lLinePos));
    while (char* line = GetLine(p, szLine, sizeof szLine)) {
        if (!FirstWordIs(line, "&NEXT")) {
            _Parse_Line(p, line);
            continue;
        }
        v->value.iValue = Int16(v->value.iValue + 1);
        if (v->value.iValue > limit.iValue) break;
        _Restart_Loop(p, szLine, sizeof szLine);
    }
    PopBlock();
    SkipLine(p);
}

void ParseNext(Parser* p) {
    if (GetBlockType() != BlockFor) NO_PENDING(p, Src::Kvexec, At::NextPending, "&FOR");
}

// No statement opens an &UNTIL entry, so a &LOOP reaching dispatch always fails.
void ParseLoop(Parser* p) {
    if (GetBlockType() != BlockUntil) NO_PENDING(p, Src::Kvexec, At::LoopPending, "&UNTIL");
}

void ParseWend(Parser* p) { NO_PENDING(p, Src::Kvexec, At::WendPending, "&WHILE"); }

void ParseBreak(Parser* p) { NO_PENDING(p, Src::Kvexec, At::BreakPending, "&FOR, &UNTIL or &WHILE"); }

void ParseContinue(Parser* p) { NO_PENDING(p, Src::Kvexec, At::ContinuePending, "&FOR, &UNTIL or &WHILE"); }
