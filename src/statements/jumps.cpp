// &GOTO, &CALL, &RETURN, &SKIP and the stray &END. A jump finds its label through the script
// reader: the first line, from where the search starts, whose first word is the label with ":".
#include <cstring>

#include "blocks.h"
#include "diagnostics.h"
#include "statements.h"
#include "variables.h"

namespace {

CBString LabelTarget(Parser* p) {
    GetNextToken(p);
    // A name without a reference, quote or comment mark expands to itself.
    if (strpbrk(p->sToken, "&\";")) p->sToken = Expand(p->sToken);
    CBString target = p->sToken;
    target += ':';
    return target;
}

}  // namespace

// Searches from the top of the script. The line counter is not reset: it goes on counting from
// where the jump was made.
void ParseGoto(Parser* p) {
    CBString target = LabelTarget(p);
    ScriptReader* script = p->pScript;
    int saved = script->iLine;
    script->Rewind();
    if (script->FindLabel(target)) {
        SkipLine(p);
        return;
    }
    script->iLine = saved;
    NO_LABEL(Src::Kvexec, At::GotoLabel, target);
}

// Searches forward only: a subroutine lies below its &CALL.
void ParseCall(Parser* p) {
    ScriptReader* script = p->pScript;
    int line = script->iLine;
    long pos = script->Tell();
    CBString target = LabelTarget(p);
    if (!script->FindLabel(target)) NO_LABEL(Src::Kvexec, At::CallLabel, target);
    PushBlock(BlockCall, VarUndef, static_cast<unsigned>(line), static_cast<uint32_t>(pos));
    SkipLine(p);
}

// The &CALL entry is not popped: a later &RETURN returns to the same place again.
void ParseReturn(Parser* p) {
    if (GetBlockType() != BlockCall) NO_PENDING(Src::Kvexec, At::ReturnPending, "&CALL");
    p->pScript->Seek(static_cast<long>(static_cast<int32_t>(GetBlockCharPos())));
    p->pScript->iLine = static_cast<int>(GetBlockLinePos());
    SkipLine(p);
}

void ParseSkip(Parser* p) {
    int count = CountArgument(p);
    for (int i = 0; i < count; ++i) p->pScript->GetLine();
    SkipLine(p);
}

void ParseEnd(Parser* /*p*/) { NO_PENDING(Src::Kvexec, At::EndPending, "&BEGSTACK or &BEGTYPE"); }
