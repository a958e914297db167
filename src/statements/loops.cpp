// &FOR, &WHILE and &UNTIL. The opening handler runs the whole loop: it reads the body lines,
// recognises its own closing and control words as first words, and goes back by repositioning
// the script to the loop head kept in its block-stack entry.
#include "blocks.h"
#include "diagnostics.h"
#include "statements.h"
#include "variables.h"

namespace {

enum class Truth { True, False, SkipAndEnd, EndAtOnce };

// &WHILE: an empty string ends the loop by skipping its body; a non-empty one ends it at once,
// without skipping, so the body runs once as ordinary lines and its &WEND fails.
Truth WhileTruth(const Const& c) {
    switch (c.eType) {
        case VarInteger: return c.iValue != 0 ? Truth::True : Truth::False;
        case VarFloat: return c.dValue != 0.0 ? Truth::True : Truth::False;
        case VarString: return c.sValue.empty() ? Truth::SkipAndEnd : Truth::EndAtOnce;
        default: SYNTAX_ERROR(Src::Kvexec, At::WhileCondition);
    }
}

// &UNTIL mirrors it: the body runs while the condition is false.
Truth UntilTruth(const Const& c) {
    switch (c.eType) {
        case VarInteger: return c.iValue == 0 ? Truth::True : Truth::False;
        case VarFloat: return c.dValue == 0.0 ? Truth::True : Truth::False;
        case VarString: return c.sValue.empty() ? Truth::EndAtOnce : Truth::SkipAndEnd;
        default: SYNTAX_ERROR(Src::Kvexec, At::UntilCondition);
    }
}

unsigned LinePos(Parser* p) { return static_cast<unsigned>(p->pScript->iLine); }
uint32_t CharPos(Parser* p) { return static_cast<uint32_t>(p->pScript->LineStart()); }

void ConditionalLoop(Parser* p, const char* closer, Truth (*truth)(const Const&)) {
    PushBlock(BlockWhile, VarUndef, LinePos(p), CharPos(p));
    for (;;) {
        GetNextToken(p);
        Const c;
        Evaluate(p, &c, true);
        switch (truth(c)) {
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
        const char* stop =
            p->pScript->ReadUntil({closer, "&CONTINUE", "&BREAK"}, [p](const char* line) { _Parse_Line(p, line); });
        if (stop && FirstWordIs(stop, "&BREAK")) {
            PopBlock();
            SkipLine(p);
            return;
        }
        if (stop && FirstWordIs(stop, closer)) {
            _Restart_Loop(p);
            GetNextToken(p);
        }
    }
}

}  // namespace

void _Restart_Loop(Parser* p) {
    p->bFirstToken = false;
    ScriptReader* script = p->pScript;
    script->Seek(static_cast<long>(GetBlockCharPos()));
    // Traced under the number that follows the closing line's; corrected to the head's below.
    const char* line = script->GetLine();
    SetLine(p, line ? line : "", script->LineRepeated());
    script->iLine = static_cast<int>(GetBlockLinePos());
}

// Reads up to a line whose first word is the keyword, without counting nested blocks.
void _DiscardBlock(Parser* p, const char* keyword) {
    p->pScript->ReadUntil({keyword});
    SkipLine(p);
}

void ParseWhile(Parser* p) { ConditionalLoop(p, "&WEND", WhileTruth); }

// &UNTIL opens an entry of the &WHILE kind.
void ParseUntil(Parser* p) { ConditionalLoop(p, "&LOOP", UntilTruth); }

// &FOR &var = start , limit: the body runs at least once and the bound is tested at &NEXT, in
// 16-bit arithmetic, so a limit of 32767 is never passed.
void ParseFor(Parser* p) {
    GetNextToken(p);
    if (p->eTokenType != TokenVar) SYNTAX_ERROR(Src::Kvexec, At::ForVariable);
    Variable* v = GetVar(p->sToken);
    GetNextToken(p);
    if (p->eTokenType != TokenEqual) SYNTAX_ERROR(Src::Kvexec, At::ForEqual);
    GetNextToken(p);
    Evaluate(p, &v->value, false);
    ToInteger(&v->value);
    if (p->eTokenType != TokenComma) SYNTAX_ERROR(Src::Kvexec, At::ForComma);
    GetNextToken(p);
    Const limit;
    Evaluate(p, &limit, false);
    ToInteger(&limit);

    PushBlock(BlockFor, v->value.eType, LinePos(p), CharPos(p));
    while (p->pScript->ReadUntil({"&NEXT"}, [p](const char* line) { _Parse_Line(p, line); })) {
        v->value.iValue = Int16(v->value.iValue + 1);
        if (v->value.iValue > limit.iValue) break;
        _Restart_Loop(p);
    }
    PopBlock();
    SkipLine(p);
}

void ParseNext(Parser* /*p*/) {
    if (GetBlockType() != BlockFor) NO_PENDING(Src::Kvexec, At::NextPending, "&FOR");
}

// No statement opens an &UNTIL entry, so a &LOOP reaching dispatch always fails.
void ParseLoop(Parser* /*p*/) {
    if (GetBlockType() != BlockUntil) NO_PENDING(Src::Kvexec, At::LoopPending, "&UNTIL");
}

void ParseWend(Parser* /*p*/) { NO_PENDING(Src::Kvexec, At::WendPending, "&WHILE"); }

void ParseBreak(Parser* /*p*/) { NO_PENDING(Src::Kvexec, At::BreakPending, "&FOR, &UNTIL or &WHILE"); }

void ParseContinue(Parser* /*p*/) { NO_PENDING(Src::Kvexec, At::ContinuePending, "&FOR, &UNTIL or &WHILE"); }
