// &GOTO, &CALL, &RETURN, &SKIP and the stray &END. There is no label table: every jump scans
// script lines for a first word equal to the label with ":" appended.
#include "blocks.h"
#include "diagnostics.h"
#include "expression.h"
#include "kvexec.h"
#include "statements.h"

namespace {

CBString LabelTarget(Parser* p) {
    GetNextToken(p);
    p->sToken = Expand(p->sToken);
    return p->sToken + ":";
}

}  // namespace

// Searches from the top of the script. The line counter is not reset: it goes on counting from
// where the jump was made.
void ParseGoto(Parser* p) {
    CBString target = LabelTarget(p);
    int saved = p->iLine;
    ScriptRewind(p);
    while (char* line = GetLine(p, szLine, sizeof szLine)) {
        if (FirstWordIs(line, target)) {
            SkipLine(p);
            return;
        }
    }
    p->iLine = saved;
    NO_LABEL(p, Src::Kvexec, At::GotoLabel, target);
}

// Searches forward only: a subroutine lies below its &CALL.
void ParseCall(Parser* p) {
    int line = p->iLine;
    long pos = ScriptTell(p);
    CBString target = LabelTarget(p);
    while (char* text = GetLine(p, szLine, sizeof szLine)) {
        if (FirstWordIs(text, target)) {
            PushBlock(BlockCall, VarUndef, static_cast<unsigned>(line), static_cast<uint32_t>(pos));
            SkipLine(p);
            return;
        }
    }
    NO_LABEL(p, Src::Kvexec, At::CallLabel, target);
}

// The &CALL entry is not popped: a later &RETURN returns to the same place again.
void ParseReturn(Parser* p) {
    if (GetBlockType() != BlockCall) NO_PENDING(p, Src::Kvexec, At::ReturnPending, "&CALL");
    ScriptSeek(p, static_cast<long>(static_cast<int32_t>(GetBlockCharPos())));
    p->iLine = static_cast<int>(GetBlockLinePos());
    SkipLine(p);
}

void ParseSkip(Parser* p) {
    GetNextToken(p);
    Const count;
    Evaluate(p, &count, false);
    ToInteger(&count);
    for (int i = 0; i < count.iValue; ++i) GetLine(p, szLine, sizeof szLine);
    SkipLine(p);
}

void ParseEnd(Parser* p) { NO_PENDING(p, Src::Kvexec, At::EndPending, "&BEGSTACK or &BEGTYPE"); }
